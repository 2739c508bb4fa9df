#include "XeFileSystem.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace XeFileSystem {
namespace {

using View = std::wstring_view;

constexpr wchar_t kSeparator = L'/';
constexpr wchar_t kSeparators[] = L"/\\";
constexpr wchar_t kSchemeEnd = L':';
constexpr wchar_t kExtensionMark = L'.';
constexpr wchar_t kCounterMarks[] = L"(<";
constexpr wchar_t kMonikerMark = L'?';
constexpr View kEllipsis = L"...";
constexpr View kStreamingSchemes[] = {L"http", L"https", L"ipe"};

constexpr std::size_t kMaxBuiltUrl = 1023;
constexpr std::size_t kMaxValidUrl = 1024;
constexpr std::size_t kMaxName = 255;
constexpr std::size_t kMinScheme = 3;
constexpr std::size_t kMaxScheme = 7;
constexpr unsigned long kLeastShortUrl = 5;

struct Parts {
    View front;
    View back;
};

View _view(wchar_t const* text) { return text == nullptr ? View() : View(text); }

Parts _split(View url)
{
    const std::size_t separator = url.find_last_of(kSeparators);
    if (separator == View::npos) {
        return {View(), url};
    }
    const View folder = separator == 0 ? View(&kSeparator, 1) : url.substr(0, separator + 1);
    return {folder, url.substr(separator + 1)};
}

/// The second part begins at the extension mark, or is empty.
Parts _splitExtension(View name)
{
    const std::size_t mark = name.rfind(kExtensionMark);
    if (mark == View::npos || name.find_first_of(kSeparators, mark) != View::npos) {
        return {name, View()};
    }
    return {name.substr(0, mark), name.substr(mark)};
}

View _scheme(View url)
{
    const std::size_t length = url.find(kSchemeEnd);
    const bool valid = length != View::npos && length >= kMinScheme && length <= kMaxScheme;
    return valid ? url.substr(0, length) : View();
}

/// Where the part of a name begins that removeCharacters spares.
std::size_t _removalPoint(View name)
{
    const std::size_t last = name.find_last_of(kCounterMarks);
    if (last == View::npos) {
        return std::min(name.find(kExtensionMark), name.size());
    }
    const std::size_t earlier = name.substr(0, last).find_last_of(kCounterMarks);
    return earlier == View::npos ? last : earlier;
}

struct Built {
    _XeString<wchar_t> url;
    bool cut;
};

Built _build(View folder, View name)
{
    const bool needsSeparator = !folder.empty() && folder.back() != kSeparator;
    _XeString<wchar_t> bounded(name);
    const bool cut = boundFilenameLen(bounded, folder.size() + (needsSeparator ? 1 : 0)) != 0;

    _XeString<wchar_t> url;
    url.reserve(folder.size() + 1 + bounded.size());
    url = folder;
    if (needsSeparator) {
        url += kSeparator;
    }
    url += bounded;
    return {std::move(url), cut};
}

/// Both ends of a text around an ellipsis, `length` characters in all. The front gets the odd one.
_XeString<wchar_t> _withoutMiddle(View text, std::size_t length)
{
    const std::size_t kept = length - kEllipsis.size();
    _XeString<wchar_t> shorter(text.substr(0, kept - kept / 2));
    shorter += kEllipsis;
    shorter += text.substr(text.size() - kept / 2);
    return shorter;
}

} // namespace

XeResult splitFileURL(wchar_t const* url, _XeString<wchar_t>& folder, _XeString<wchar_t>& name)
{
    const Parts parts = _split(_view(url));
    _XeString<wchar_t> newFolder(parts.front);
    name = _XeString<wchar_t>(parts.back);
    folder = std::move(newFolder);
    return kXeOk;
}

XeResult splitFileURL(wchar_t const* url, _XeString<wchar_t>& folder, _XeString<wchar_t>& name,
                      _XeString<wchar_t>& scheme)
{
    _XeString<wchar_t> newScheme(_scheme(_view(url)));
    splitFileURL(url, folder, name);
    scheme = std::move(newScheme);
    return kXeOk;
}

