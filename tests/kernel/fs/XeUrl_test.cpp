#include "XeFileSystem.h"

#include "ShownText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using namespace XeFileSystem;
using Text = _XeString<wchar_t>;

constexpr std::size_t kLongest = 1100;
constexpr unsigned long kLeastLimit = 5;

/// Text of different characters, so that every cut shows where it was made.
Text numbered(std::size_t length)
{
    Text text(length, L' ');
    for (std::size_t i = 0; i < length; ++i) {
        text[i] = static_cast<wchar_t>(0x4E00 + i);
    }
    return text;
}

// --- Splitting
// ------------------------------------------------------------------------------------

struct SplitRow {
    const wchar_t* url;
    const wchar_t* folder;
    const wchar_t* name;
    const wchar_t* scheme;
};

// clang-format off
constexpr SplitRow kSplitRows[] = {
    {L"/a.wav",            L"/",              L"a.wav",   L""       },
    {L"/dir/a.wav",        L"/dir/",          L"a.wav",   L""       },
    {L"/dir/",             L"/dir/",          L"",        L""       },
    {L"C:\\dir\\x",        L"C:\\dir\\",      L"x",       L""       },
    {L"a/b\\c",            L"a/b\\",          L"c",       L""       },
    {L"a\\b/c",            L"a\\b/",          L"c",       L""       },
    {L"\\x",               L"/",              L"x",       L""       },
    {L"x",                 L"",               L"x",       L""       },
    {L"",                  L"",               L"",        L""       },
    {L"/",                 L"/",              L"",        L""       },
    {L"http://host/a.wav", L"http://host/",   L"a.wav",   L"http"   },
    {L"http:",             L"",               L"http:",   L"http"   },
};
// clang-format on

TEST(SplitFileURL, CutsBehindTheLastSeparatorOfEitherKind)
{
    for (const SplitRow& row : kSplitRows) {
        SCOPED_TRACE(shown(row.url));
        Text folder = L"old";
        Text name = L"old";
        EXPECT_EQ(splitFileURL(row.url, folder, name), 0);
        EXPECT_EQ(folder, row.folder);
        EXPECT_EQ(name, row.name);
    }
}

TEST(SplitFileURL, WithFourArgumentsFillsTheSchemeToo)
{
    for (const SplitRow& row : kSplitRows) {
        SCOPED_TRACE(shown(row.url));
        Text folder = L"old";
        Text name = L"old";
        Text scheme = L"old";
        EXPECT_EQ(splitFileURL(row.url, folder, name, scheme), 0);
        EXPECT_EQ(folder, row.folder);
        EXPECT_EQ(name, row.name);
        EXPECT_EQ(scheme, row.scheme);
    }
}

TEST(SplitFileURL, MayWriteOverItsOwnArgument)
{
    Text folder;
    Text name = L"/a long folder/a long name";
    splitFileURL(name.c_str(), folder, name);
    EXPECT_EQ(folder, L"/a long folder/");
    EXPECT_EQ(name, L"a long name");

    folder = L"http://a long folder/a long name";
    Text scheme;
    splitFileURL(folder.c_str(), folder, name, scheme);
    EXPECT_EQ(folder, L"http://a long folder/");
    EXPECT_EQ(name, L"a long name");
    EXPECT_EQ(scheme, L"http");
}

struct ExtRow {
    const wchar_t* name;
    const wchar_t* base;
    const wchar_t* ext;
    const wchar_t* extWithoutDot;
};

// clang-format off
constexpr ExtRow kExtRows[] = {
    {L"a.wav",       L"a",           L".wav",      L"wav"     },
    {L"a.tar.gz",    L"a.tar",       L".gz",       L"gz"      },
    {L"dir.d/file",  L"dir.d/file",  L"",          L""        },
    {L"dir.d\\file", L"dir.d\\file", L"",          L""        },
    {L"dir.d/a.b",   L"dir.d/a",     L".b",        L"b"       },
    {L".profile",    L"",            L".profile",  L"profile" },
    {L"a.",          L"a",           L".",         L""        },
    {L"a",           L"a",           L"",          L""        },
    {L"",            L"",            L"",          L""        },
};
// clang-format on

