#include "fs/Wildcard.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// clang-format off
constexpr struct {
    const wchar_t* name;
    const wchar_t* pattern;
    bool matches;
} kRows[] = {
    { L"",           L"",             true  },
    { L"",           L"*",            true  },
    { L"",           L"**",           true  },
    { L"",           L"?",            false },
    { L"a",          L"",             false },
    { L"a",          L"?",            true  },
    { L"ab",         L"?",            false },
    { L"take.wav",   L"*",            true  },
    { L"take.wav",   L"take.wav",     true  },
    { L"take.wav",   L"Take.wav",     false },
    { L"take.wav",   L"*.wav",        true  },
    { L"take.wave",  L"*.wav",        false },
    { L"take.wav",   L"take*",        true  },
    { L"take.wav",   L"take.wav*",    true  },
    { L"take.wav",   L"take.wav?",    false },
    { L"take",       L"*.*",          false },
    { L".wav",       L"*.wav",        true  },
    { L"a.wav.wav",  L"*.wav",        true  },
    { L"abcabd",     L"*abd",         true  },
    { L"abcabd",     L"*ab?",         true  },
    { L"abab",       L"*ab",          true  },
    { L"aab",        L"*ab",          true  },
    { L"abc",        L"a*c",          true  },
    { L"ac",         L"a*c",          true  },
    { L"abcd",       L"a*c",          false },
    { L"abcbd",      L"a*b*d",        true  },
    { L"abcbe",      L"a*b*d",        false },
    { L"mississippi", L"m*iss*ip*i",  true  },
    { L"mississippi", L"m*issip*ss*", false },
    { L"a*b",        L"a*b",          true  },
    { L"*",          L"?",            true  },
    { L"?",          L"?",            true  },
    { L"axb",        L"a**b",         true  },
    { L"ab",         L"a*?b",         false },
    { L"axb",        L"a*?b",         true  },
    { L"axb",        L"a?*b",         true  },
    { L"[a]",        L"[a]",          true  },
    { L"a",          L"[a]",          false },
    { L"\\*",        L"\\*",          true  },
    { L"\\x",        L"\\*",          true  },
    { L"*",          L"\\*",          false },
    { L"\xE9",       L"?",            true  },
    { L"\xDCE9",     L"?",            true  },
    { L"\x1F3B5",    L"?",            true  },
    { L"e\x301",     L"?",            false },
    { L"e\x301",     L"\xE9",         false },
};
// clang-format on

TEST(Wildcard, StarIsAnyTextAndQuestionMarkAnyCharacter)
{
    for (const auto& row : kRows) {
        EXPECT_EQ(matchesWildcard(row.name, row.pattern), row.matches)
            << testing::PrintToString(std::wstring(row.name)) << " and "
            << testing::PrintToString(std::wstring(row.pattern));
    }
}

TEST(Wildcard, ZeroInANameIsAnOrdinaryCharacter)
{
    EXPECT_TRUE(matchesWildcard(std::wstring_view(L"a\0b", 3), L"a?b"));
    EXPECT_FALSE(matchesWildcard(std::wstring_view(L"a\0", 2), L"a"));
    EXPECT_FALSE(matchesWildcard(L"a", std::wstring_view(L"a\0", 2)));
}

// With a matcher that tries all ways for each star this would not end.
TEST(Wildcard, ManyStarsTakeNoLongerThanTheProductOfTheLengths)
{
    const std::wstring name(5000, L'a');
    std::wstring pattern;
    for (int i = 0; i < 1000; ++i) {
        pattern += L"*a";
    }
    EXPECT_TRUE(matchesWildcard(name, pattern));
    EXPECT_FALSE(matchesWildcard(name, pattern + L'b'));
    EXPECT_FALSE(matchesWildcard(name, pattern + L"b*"));
}

} // namespace