int buildFileURL(_XeString<wchar_t>& out, wchar_t const* folder, wchar_t const* name)
{
    Built built = _build(_view(folder), _view(name));
    out = std::move(built.url);
    return built.cut ? 1 : 0;
}

XeResult appendToUrl(_XeString<wchar_t>& url, wchar_t const* text, bool beforeExtension)
{
    const auto [folder, name] = _split(url);
    const auto [base, extension] = _splitExtension(name);
    _XeString<wchar_t> newName(base);
    newName += beforeExtension ? _view(text) : extension;
    newName += beforeExtension ? extension : _view(text);
    url = _build(folder, newName).url;
    return kXeOk;
}

XeResult splitFileExt(wchar_t const* name, _XeString<wchar_t>& base, _XeString<wchar_t>& ext,
                      bool dropDot)
{
    const Parts parts = _splitExtension(_view(name));
    const bool drops = dropDot && !parts.back.empty();
    _XeString<wchar_t> newBase(parts.front);
    ext = _XeString<wchar_t>(parts.back.substr(drops ? 1 : 0));
    base = std::move(newBase);
    return kXeOk;
}

XeResult getScheme(wchar_t const* url, _XeString<wchar_t>& scheme)
{
    scheme = _XeString<wchar_t>(_scheme(_view(url)));
    return kXeOk;
}

bool isValidUrl(wchar_t const* url)
{
    const View text = _view(url);
    return text.size() <= kMaxValidUrl && _split(text).back.size() <= kMaxName;
}

bool isStreamingBased(wchar_t const* url)
{
    const View scheme = _scheme(_view(url));
    return std::find(std::begin(kStreamingSchemes), std::end(kStreamingSchemes), scheme) !=
           std::end(kStreamingSchemes);
}

int boundFilenameLen(_XeString<wchar_t>& name, unsigned long folderLength)
{
    int cut = 0;
    if (name.size() + folderLength > kMaxBuiltUrl) {
        removeCharacters(name, name.size() + folderLength - kMaxBuiltUrl);
        cut = 1;
    }
    if (name.size() > kMaxName) {
        removeCharacters(name, name.size() - kMaxName);
        cut = 1;
    }
    return cut;
}

void removeCharacters(_XeString<wchar_t>& name, unsigned long count)
{
    const std::size_t point = _removalPoint(name);
    if (count <= point) {
        name.erase(point - count, count);
    }
}

XeResult getShorterUrl(_XeString<wchar_t> const& url, _XeString<wchar_t>& out,
                       unsigned long maxLength)
{
    if (maxLength < kLeastShortUrl) {
        return kXeGeneralFailure;
    }
    if (url.size() < maxLength) {
        out = url;
        return kXeOk;
    }
    const auto [folder, name] = _split(url);
    if (folder.empty()) {
        out = _withoutMiddle(url, maxLength);
    } else if (name.size() + kEllipsis.size() + 2 < maxLength) {
        out = _build(_withoutMiddle(folder, maxLength - 1 - name.size()), name).url;
    }
    return kXeOk;
}

XeResult parseMoniker(wchar_t const* moniker, _XeString<wchar_t>& path, _XeString<wchar_t>& tail)
{
    const View text = _view(moniker);
    const std::size_t mark = std::min(text.find(kMonikerMark), text.size());
    _XeString<wchar_t> newPath(text.substr(0, mark));
    tail = _XeString<wchar_t>(text.substr(std::min(mark + 1, text.size())));
    path = std::move(newPath);
    return kXeOk;
}

XeResult parseMoniker(wchar_t const* moniker, _XeString<wchar_t>& path)
{
    _XeString<wchar_t> tail;
    return parseMoniker(moniker, path, tail);
}

void removeLastSeparator(_XeString<wchar_t>& path)
{
    if (path.size() > 1 && path.find_last_of(kSeparators) == path.size() - 1) {
        path.pop_back();
    }
}

} // namespace XeFileSystem
