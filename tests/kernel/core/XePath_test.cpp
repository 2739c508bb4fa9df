#include "XePath.h"

#include "ShownText.h"
#include "XeStringUtil.h"

#include <boost/filesystem/path.hpp>
#include <boost/iostreams/filter/bzip2.hpp>
#include <boost/iostreams/filtering_stream.hpp>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cwctype>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace xenon::path;
using xenon::normalize::form;
using xenon::normalize::form_c;
using xenon::normalize::form_d;
using xenon::normalize::form_kc;
using xenon::normalize::form_kd;
using xenon::normalize::normalize;
using Text = _XeString<wchar_t>;

int sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

std::wstring widenedUtf16(const std::u32string& text)
{
    std::wstring units;
    for (const char32_t c : text) {
        if (c >= 0x10000) {
            units += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            units += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            units += static_cast<wchar_t>(c);
        }
    }
    return units;
}

Text wide(const std::u32string& text) { return Text(text.begin(), text.end()); }

// --- Constants and predicates
// ---------------------------------------------------------------------

TEST(PathConstants, AreTheDotAndTheTwoSeparators)
{
    EXPECT_EQ(k_dot, L'.');
    EXPECT_EQ(Text(k_dot_path), L".");
    EXPECT_EQ(k_preferred_sep, L'/');
    EXPECT_EQ(k_nonpreferred_sep, L'\\');
    EXPECT_EQ(Text(k_preferred_sep_path), L"/");
}

TEST(Separators, AreToldApart)
{
    EXPECT_TRUE(is_preffered_sep(L'/'));
    EXPECT_FALSE(is_preffered_sep(L'\\'));
    EXPECT_TRUE(is_nonpreferred_sep(L'\\'));
    EXPECT_FALSE(is_nonpreferred_sep(L'/'));
    EXPECT_FALSE(is_preffered_sep(L':'));
    EXPECT_FALSE(is_nonpreferred_sep(L':'));
}

TEST(MakePreferredPath, TurnsEveryBackslashIntoASlash)
{
    EXPECT_EQ(MakePreferredPath(L"a\\b\\c"), L"a/b/c");
    EXPECT_EQ(MakePreferredPath(L"\\\\a/b\\"), L"//a/b/");
    EXPECT_EQ(MakePreferredPath(L""), L"");
}

TEST(MakePreferredPath, LeavesAStreamingBasedPathAlone)
{
    EXPECT_EQ(MakePreferredPath(L"http://host/a\\b"), L"http://host/a\\b");
    EXPECT_EQ(MakePreferredPath(L"ipe:a\\b"), L"ipe:a\\b");
    EXPECT_EQ(MakePreferredPath(L"file:a\\b"), L"file:a/b");
}

// --- Joining
// --------------------------------------------------------------------------------------

struct CombineRow {
    const wchar_t* first;
    const wchar_t* second;
    const wchar_t* plain;    ///< with appendRooted false
    const wchar_t* appended; ///< with appendRooted true
};

// clang-format off
constexpr CombineRow kCombineRows[] = {
    {L"",      L"b",            L"b",            L"b"           },
    {L"",      L"/b",           L"/b",           L"/b"          },
    {L"/a",    L"",             L"/a",           L"/a"          },
    {L"",      L"",             L"",             L""            },
    {L"/a",    L"b",            L"/a/b",         L"/a/b"        },
    {L"/a/",   L"b",            L"/a/b",         L"/a/b"        },
    {L"/a//",  L"b",            L"/a//b",        L"/a//b"       },
    {L"/a",    L"/b",           L"/b",           L"/a/b"        },
    {L"/a/",   L"/b",           L"/b",           L"/a//b"       },
    {L"/a",    L"//b",          L"//b",          L"/a//b"       },  // rooted, although "//b" is a root name
    {L"/a",    L"file:///x/y",  L"file:///x/y",  L"file:///x/y" },
    {L"/a",    L"abc:x",        L"abc:x",        L"abc:x"       },  // ':' at index 3
    {L"/a",    L"ab:x",         L"/a/ab:x",      L"/a/ab:x"     },  // at index 2
    {L"/a",    L"C:b",          L"/a/C:b",       L"/a/C:b"      },
    {L"/a",    L":b",           L"/a/:b",        L"/a/:b"       },
    {L"/a",    L"C:b:c",        L"/a/C:b:c",     L"/a/C:b:c"    },  // only the first ':' counts
    {L"/a",    L"/bc:d",        L"/bc:d",        L"/bc:d"       },  // the scheme rule comes first
    {L"vol:",  L"b",            L"vol:/b",       L"vol:/b"      },
    {L"vol:",  L"/b",           L"/b",           L"vol://b"     },
    {L"a\\",   L"b",            L"a\\/b",        L"a\\/b"       },
};
// clang-format on