TEST(SplitFileExt, CutsBeforeTheLastDotOfTheName)
{
    for (const ExtRow& row : kExtRows) {
        SCOPED_TRACE(shown(row.name));
        Text base = L"old";
        Text ext = L"old";
        EXPECT_EQ(splitFileExt(row.name, base, ext, false), 0);
        EXPECT_EQ(base, row.base);
        EXPECT_EQ(ext, row.ext);
        EXPECT_EQ(splitFileExt(row.name, base, ext, true), 0);
        EXPECT_EQ(base, row.base);
        EXPECT_EQ(ext, row.extWithoutDot);
    }
}

TEST(SplitFileExt, MayWriteOverItsOwnArgument)
{
    Text base = L"a long name.extension";
    Text ext;
    splitFileExt(base.c_str(), base, ext, true);
    EXPECT_EQ(base, L"a long name");
    EXPECT_EQ(ext, L"extension");

    ext = L"a long name.extension";
    splitFileExt(ext.c_str(), base, ext, false);
    EXPECT_EQ(base, L"a long name");
    EXPECT_EQ(ext, L".extension");
}

struct MonikerRow {
    const wchar_t* moniker;
    const wchar_t* path;
    const wchar_t* tail;
};

// clang-format off
constexpr MonikerRow kMonikerRows[] = {
    {L"/a.wav?track=1",  L"/a.wav",  L"track=1" },
    {L"/a?b?c",          L"/a",      L"b?c"     },  // the first mark counts
    {L"?x",              L"",        L"x"       },
    {L"/a?",             L"/a",      L""        },
    {L"/a",              L"/a",      L""        },
    {L"",                L"",        L""        },
};
// clang-format on

TEST(ParseMoniker, CutsAtTheFirstQuestionMark)
{
    for (const MonikerRow& row : kMonikerRows) {
        SCOPED_TRACE(shown(row.moniker));
        Text path = L"old";
        Text tail = L"old";
        EXPECT_EQ(parseMoniker(row.moniker, path, tail), 0);
        EXPECT_EQ(path, row.path);
        EXPECT_EQ(tail, row.tail);
        path = L"old";
        EXPECT_EQ(parseMoniker(row.moniker, path), 0);
        EXPECT_EQ(path, row.path);
    }
}

TEST(ParseMoniker, MayWriteOverItsOwnArgument)
{
    Text path;
    Text tail = L"/a long path?a long tail";
    parseMoniker(tail.c_str(), path, tail);
    EXPECT_EQ(path, L"/a long path");
    EXPECT_EQ(tail, L"a long tail");
}

// --- Schemes
// --------------------------------------------------------------------------------------

TEST(GetScheme, HasThreeToSevenCharactersBeforeTheFirstColon)
{
    struct {
        const wchar_t* url;
        const wchar_t* scheme;
    } constexpr kRows[] = {
        {L"http://h/x", L"http"},
        {L"http:", L"http"},
        {L"ipe:x", L"ipe"},
        {L"ab:c", L""},
        {L"C:\\x", L""},
        {L":x", L""},
        {L"sevench:x", L"sevench"},
        {L"eightchr:x", L""},
        {L"ninechars:x", L""},
        {L"no scheme", L""},
        {L"", L""},
        {L"ab:cde:f", L""},
        {L"a/b:c", L"a/b"}, // any text before the colon counts
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(shown(row.url));
        Text scheme = L"old";
        EXPECT_EQ(getScheme(row.url, scheme), 0);
        EXPECT_EQ(scheme, row.scheme);
    }
}

TEST(IsStreamingBased, KnowsThreeSchemesInTheirLetterCase)
{
    EXPECT_TRUE(isStreamingBased(L"http://h/x"));
    EXPECT_TRUE(isStreamingBased(L"https://h/x"));
    EXPECT_TRUE(isStreamingBased(L"ipe://h/x"));
    EXPECT_FALSE(isStreamingBased(L"HTTP://h/x"));
    EXPECT_FALSE(isStreamingBased(L"Https://h/x"));
    EXPECT_FALSE(isStreamingBased(L"file:///x"));
    EXPECT_FALSE(isStreamingBased(L"httpx://h/x"));
    EXPECT_FALSE(isStreamingBased(L"http"));
    EXPECT_FALSE(isStreamingBased(L"/http:x"));
    EXPECT_FALSE(isStreamingBased(L""));
}

