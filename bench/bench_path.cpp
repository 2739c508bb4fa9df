// Joining, cutting, normalising and comparing of paths beside std::filesystem, Boost.Filesystem and
// ICU. The peers get the text form they like best, ready made: narrow for the path libraries,
// UTF-16 for ICU. "floor" is the least that could give the same strings: copies of known lengths
// for paths, one memory comparison of equal names. Ours comes last in each group.

#include "XePath.h"

#include "ComparedRows.h"

#include <benchmark/benchmark.h>
#include <boost/filesystem/path.hpp>
#include <unicode/unorm.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <array>
#include <cwchar>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

using Text = _XeString<wchar_t>;
namespace path = xenon::path;

// Without this a peer's answer could be thrown away unmade.
template <typename Value>
void use(Value&& value)
{
    benchmark::DoNotOptimize(value);
}

void addJoin()
{
    static const Text kFolder = L"/home/user/Recordings/2024-05-17";
    static const Text kName = L"Take 12 - Piano.wav";
    static const std::string kNarrowFolder = "/home/user/Recordings/2024-05-17";
    static const std::string kNarrowName = "Take 12 - Piano.wav";

    addComparedRow("join", "floor", [] {
        std::wstring joined;
        joined.reserve(kFolder.size() + 1 + kName.size());
        joined.append(kFolder).append(1, L'/').append(kName);
        use(joined);
    });
    addComparedRow("join", "std", [] { use(std::filesystem::path(kNarrowFolder) / kNarrowName); });
    addComparedRow("join", "boost",
                   [] { use(boost::filesystem::path(kNarrowFolder) / kNarrowName); });
    addComparedRow("join", "boost_wide", [] {
        const boost::filesystem::path folder(kFolder, xenon::get_facet());
        use((folder / boost::filesystem::path(kName, xenon::get_facet()))
                .wstring(xenon::get_facet()));
    });
    addComparedRow("join", "Combine", [] { use(path::Combine(kFolder, kName, false)); });
}

void addSplit()
{
    static const Text kPath = L"/home/user/Recordings/2024-05-17/Take 12 - Piano.wav";
    static const std::wstring_view kView = kPath;
    static const std::filesystem::path kStd =
        "/home/user/Recordings/2024-05-17/Take 12 - Piano.wav";
    static const boost::filesystem::path kBoost =
        "/home/user/Recordings/2024-05-17/Take 12 - Piano.wav";

    addComparedRow("split", "floor", [] {
        use(std::array{std::wstring(kView.substr(0, 32)), std::wstring(kView.substr(33, 15)),
                       std::wstring(kView.substr(48))});
    });
    addComparedRow("split", "std", [] {
        use(std::array{kStd.parent_path(), kStd.stem(), kStd.extension()});
    });
    addComparedRow("split", "boost", [] {
        use(std::array{kBoost.parent_path(), kBoost.stem(), kBoost.extension()});
    });
    addComparedRow("split", "boost_wide", [] {
        const auto& facet = xenon::get_facet();
        const boost::filesystem::path whole(kPath, facet);
        use(std::array{whole.parent_path().wstring(facet), whole.stem().wstring(facet),
                       whole.extension().wstring(facet)});
    });
    addComparedRow("split", "SplitFacets", [] { use(path::SplitFacets(kPath)); });
}

std::u16string utf16(const Text& text)
{
    std::u16string units(2 * text.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF32(units.data(), static_cast<std::int32_t>(units.size()), &length,
                   reinterpret_cast<const UChar32*>(text.data()),
                   static_cast<std::int32_t>(text.size()), &error);
    units.resize(static_cast<std::size_t>(length));
    return units;
}

/// One name in two spellings that PreferredCompare takes as equal.
struct Name {
    Text a;
    Text b;
    Text sameAsA = Text(a.c_str());
    std::u16string a16 = utf16(a);
    std::u16string b16 = utf16(b);
};

void addNormalize(const std::string& group, const Name& name)
{
    addComparedRow(group, "floor", [&name] { use(std::wstring(name.b)); });
    addComparedRow(group, "icu", [&name] {
        UErrorCode error = U_ZERO_ERROR;
        std::array<char16_t, 256> composed;
        use(unorm2_normalize(unorm2_getNFCInstance(&error), name.b16.data(),
                             static_cast<std::int32_t>(name.b16.size()), composed.data(),
                             static_cast<std::int32_t>(composed.size()), &error));
        use(composed);
    });
    addComparedRow(group, "normalize",
                   [&name] { use(xenon::normalize::normalize(name.b, xenon::normalize::form_c)); });
}

void addCompare(const std::string& group, const Name& name)
{
    addComparedRow(group, "floor", [&name] {
        use(std::wmemcmp(name.a.data(), name.sameAsA.data(), name.a.size()));
    });
    addComparedRow(group, "wcscasecmp",
                   [&name] { use(wcscasecmp(name.a.c_str(), name.b.c_str())); });
    addComparedRow(group, "icu", [&name] {
        UErrorCode error = U_ZERO_ERROR;
        use(unorm_compare(name.a16.data(), static_cast<std::int32_t>(name.a16.size()),
                          name.b16.data(), static_cast<std::int32_t>(name.b16.size()),
                          U_COMPARE_IGNORE_CASE, &error));
    });
    addComparedRow(group, "PreferredCompare",
                   [&name] { use(path::PreferredCompare(name.a, name.b)); });
}

// Before main(), which runs what is registered.
[[maybe_unused]] const bool g_registered = [] {
    static const Name kAscii{L"Take 12 - Piano close left.wav", L"take 12 - piano close left.WAV"};
    static const Name kAccented{L"Prise 12 - \x00C9t\x00E9, c\x00F4t\x00E9 cour.wav",
                                L"prise 12 - \x00E9t\x00E9, c\x00F4t\x00E9 cour.WAV"};
    static const Name kDecomposed{L"Prise 12 - \x00C9t\x00E9, c\x00F4t\x00E9 cour.wav",
                                  L"prise 12 - e\x0301te\x0301, co\x0302te\x0301 cour.WAV"};
    static const Name kJapanese{L"\x30C6\x30A4\x30AF 12 - \x30D4\x30A2\x30CE.wav",
                                L"\x30C6\x30A4\x30AF 12 - \x30D2\x309A\x30A2\x30CE.WAV"};
    addJoin();
    addSplit();
    addNormalize("normalize_ascii", kAscii);
    addNormalize("normalize_accented", kAccented);
    addNormalize("normalize_decomposed", kDecomposed);
    addNormalize("normalize_japanese", kJapanese);
    addCompare("compare_ascii", kAscii);
    addCompare("compare_accented", kAccented);
    addCompare("compare_decomposed", kDecomposed);
    addCompare("compare_japanese", kJapanese);
    return true;
}();

} // namespace