TEST(Combine, JoinsByTheFormOfBothPaths)
{
    for (const CombineRow& row : kCombineRows) {
        SCOPED_TRACE(shown(row.first) + " + " + shown(row.second));
        EXPECT_EQ(Combine(row.first, row.second, false), row.plain);
        EXPECT_EQ(Combine(row.first, row.second, true), row.appended);
    }
}

// --- Cutting
// --------------------------------------------------------------------------------------

struct CutRow {
    const wchar_t* path;
    const wchar_t* directory;
    const wchar_t* filename;
    const wchar_t* name;
    const wchar_t* extension;
};

// clang-format off
constexpr CutRow kCutRows[] = {
    // path            directory   filename      name        extension
    {L"/a/b.wav",      L"/a",      L"b.wav",     L"b",       L".wav"     },
    {L"/a/b.c.wav",    L"/a",      L"b.c.wav",   L"b.c",     L".wav"     },
    {L"/a/file",       L"/a",      L"file",      L"file",    L""         },
    {L"/file",         L"",        L"file",      L"file",    L""         },
    {L"file",          L"",        L"file",      L"file",    L""         },
    {L"a/b",           L"a",       L"b",         L"b",       L""         },
    {L"/a/b/",         L"/a/b",    L"",          L"",        L""         },
    {L"/a/b/.",        L"/a/b",    L"",          L"",        L""         },
    {L"/a/..",         L"/a",      L"..",        L"..",      L""         },
    {L"/a/...",        L"/a",      L"...",       L"..",      L"."        },
    {L"/a//b",         L"/a",      L"b",         L"b",       L""         },
    {L"/a/.profile",   L"/a",      L".profile",  L"",        L".profile" },
    {L"/a/b.",         L"/a",      L"b.",        L"b",       L"."        },
    {L"/a.d/b",        L"/a.d",    L"b",         L"b",       L""         },
    {L"",              L"",        L"",          L"",        L""         },
    {L".",             L"",        L"",          L"",        L""         },
    {L"..",            L"",        L"..",        L"..",      L""         },
    {L"/",             L"",        L"/",         L"/",       L""         },
    {L"///",           L"",        L"/",         L"/",       L""         },
    {L"///a",          L"",        L"a",         L"a",       L""         },
    {L"//net",         L"",        L"//net",     L"//net",   L""         },
    {L"//net/",        L"//net",   L"/",         L"/",       L""         },
    {L"//net/a.b",     L"//net/",  L"a.b",       L"a",       L".b"       },
    {L"a\\b.wav",      L"",        L"a\\b.wav",  L"a\\b",    L".wav"     },
    {L"/\x00E9/\x00FC.\x00E0", L"/\x00E9", L"\x00FC.\x00E0", L"\x00FC", L".\x00E0"},
    {L"/\xD83D\xDE00.x",       L"",        L"\xD83D\xDE00.x", L"\xD83D\xDE00", L".x"},
};
// clang-format on