TEST(IsValidUrl, Allows1024CharactersAnd255InTheName)
{
    const Text folder = Text(1000, L'x') + L"/";
    EXPECT_TRUE(isValidUrl((folder + Text(23, L'y')).c_str()));
    EXPECT_FALSE(isValidUrl((folder + Text(24, L'y')).c_str()));
    EXPECT_TRUE(isValidUrl(Text(255, L'x').c_str()));
    EXPECT_FALSE(isValidUrl(Text(256, L'x').c_str()));
    EXPECT_TRUE(isValidUrl((Text(1023, L'x') + L"\\").c_str()));
    EXPECT_FALSE(isValidUrl((Text(1024, L'x') + L"/").c_str()));
    EXPECT_FALSE(isValidUrl((L"/" + Text(256, L'x')).c_str()));
    EXPECT_TRUE(isValidUrl(L""));
}

// --- Joining and bounding
// -------------------------------------------------------------------------

struct BuildRow {
    const wchar_t* folder;
    const wchar_t* name;
    const wchar_t* url;
};

// clang-format off
constexpr BuildRow kBuildRows[] = {
    {L"/tmp",       L"x",    L"/tmp/x"         },
    {L"/tmp/",      L"x",    L"/tmp/x"         },
    {L"",           L"x",    L"x"              },
    {nullptr,       L"x",    L"x"              },
    {L"/",          L"x",    L"/x"             },
    {L"/tmp",       L"",     L"/tmp/"          },
    {L"",           L"",     L""               },
    {nullptr,       nullptr, L""               },
    {L"/tmp",       L"/x",   L"/tmp//x"        },
    {L"C:\\dir\\",  L"x",    L"C:\\dir\\/x"    },  // only '/' is a separator that is there already
};
// clang-format on

TEST(BuildFileURL, PutsOneSeparatorBetween)
{
    for (const BuildRow& row : kBuildRows) {
        SCOPED_TRACE(shown(row.url));
        Text url = L"old";
        EXPECT_EQ(buildFileURL(url, row.folder, row.name), 0);
        EXPECT_EQ(url, row.url);
    }
}

TEST(BuildFileURL, MayWriteOverItsOwnArgument)
{
    Text url = L"/a folder with a long name";
    buildFileURL(url, url.c_str(), L"file");
    EXPECT_EQ(url, L"/a folder with a long name/file");
    buildFileURL(url, L"/tmp", url.c_str() + 27);
    EXPECT_EQ(url, L"/tmp/file");
}

TEST(BuildFileURL, CutsANameTo255Characters)
{
    const Text name = numbered(300);
    Text url;
    EXPECT_EQ(buildFileURL(url, L"/tmp", name.c_str()), 1);
    EXPECT_EQ(url, L"/tmp/" + name.substr(0, 255));
    EXPECT_EQ(buildFileURL(url, L"/tmp", name.substr(0, 255).c_str()), 0);
    EXPECT_EQ(buildFileURL(url, L"/tmp", name.substr(0, 256).c_str()), 1);
}

TEST(BuildFileURL, KeepsACounterWhenItCuts)
{
    const Text name = numbered(300);
    Text url;
    EXPECT_EQ(buildFileURL(url, L"/tmp", (name + L"(2).wav").c_str()), 1);
    EXPECT_EQ(url, L"/tmp/" + name.substr(0, 248) + L"(2).wav");
}

