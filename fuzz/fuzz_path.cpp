// Paths: every cut is where Boost.Filesystem cuts, the parts make the name again, and comparison is
// an order that agrees with its rule written out.

#include "FuzzInput.h"
#include "XePath.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <cwctype>
#include <string>

namespace {

using namespace xenon::path;
using Text = _XeString<wchar_t>;
namespace fs = boost::filesystem;

fs::path boostPath(const std::wstring& text) { return {text, xenon::get_facet()}; }

std::wstring wideOf(const fs::path& path) { return path.wstring(xenon::get_facet()); }

void checkCuts(const Text& text)
{
    const fs::path path = boostPath(text);
    const std::wstring parent = wideOf(path.parent_path());
    const std::wstring filename = wideOf(path.filename());
    require(GetDirectoryName(text) == (parent == L"/" ? std::wstring() : parent));
    require(GetFilename(text) == (filename == L"." ? std::wstring() : filename));
    require(GetExtension(text) == wideOf(path.extension()));

    const Facets facets = SplitFacets(text);
    require(facets.directory == GetDirectoryName(text));
    require(facets.name + facets.extension == GetFilename(text));
    require(facets.name == GetFilenameWithoutExtension(text));
    require(IsHiddenPath(text) == GetFilename(text).starts_with(L'.'));
}

bool hasOnlyShortElements(const Text& text)
{
    const fs::path path = boostPath(text);
    return std::all_of(path.begin(), path.end(),
                       [](const fs::path& element) { return wideOf(element).size() <= 256; });
}

void checkWhole(const Text& text)
{
    const Text preferred = MakePreferredPath(text);
    if (preferred == text) {
        require(MakePreferredPath(preferred) == preferred);
    }
    if (text.find(L':') == Text::npos) {
        require(preferred.find(L'\\') == Text::npos);
        require(IsValidPath(text) == (text.size() <= 1023 && hasOnlyShortElements(text)));
    }
    require(ReplaceExtension(text, L"") + GetExtension(text) == text);
    require(GetExtension(AppendExtension(text + L"x", L"wav")) == L".wav");
}

void checkJoin(const Text& first, const Text& second)
{
    const Text joined = Combine(first, second, true);
    require(joined.ends_with(second));
    require(joined == second || joined.starts_with(first));
    require(joined.size() <= first.size() + 1 + second.size());
    const Text replaced = Combine(first, second, false);
    require(replaced == joined || (replaced == second && second.starts_with(L'/')));
}

Text comparable(const Text& text)
{
    Text result = xenon::normalize::normalize(text, xenon::normalize::form_c);
    std::transform(result.begin(), result.end(), result.begin(), [](wchar_t c) {
        return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(c)));
    });
    return result;
}

int sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

void checkOrder(const Text& a, const Text& b)
{
    const int order = sign(PreferredCompare(a, b));
    require(order == sign(comparable(a).compare(comparable(b))));
    require(order == -sign(PreferredCompare(b, a)));
    require(PreferredCompare(a, a) == 0);
    require((Compare(a, b, false, false) == 0) == (a == b));
}

bool isWidenedSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; }

void checkNormalization(const Text& text)
{
    for (const auto form : {xenon::normalize::form_d, xenon::normalize::form_kd,
                            xenon::normalize::form_c, xenon::normalize::form_kc}) {
        const Text normal = xenon::normalize::normalize(text, form);
        const bool insideBmp = std::none_of(normal.begin(), normal.end(), isWidenedSurrogate);
        require(xenon::normalize::normalize(normal, form) == (insideBmp ? normal : Text()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [first, second] = twoTextsOf(bytesOf(data, size));
    for (const Text& text : {first, second}) {
        checkCuts(text);
        checkWhole(text);
        checkNormalization(text);
    }
    checkJoin(first, second);
    checkOrder(first, second);
    return 0;
}