TEST(Cutting, GivesDirectoryFilenameAndExtension)
{
    for (const CutRow& row : kCutRows) {
        SCOPED_TRACE(shown(row.path));
        EXPECT_EQ(GetDirectoryName(row.path), row.directory);
        EXPECT_EQ(GetParentPath(row.path), row.directory);
        EXPECT_EQ(GetFilename(row.path), row.filename);
        EXPECT_EQ(GetFilenameWithoutExtension(row.path), row.name);
        EXPECT_EQ(GetExtension(row.path), row.extension);
        EXPECT_EQ(SplitFacets(row.path), (Facets{row.directory, row.name, row.extension}));
    }
}

struct ExtensionRow {
    const wchar_t* path;
    const wchar_t* extension;
    const wchar_t* replaced;
    const wchar_t* appended;
};

// clang-format off
constexpr ExtensionRow kExtensionRows[] = {
    {L"a.tar",     L"gz",    L"a.gz",       L"a.tar.gz"    },
    {L"a.tar",     L".gz",   L"a.gz",       L"a.tar.gz"    },
    {L"a.tar",     L"..gz",  L"a..gz",      L"a.tar..gz"   },
    {L"a.tar",     L"",      L"a",          L"a.tar"       },
    {L"a.tar",     L".",     L"a.",         L"a.tar."      },
    {L"a",         L"wav",   L"a.wav",      L"a.wav"       },
    {L"/d.x/a",    L"wav",   L"/d.x/a.wav", L"/d.x/a.wav"  },
    {L"/d/a.b.c",  L"wav",   L"/d/a.b.wav", L"/d/a.b.c.wav"},
    {L"/d/",       L"wav",   L"/d/.wav",    L"/d/.wav"     },
    {L"/d/..",     L"wav",   L"/d/...wav",  L"/d/...wav"   },
    {L".profile",  L"wav",   L".wav",       L".profile.wav"},
    {L"",          L"wav",   L".wav",       L".wav"        },
    {L"",          L"",      L"",           L""            },
};
// clang-format on

TEST(Extension, IsReplacedOrAppendedWithOneDot)
{
    for (const ExtensionRow& row : kExtensionRows) {
        SCOPED_TRACE(shown(row.path) + " with " + shown(row.extension));
        EXPECT_EQ(ReplaceExtension(row.path, row.extension), row.replaced);
        EXPECT_EQ(AppendExtension(row.path, row.extension), row.appended);
    }
}

TEST(IsHiddenPath, TellsALeadingDotOfTheFilename)
{
    EXPECT_TRUE(IsHiddenPath(L"/a/.b"));
    EXPECT_TRUE(IsHiddenPath(L".b"));
    EXPECT_TRUE(IsHiddenPath(L"/a/.."));
    EXPECT_FALSE(IsHiddenPath(L"/a/b"));
    EXPECT_FALSE(IsHiddenPath(L"/.a/b"));
    EXPECT_FALSE(IsHiddenPath(L"/a/."));
    EXPECT_FALSE(IsHiddenPath(L"/.a/"));
    EXPECT_FALSE(IsHiddenPath(L""));
}

// --- The library's cutting beside Boost's
// ---------------------------------------------------------

namespace fs = boost::filesystem;

fs::path boostPath(const std::wstring& text) { return {text, xenon::get_facet()}; }

std::wstring wideOf(const fs::path& path) { return path.wstring(xenon::get_facet()); }

std::wstring emptyIf(const wchar_t* unwanted, const std::wstring& text)
{
    return text == unwanted ? std::wstring() : text;
}

bool boostIsValid(const std::wstring& text)
{
    const fs::path path = boostPath(text);
    return text.size() <= 1023 &&
           std::all_of(path.begin(), path.end(),
                       [](const fs::path& element) { return wideOf(element).size() <= 256; });
}