TEST(BuildFileURL, CutsTheNameSoThatTheWholeHas1023Characters)
{
    const Text folder = numbered(1000) + L"/";
    const Text name = numbered(30);
    Text url;
    EXPECT_EQ(buildFileURL(url, folder.c_str(), name.substr(0, 22).c_str()), 0);
    EXPECT_EQ(url.size(), 1023u);
    EXPECT_EQ(buildFileURL(url, folder.c_str(), name.substr(0, 23).c_str()), 1);
    EXPECT_EQ(url, folder + name.substr(0, 22));
    // The separator that has to be added counts.
    EXPECT_EQ(buildFileURL(url, numbered(1000).c_str(), name.substr(0, 23).c_str()), 1);
    EXPECT_EQ(url, folder + name.substr(0, 22));
}

// A name that offers too few characters stays as it is, and the result says "cut" all the same.
TEST(BuildFileURL, ReportsACutThatCouldNotBeMade)
{
    const Text folder = numbered(1022) + L"/";
    Text url;
    EXPECT_EQ(buildFileURL(url, folder.c_str(), L"a.wav"), 1);
    EXPECT_EQ(url, folder + L"a.wav");
    EXPECT_EQ(buildFileURL(url, numbered(1100).c_str(), L"a"), 1);
    EXPECT_EQ(url, numbered(1100) + L"/a");
}

TEST(AppendToUrl, AddsTextBeforeOrBehindTheExtension)
{
    const auto appended = [](Text url, const wchar_t* text, bool beforeExtension) {
        EXPECT_EQ(appendToUrl(url, text, beforeExtension), 0);
        return url;
    };
    EXPECT_EQ(appended(L"/d/a.wav", L" 2", true), L"/d/a 2.wav");
    EXPECT_EQ(appended(L"/d/a.wav", L" 2", false), L"/d/a.wav 2");
    EXPECT_EQ(appended(L"/d.x/a", L".savedState", false), L"/d.x/a.savedState");
    EXPECT_EQ(appended(L"/d.x/a", L" 2", true), L"/d.x/a 2");
    EXPECT_EQ(appended(L"a.wav", L" 2", true), L"a 2.wav");
    EXPECT_EQ(appended(L"/d/", L"x", true), L"/d/x");
    EXPECT_EQ(appended(L"/a", nullptr, false), L"/a");
    // A backslash ends the folder when splitting, but is no separator when joining.
    EXPECT_EQ(appended(L"C:\\a.wav", L" 2", true), L"C:\\/a 2.wav");
}

TEST(AppendToUrl, BoundsTheNewName)
{
    Text url = L"/d/" + numbered(250) + L".wav";
    EXPECT_EQ(appendToUrl(url, L"1234", true), 0);
    EXPECT_EQ(url, L"/d/" + numbered(250) + L"1.wav");
}

TEST(AppendToUrl, MayTakeItsOwnText)
{
    Text url = L"/d/name.wav";
    appendToUrl(url, url.c_str() + 7, false);
    EXPECT_EQ(url, L"/d/name.wav.wav");
}

TEST(RemoveCharacters, SparesCountersTagsAndExtensions)
{
    struct {
        const wchar_t* name;
        unsigned long count;
        const wchar_t* rest;
    } constexpr kRows[] = {
        {L"abcdef.tar.gz", 2, L"abcd.tar.gz"},
        {L"abcdef.tar.gz", 6, L".tar.gz"},
        {L"abcdef.tar.gz", 7, L"abcdef.tar.gz"},
        {L"abcdef", 2, L"abcd"},
        {L"abcdef", 6, L""},
        {L"abcdef", 7, L"abcdef"},
        {L"abcdef", 0, L"abcdef"},
        {L"abcdef(2).wav", 2, L"abcd(2).wav"},
        {L"abcdef<tag>.wav", 2, L"abcd<tag>.wav"},
        {L"abcdef(2)<tag>.wav", 2, L"abcd(2)<tag>.wav"},
        {L"abcdef(1)(2)(3)", 2, L"abcdef((2)(3)"}, // the last but one of three
        {L"ab(2)", 3, L"ab(2)"},
        {L"ab.cd(2)", 4, L"a(2)"}, // a counter goes before a dot
        {L"(2)abc", 1, L"(2)abc"},
        {L"<", 0, L"<"},
        {L"abc)>", 1, L"abc)"}, // closing marks are nothing special
        {L"", 0, L""},
        {L"", 1, L""},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(shown(row.name) + " " + std::to_string(row.count));
        Text name = row.name;
        removeCharacters(name, row.count);
        EXPECT_EQ(name, row.rest);
    }
}

TEST(BoundFilenameLen, KeepsFolderAndNameAt1023Characters)
{
    Text name = numbered(24);
    EXPECT_EQ(boundFilenameLen(name, 999), 0);
    EXPECT_EQ(name, numbered(24));
    EXPECT_EQ(boundFilenameLen(name, 1000), 1);
    EXPECT_EQ(name, numbered(23));
    EXPECT_EQ(boundFilenameLen(name, 1024), 1); // 24 of 23 characters: none goes
    EXPECT_EQ(name, numbered(23));
}

TEST(BoundFilenameLen, KeepsTheNameAt255Characters)
{
    Text name = numbered(256);
    EXPECT_EQ(boundFilenameLen(name, 0), 1);
    EXPECT_EQ(name, numbered(255));
    EXPECT_EQ(boundFilenameLen(name, 0), 0);
}

// --- Shortening
// -----------------------------------------------------------------------------------

TEST(GetShorterUrl, RefusesLimitsBelowFive)
{
    Text out = L"old";
    EXPECT_EQ(getShorterUrl(L"abcdefgh", out, 4), static_cast<XeResult>(0x80000008));
    EXPECT_EQ(getShorterUrl(L"", out, 0), static_cast<XeResult>(0x80000008));
    EXPECT_EQ(out, L"old");
    EXPECT_EQ(getShorterUrl(L"abcdefgh", out, 5), 0);
    EXPECT_EQ(out, L"a...h");
}

TEST(GetShorterUrl, CopiesWhatIsShorterThanTheLimit)
{
    Text out;
    EXPECT_EQ(getShorterUrl(L"/dir/a.wav", out, 11), 0);
    EXPECT_EQ(out, L"/dir/a.wav");
    // A url of just the limit is shortened already.
    EXPECT_EQ(getShorterUrl(L"abcdefghij", out, 10), 0);
    EXPECT_EQ(out, L"abcd...hij");
}

TEST(GetShorterUrl, ShortensTheFolderAndKeepsTheName)
{
    Text out;
    EXPECT_EQ(getShorterUrl(L"/Volumes/Audio/Takes/a.wav", out, 20), 0);
    EXPECT_EQ(out, L"/Volum...akes/a.wav");
}

TEST(GetShorterUrl, LeavesTheOutputWhenTheNameIsTooLong)
{
    Text out = L"old";
    EXPECT_EQ(getShorterUrl(L"/folder/abcdefghij", out, 15), 0);
    EXPECT_EQ(out, L"old");
    EXPECT_EQ(getShorterUrl(L"/folder/abcdefghij", out, 16), 0);
    EXPECT_EQ(out, L"/.../abcdefghij");
}

TEST(GetShorterUrl, MayWriteOverItsOwnArgument)
{
    Text url = L"/Volumes/Audio/Takes/a.wav";
    getShorterUrl(url, url, 20);
    EXPECT_EQ(url, L"/Volum...akes/a.wav");
    url = L"abcdefghij";
    getShorterUrl(url, url, 9);
    EXPECT_EQ(url, L"abc...hij");
}

// --- The same, slowly
// ----------------------------------------------------------------------------- Written from the
// rules alone, character by character, with positions instead of lengths.

bool isCounterMark(wchar_t c) { return c == L'(' || c == L'<'; }

Text slowRemove(const Text& name, std::size_t count)
{
    const wchar_t* const begin = name.data();
    const wchar_t* const end = begin + name.size();
    std::vector<const wchar_t*> marks; // from the last one
    const wchar_t* firstDot = end;
    for (const wchar_t* p = end; p-- > begin;) {
        if (isCounterMark(*p)) {
            marks.push_back(p);
        }
        if (*p == L'.') {
            firstDot = p;
        }
    }
    const wchar_t* const point = marks.size() > 1    ? marks[1]
                                 : marks.size() == 1 ? marks[0]
                                                     : firstDot;
    if (static_cast<std::size_t>(point - begin) < count) {
        return name;
    }
    Text rest(name.size() - count, L' ');
    wchar_t* next = rest.data();
    for (const wchar_t* p = begin; p < end; ++p) {
        if (p < point - count || p >= point) {
            *next++ = *p;
        }
    }
    return rest;
}