void expectBoostsAnswers(const Text& text)
{
    SCOPED_TRACE(shown(text));
    const fs::path path = boostPath(text);
    const std::wstring directory = emptyIf(L"/", wideOf(path.parent_path()));
    const std::wstring filename = emptyIf(L".", wideOf(path.filename()));
    const std::wstring stem = wideOf(boostPath(filename).stem());
    const std::wstring extension = wideOf(path.extension());
    EXPECT_EQ(GetDirectoryName(text), directory);
    EXPECT_EQ(GetFilename(text), filename);
    EXPECT_EQ(GetFilenameWithoutExtension(text), stem);
    EXPECT_EQ(GetExtension(text), extension);
    EXPECT_EQ(SplitFacets(text), (Facets{directory, stem, extension}));
    EXPECT_EQ(ReplaceExtension(text, L"x"), wideOf(fs::path(path).replace_extension("x")));
    EXPECT_EQ(ReplaceExtension(text, L""), wideOf(fs::path(path).replace_extension("")));
    EXPECT_EQ(IsValidPath(text), boostIsValid(text));
}

/// All texts of up to `longest` characters over an alphabet.
template <typename Check>
void forAllTexts(const std::wstring& alphabet, std::size_t longest, Check check)
{
    Text text;
    std::vector<std::size_t> digits;
    while (digits.size() <= longest) {
        check(text);
        std::size_t i = 0;
        while (i < digits.size() && ++digits[i] == alphabet.size()) {
            digits[i++] = 0;
        }
        if (i == digits.size()) {
            digits.push_back(0);
        }
        text.resize(digits.size());
        std::transform(digits.begin(), digits.end(), text.begin(),
                       [&alphabet](std::size_t digit) { return alphabet[digit]; });
    }
}

TEST(BoostFilesystem, CutsEveryShortPathInTheSamePlaces)
{
    std::size_t paths = 0;
    forAllTexts(L"/.a", 8, [&paths](const Text& text) {
        ++paths;
        expectBoostsAnswers(text);
    });
    EXPECT_EQ(paths, 9841u); // 3^0 + ... + 3^8
    forAllTexts(L"/.\\:\x00E9", 5, expectBoostsAnswers);
}

TEST(BoostFilesystem, JoinsEveryPairOfShortPathsInTheSameWay)
{
    forAllTexts(L"/.a", 4, [](const Text& first) {
        forAllTexts(L"/.a", 4, [&first](const Text& second) {
            const bool keeps = first.empty() || second.empty();
            const std::wstring joined = keeps ? std::wstring(first) + std::wstring(second)
                                              : wideOf(boostPath(first) / boostPath(second));
            ASSERT_EQ(Combine(first, second, true), joined);
        });
    });
}

TEST(BoostFilesystem, CutsLongRandomPathsInTheSamePlaces)
{
    std::mt19937 random(20240305);
    constexpr wchar_t kAlphabet[] = L"//..abc \x00E9\x4E00\x1F600";
    std::uniform_int_distribution<std::size_t> character(0, std::size(kAlphabet) - 2);
    std::uniform_int_distribution<std::size_t> length(0, 60);
    for (int i = 0; i < 5000; ++i) {
        Text text(length(random), L' ');
        std::generate(text.begin(), text.end(), [&] { return kAlphabet[character(random)]; });
        expectBoostsAnswers(text);
    }
}

// --- Validity
// -------------------------------------------------------------------------------------

TEST(IsValidPath, AllowsElementsOf256Characters)
{
    const Text element(256, L'x');
    EXPECT_TRUE(IsValidPath(element));
    EXPECT_FALSE(IsValidPath(element + L"x"));
    EXPECT_TRUE(IsValidPath(L"/a/" + element + L"/b"));
    EXPECT_FALSE(IsValidPath(L"/a/" + element + L"x/b"));
    EXPECT_FALSE(IsValidPath(L"/a/b/" + element + L"x"));
    EXPECT_TRUE(IsValidPath(element + L"/" + element + L"/" + element));
}

// The two separators of a root name belong to that element.
TEST(IsValidPath, CountsARootNameWithItsSeparators)
{
    const Text name(254, L'x');
    EXPECT_TRUE(IsValidPath(L"//" + name + L"/a"));
    EXPECT_FALSE(IsValidPath(L"//x" + name + L"/a"));
    EXPECT_TRUE(IsValidPath(L"///xx" + name));
}