struct SlowResult {
    Text text;
    int cut;
};

SlowResult slowBound(const Text& name, std::size_t folderLength)
{
    SlowResult result{name, 0};
    if (name.size() + folderLength + 1 >= 1025) {
        result = {slowRemove(name, name.size() + folderLength - 1023), 1};
    }
    if (result.text.size() >= 256) {
        result = {slowRemove(result.text, result.text.size() - 255), 1};
    }
    return result;
}

SlowResult slowBuild(const Text& folder, const Text& name)
{
    Text front = folder;
    if (!folder.empty() && folder.back() != L'/') {
        front += L'/';
    }
    SlowResult result = slowBound(name, front.size());
    result.text.insert(0, front);
    return result;
}

Text slowReplace(const Text& text, std::size_t begin, std::size_t end)
{
    Text replaced(text.size() - (end - begin) + 3, L'.');
    wchar_t* next = replaced.data();
    const wchar_t* source = text.data();
    for (std::size_t i = 0; i < text.size(); ++i, ++source) {
        if (i == begin) {
            next += 3;
        }
        if (i < begin || i >= end) {
            *next++ = *source;
        }
    }
    return replaced;
}

bool odd(std::size_t value) { return value % 2 == 1; }

Text slowShorterName(const Text& name, std::size_t limit)
{
    const std::size_t h = name.size() / 2;
    const std::size_t k = (name.size() + 4 - limit) / 2;
    const std::size_t extra = odd(limit) ? 0 : 1;
    return odd(name.size()) ? slowReplace(name, h - k + 1, h + k + extra)
                            : slowReplace(name, h - k + extra, h + k);
}

Text slowShorterFolder(const Text& folder, const Text& name, std::size_t limit)
{
    const std::size_t f = folder.size();
    const std::size_t n = name.size();
    const std::size_t h = f / 2;
    const std::size_t k = (n + 5 + f - limit) / 2;
    const std::size_t s = odd(f) || odd(limit - n) ? h - k + 1 : h - k;
    const std::size_t e = odd(f) && odd(limit - n) ? k + h + 1 : k + h;
    return slowBuild(slowReplace(folder, s, e), name).text;
}

/// `folder` ends in its separator, or is empty.
Text slowShorter(const Text& folder, const Text& name, std::size_t limit, const Text& old)
{
    if (folder.size() + name.size() < limit) {
        return folder + name;
    }
    if (folder.empty()) {
        return slowShorterName(name, limit);
    }
    return name.size() + 5 < limit ? slowShorterFolder(folder, name, limit) : old;
}

/// A name of this length with up to three random marks in random places.
Text randomName(std::size_t length, std::mt19937& random)
{
    Text name = numbered(length);
    for (std::size_t marks = random() % 4; marks > 0 && length > 0; --marks) {
        name[random() % length] = L"(<.."[random() % 4];
    }
    return name;
}

TEST(SlowVersion, RemovesTheSameCharactersForAllLengthsAndCounts)
{
    std::mt19937 random(1);
    for (std::size_t length = 1; length <= kLongest; ++length) {
        const Text name = randomName(length, random);
        for (std::size_t count = 0; count <= kLongest; ++count) {
            Text removed = name;
            removeCharacters(removed, count);
            ASSERT_EQ(removed, slowRemove(name, count)) << length << ' ' << count;
        }
    }
}

TEST(SlowVersion, BoundsTheSameNamesForAllLengthsAndFolders)
{
    std::mt19937 random(2);
    for (std::size_t length = 1; length <= kLongest; ++length) {
        const Text name = randomName(length, random);
        for (std::size_t folder = 0; folder <= kLongest; ++folder) {
            Text bounded = name;
            const int cut = boundFilenameLen(bounded, folder);
            const SlowResult slow = slowBound(name, folder);
            ASSERT_EQ(bounded, slow.text) << length << ' ' << folder;
            ASSERT_EQ(cut, slow.cut) << length << ' ' << folder;
        }
    }
}

TEST(SlowVersion, BuildsTheSameUrlsForAllLengthsOfFolderAndName)
{
    std::mt19937 random(3);
    for (std::size_t length = 1; length <= kLongest; ++length) {
        const Text name = randomName(length, random);
        Text folder = numbered(kLongest);
        for (std::size_t left = kLongest + 1; left-- > 0;) {
            folder.resize(left);
            if (left > 0 && odd(random())) {
                folder.back() = L'/';
            }
            Text url;
            const int cut = buildFileURL(url, folder.c_str(), name.c_str());
            const SlowResult slow = slowBuild(folder, name);
            ASSERT_EQ(url, slow.text) << length << ' ' << left;
            ASSERT_EQ(cut, slow.cut) << length << ' ' << left;
        }
    }
}

TEST(SlowVersion, ShortensTheSameNamesForAllLengthsAndLimits)
{
    for (std::size_t length = 1; length <= kLongest; ++length) {
        const Text name = numbered(length);
        Text out;
        for (unsigned long limit = kLeastLimit; limit <= kLongest; ++limit) {
            ASSERT_EQ(getShorterUrl(name, out, limit), 0);
            ASSERT_EQ(out, slowShorter({}, name, limit, {})) << length << ' ' << limit;
        }
    }
}

void expectSameShorterUrls(std::size_t length, std::size_t nameLength, wchar_t separator,
                           std::mt19937& random)
{
    const Text folder = numbered(length - nameLength - 1) + Text(1, separator);
    const Text name = randomName(nameLength, random);
    for (unsigned long limit = kLeastLimit; limit <= kLongest; ++limit) {
        Text out = L"old";
        ASSERT_EQ(getShorterUrl(folder + name, out, limit), 0);
        ASSERT_EQ(out, slowShorter(folder, name, limit, L"old"))
            << length << ' ' << nameLength << ' ' << limit;
    }
}

// One even and one odd length of the name for every length and limit, so that every parity occurs.
TEST(SlowVersion, ShortensTheSameUrlsForAllLengthsAndLimits)
{
    std::mt19937 random(4);
    for (std::size_t length = 2; length <= kLongest && !HasFatalFailure(); ++length) {
        const std::size_t nameLength = random() % length / 2 * 2;
        expectSameShorterUrls(length, nameLength, L'/', random);
        expectSameShorterUrls(length, nameLength + 1 < length ? nameLength + 1 : 0, L'\\', random);
    }
}

// What a reader sees: a url that was shortened has one character less than the limit when it has a
// folder, and exactly the limit otherwise.
TEST(GetShorterUrl, FillsTheLimit)
{
    for (unsigned long limit = 12; limit <= 40; ++limit) {
        Text out;
        getShorterUrl(numbered(50), out, limit);
        EXPECT_EQ(out.size(), limit);
        getShorterUrl(numbered(40) + L"/a.wav", out, limit);
        EXPECT_EQ(out.size(), limit - 1);
    }
}

TEST(RemoveLastSeparator, TakesOneAwayAndLeavesOneThatIsAll)
{
    // clang-format off
    constexpr struct {
        const wchar_t* path;
        const wchar_t* result;
    } kRows[] = {
        { L"/dir/",   L"/dir"   },
        { L"/dir",    L"/dir"   },
        { L"/dir//",  L"/dir/"  },
        { L"C:\\d\\", L"C:\\d"  },
        { L"a/\\",    L"a/"     },
        { L"a/",      L"a"      },
        { L"a",       L"a"      },
        { L"//",      L"/"      },
        { L"/",       L"/"      },
        { L"\\",      L"\\"     },
        { L"",        L""       },
    };
    // clang-format on
    for (const auto& row : kRows) {
        Text path = row.path;
        removeLastSeparator(path);
        EXPECT_EQ(path, row.result);
    }
}

} // namespace