TEST(IsValidPath, CountsCharactersNotBytes)
{
    EXPECT_TRUE(IsValidPath(Text(256, L'\x1F600')));
    EXPECT_FALSE(IsValidPath(Text(257, L'\x1F600')));
}

TEST(IsValidPath, AllowsPathsOf1023Characters)
{
    Text path;
    while (path.size() < 1023) {
        path += L"a/";
    }
    path.resize(1023);
    EXPECT_TRUE(IsValidPath(path));
    EXPECT_FALSE(IsValidPath(path + L"a"));
    EXPECT_FALSE(IsValidPath(Text(1024, L'/')));
    EXPECT_TRUE(IsValidPath(L""));
}

TEST(IsValidPath, DoesNotBoundStreamingBasedPaths)
{
    EXPECT_TRUE(IsValidPath(L"https://" + Text(2000, L'x')));
    EXPECT_FALSE(IsValidPath(L"ftp://" + Text(2000, L'x')));
}

TEST(IsValidPath, DoesNotJudgeCharacters)
{
    EXPECT_TRUE(IsValidPath(L"/a:*?\"<>|\x01\xD800"));
    EXPECT_TRUE(IsValidPath(Text(1, static_cast<wchar_t>(-1))));
}

// --- Normalisation
// --------------------------------------------------------------------------------

constexpr const char* kNormalizationTest = "/usr/share/unicode/NormalizationTest.txt.bz2";

/// One row of the Unicode character database's normalisation test: source, NFC, NFD, NFKC, NFKD.
struct NormalizationRow {
    std::u32string column[5];
    std::string line;
    bool singleCharacter;
};

std::u32string codePoints(const std::string& field)
{
    std::istringstream in(field);
    std::u32string text;
    for (std::uint32_t c = 0; in >> std::hex >> c;) {
        text += static_cast<char32_t>(c);
    }
    return text;
}

std::vector<NormalizationRow> readNormalizationTest()
{
    std::ifstream file(kNormalizationTest, std::ios::binary);
    EXPECT_TRUE(file) << "install unicode-data for " << kNormalizationTest;
    boost::iostreams::filtering_istream in;
    in.push(boost::iostreams::bzip2_decompressor());
    in.push(file);
    std::vector<NormalizationRow> rows;
    std::string part;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with('@')) {
            part = line.substr(0, 6);
        }
        if (line.empty() || line.starts_with('#') || line.starts_with('@')) {
            continue;
        }
        NormalizationRow row;
        row.line = line;
        row.singleCharacter = part == "@Part1";
        std::istringstream fields(line);
        for (std::u32string& column : row.column) {
            std::string field;
            std::getline(fields, field, ';');
            column = codePoints(field);
        }
        rows.push_back(row);
    }
    return rows;
}

const std::vector<NormalizationRow>& normalizationTest()
{
    static const std::vector<NormalizationRow> rows = readNormalizationTest();
    return rows;
}

void expectForm(const NormalizationRow& row, form target, std::size_t expected,
                std::initializer_list<std::size_t> sources)
{
    for (const std::size_t source : sources) {
        SCOPED_TRACE(source + 1);
        EXPECT_EQ(normalize(wide(row.column[source]), target), widenedUtf16(row.column[expected]));
    }
}

TEST(Normalize, AgreesWithTheWholeUnicodeTestFile)
{
    ASSERT_GT(normalizationTest().size(), 18000u);
    for (const NormalizationRow& row : normalizationTest()) {
        SCOPED_TRACE(row.line);
        expectForm(row, form_c, 1, {0, 1, 2});
        expectForm(row, form_c, 3, {3, 4});
        expectForm(row, form_d, 2, {0, 1, 2});
        expectForm(row, form_d, 4, {3, 4});
        expectForm(row, form_kc, 3, {0, 1, 2, 3, 4});
        expectForm(row, form_kd, 4, {0, 1, 2, 3, 4});
        if (HasFailure()) {
            return;
        }
    }
}

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// The first part of the test file lists every character that a form changes.
TEST(Normalize, KeepsEveryCharacterThatTheTestFileDoesNotList)
{
    std::set<char32_t> listed;
    for (const NormalizationRow& row : normalizationTest()) {
        if (row.singleCharacter) {
            listed.insert(row.column[0].front());
        }
    }
    ASSERT_GT(listed.size(), 16000u);
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        if (isSurrogate(c) || listed.contains(c)) {
            continue;
        }
        const std::u32string text(1, c);
        for (const form target : {form_c, form_d, form_kc, form_kd}) {
            ASSERT_EQ(normalize(wide(text), target), widenedUtf16(text))
                << std::hex << static_cast<unsigned>(c);
        }
    }
}

TEST(Normalize, FormsHaveCoreFoundationsNumbers)
{
    EXPECT_EQ(form_d, 0);
    EXPECT_EQ(form_kd, 1);
    EXPECT_EQ(form_c, 2);
    EXPECT_EQ(form_kc, 3);
}

TEST(Normalize, WidensTheTwoUnitsOfACharacterOutsideTheBmp)
{
    EXPECT_EQ(normalize(L"a\x1F600z", form_c), L"a\xD83D\xDE00z");
    // U+1D15E is excluded from composition, so its two parts stay apart.
    EXPECT_EQ(normalize(L"\x1D15E", form_c), L"\xD834\xDD57\xD834\xDD65");
}

TEST(Normalize, TextThatIsNotUtf32GivesTheEmptyText)
{
    EXPECT_EQ(normalize(L"a\xD800", form_c), L"");
    EXPECT_EQ(normalize(L"\xDC80 a", form_c), L"");
    EXPECT_EQ(normalize(Text(1, L'\x110000'), form_c), L"");
    EXPECT_EQ(normalize(Text(1, static_cast<wchar_t>(-1)), form_c), L"");
    EXPECT_EQ(normalize(normalize(L"\x1F600", form_c), form_c), L"");
}

TEST(Normalize, KeepsEmptyTextZerosAndByteOrderMarks)
{
    EXPECT_EQ(normalize(L"", form_c), L"");
    EXPECT_EQ(normalize(Text(L"a\0\x0301"
                             L"b",
                             4),
                        form_c),
              Text(L"a\0\x0301"
                   L"b",
                   4));
    EXPECT_EQ(normalize(L"\xFEFF"
                        L"e\x0301",
                        form_c),
              L"\xFEFF\x00E9");
}

TEST(Normalize, FollowsTextThatGrows)
{
    Text text;
    Text expected;
    for (int i = 0; i < 100; ++i) {
        text += L"\xFDFA";
        expected +=
            L"\x635\x644\x649 \x627\x644\x644\x647 \x639\x644\x64A\x647 \x648\x633\x644\x645";
    }
    EXPECT_EQ(normalize(text, form_kd), expected);
}

/// Size of the process's address space; 0 where the system does not tell it in this way.
rlim_t mappedBytes()
{
    std::ifstream status("/proc/self/statm");
    rlim_t pages = 0;
    status >> pages;
    return pages * static_cast<rlim_t>(getpagesize());
}

/// Runs the process out of memory for large blocks, then normalises. Exits with 0 when the result
/// was empty.
[[noreturn]] void normalizeWithoutMemory()
{
    const Text text(std::size_t{16} << 20, L'\x4E00');
    const rlim_t enough = mappedBytes() + (8u << 20);
    const rlimit limit{enough, enough};
    setrlimit(RLIMIT_AS, &limit);
    std::_Exit(normalize(text, form_c).empty() ? 0 : 1);
}

TEST(NormalizeDeathTest, WithoutMemoryGivesTheEmptyText)
{
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
    GTEST_SKIP() << "the address sanitizer ends a process that runs out of memory";
#endif
#endif
    if (mappedBytes() == 0) {
        GTEST_SKIP() << "the size of the process is not known";
    }
    EXPECT_EXIT(normalizeWithoutMemory(), testing::ExitedWithCode(0), "");
}

// --- Comparison
// -----------------------------------------------------------------------------------

/// The rule of comparison, step by step.
int slowCompare(Text a, Text b, bool ignoreCase, bool normalizeForm)
{
    for (Text* text : {&a, &b}) {
        if (normalizeForm) {
            *text = normalize(*text, form_c);
        }
        if (ignoreCase) {
            std::transform(text->begin(), text->end(), text->begin(), [](wchar_t c) {
                return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(c)));
            });
        }
    }
    const int order = std::wmemcmp(a.data(), b.data(), std::min(a.size(), b.size()));
    if (order != 0) {
        return order;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

void expectComparedByTheRule(const Text& a, const Text& b)
{
    for (const bool ignoreCase : {false, true}) {
        for (const bool normalizeForm : {false, true}) {
            ASSERT_EQ(sign(Compare(a, b, ignoreCase, normalizeForm)),
                      sign(slowCompare(a, b, ignoreCase, normalizeForm)))
                << shown(a) << " and " << shown(b) << ' ' << ignoreCase << normalizeForm;
        }
    }
    ASSERT_EQ(sign(PreferredCompare(a, b)), sign(slowCompare(a, b, true, true)));
}

TEST(Compare, OrdersByCharacterThenByLength)
{
    EXPECT_LT(Compare(L"a", L"b", false, false), 0);
    EXPECT_GT(Compare(L"b", L"a", false, false), 0);
    EXPECT_EQ(Compare(L"a", L"a", false, false), 0);
    EXPECT_EQ(Compare(L"a", L"aa", false, false), -1);
    EXPECT_EQ(Compare(L"aa", L"a", false, false), 1);
    EXPECT_EQ(Compare(L"", L"", true, true), 0);
    EXPECT_EQ(Compare(L"", L"a", true, true), -1);
    EXPECT_LT(Compare(L"ab", L"b", false, false), 0);
}

TEST(Compare, IgnoresCaseOnlyWhenAsked)
{
    EXPECT_GT(Compare(L"a", L"A", false, false), 0);
    EXPECT_EQ(Compare(L"a", L"A", true, false), 0);
    EXPECT_EQ(Compare(L"\x03B1", L"\x0391", true, false), 0);
    // Upper case decides the order of '_', which lies between the two cases of letters.
    EXPECT_GT(Compare(L"_", L"a", true, false), 0);
    EXPECT_LT(Compare(L"_", L"a", false, false), 0);
}

TEST(Compare, ComposesOnlyWhenAsked)
{
    EXPECT_NE(Compare(L"\x00E9", L"e\x0301", false, false), 0);
    EXPECT_EQ(Compare(L"\x00E9", L"e\x0301", false, true), 0);
    EXPECT_NE(Compare(L"\x00E9", L"E\x0301", false, true), 0);
}

TEST(PreferredCompare, TakesCaseAndComposedFormsAsEqual)
{
    EXPECT_EQ(PreferredCompare(L"/Audio/Caf\x00E9.WAV", L"/audio/cafe\x0301.wav"), 0);
    EXPECT_EQ(PreferredCompare(L"\x00C9", L"e\x0301"), 0);
    EXPECT_NE(PreferredCompare(L"\x00E9", L"e"), 0);
}

// Each letter is mapped to one letter: sharp s has no single capital in the C library.
TEST(PreferredCompare, MapsCharactersOneByOne)
{
    EXPECT_NE(PreferredCompare(L"stra\x00DF"
                               L"e",
                               L"STRASSE"),
              0);
}

TEST(PreferredCompare, DoesNotDependOnTheHostsLocale)
{
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(PreferredCompare(L"\x00E9\x03B1", L"\x00C9\x0391"), 0);
    EXPECT_EQ(PreferredCompareString(L"\x00E9\x03B1"), L"\x00C9\x0391");
    std::setlocale(LC_CTYPE, before.c_str());
}

// What has no normal form compares as the empty text.
TEST(PreferredCompare, TakesAllInvalidTextsAsEqual)
{
    EXPECT_EQ(PreferredCompare(L"a\xDC80", L"b\xDC81"), 0);
    EXPECT_EQ(PreferredCompare(L"a\xDC80", L""), 0);
    EXPECT_NE(Compare(L"a\xDC80", L"b\xDC81", true, false), 0);
}

TEST(PreferredCompare, FindsTheColumnsOfTheUnicodeTestFileEqual)
{
    for (const NormalizationRow& row : normalizationTest()) {
        SCOPED_TRACE(row.line);
        const Text source = wide(row.column[0]);
        ASSERT_EQ(PreferredCompare(source, wide(row.column[1])), 0);
        ASSERT_EQ(PreferredCompare(source, wide(row.column[2])), 0);
        ASSERT_EQ(PreferredCompare(wide(row.column[3]), wide(row.column[4])), 0);
        expectComparedByTheRule(source, wide(row.column[4]));
        expectComparedByTheRule(wide(row.column[2]) + L"x", source + L"y");
    }
}

TEST(PreferredCompare, FollowsTheRuleForRandomNames)
{
    std::mt19937 random(5);
    const std::wstring alphabet =
        L"aA/.eE\x00E9\x00C9\x0301\x0300\x00DF\x0345\x03B1\x1100\x1161\x1F600"
        L"\x10428\xD83D\xDC80";
    // Mostly plain characters, so that both ways of comparing are taken.
    std::discrete_distribution<std::size_t> character(
        {9, 9, 9, 9, 9, 9, 9, 9, 3, 1, 1, 1, 1, 1, 1, 1, 1, 0.2, 0.2});
    std::uniform_int_distribution<std::size_t> length(0, 6);
    const auto name = [&] {
        Text text(length(random), L' ');
        std::generate(text.begin(), text.end(), [&] { return alphabet[character(random)]; });
        return text;
    };
    for (int i = 0; i < 50000; ++i) {
        const Text a = name();
        expectComparedByTheRule(a, name());
        expectComparedByTheRule(a + L"b", a + L"B");
    }
}

TEST(PreferredCompareString, IsUpperCaseThenComposed)
{
    EXPECT_EQ(PreferredCompareString(L"/Audio/cafe\x0301.wav"), L"/AUDIO/CAF\x00C9.WAV");
    EXPECT_EQ(PreferredCompareString(L""), L"");
}

TEST(PreferredCompareString, UpperCasesEveryCharacterAsTheCLibraryDoes)
{
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        const auto upper = static_cast<wchar_t>(std::towupper(c));
        ASSERT_EQ(PreferredCompareString(Text(1, static_cast<wchar_t>(c))),
                  normalize(Text(1, upper), form_c))
            << std::hex << static_cast<unsigned>(c);
    }
}

// The key is upper-cased before it is composed, Compare works the other way round. The iota
// subscript shows it: its capital is a full letter, which composes with nothing.
TEST(PreferredCompareString, WorksInTheReverseOrderOfCompare)
{
    const Text composed = L"\x1FB3"; // alpha with iota subscript
    const Text decomposed = L"\x03B1\x0345";
    EXPECT_EQ(PreferredCompare(composed, decomposed), 0);
    EXPECT_EQ(PreferredCompareString(composed), L"\x1FBC");
    EXPECT_EQ(PreferredCompareString(decomposed), L"\x0391\x0399");
}

// Compare sees surrogates, which have no case; the key is upper-cased while the letter is whole.
TEST(PreferredCompareString, KnowsTheCaseOfLettersOutsideTheBmp)
{
    EXPECT_EQ(PreferredCompareString(L"\x10428"), L"\xD801\xDC00");
    EXPECT_EQ(PreferredCompareString(L"\x10428"), PreferredCompareString(L"\x10400"));
    EXPECT_NE(PreferredCompare(L"\x10428", L"\x10400"), 0);
}

} // namespace
