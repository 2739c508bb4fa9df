#include "XePath.h"

#include "XeFileSystem.h"
#include "core/XePathPlatform.h"
#include "core/XeSafeCRTPlatform.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <functional>
#include <locale>
#include <new>
#include <stdexcept>
#include <string_view>

namespace xenon::path {
namespace {

using View = std::wstring_view;

constexpr std::size_t kMaxPath = 1023;
constexpr std::size_t kMaxElement = 256;
constexpr std::size_t kShortestScheme = 3;

/// Length of the root name: two separators, not three, and the name behind them.
std::size_t _rootNameLength(View path)
{
    if (!path.starts_with(L"//") || path.substr(2).starts_with(k_preferred_sep)) {
        return 0;
    }
    return std::min(path.find(k_preferred_sep, 2), path.size());
}

/// Where the text behind the last separator begins; a root name has no separators in this sense.
std::size_t _lastNameBegin(View path, std::size_t rootName)
{
    const std::size_t separator = path.substr(rootName).rfind(k_preferred_sep);
    return separator == View::npos ? rootName : rootName + separator + 1;
}

/// Where the separators end that run up to `end`, seen from behind; `rootName` when there is
/// nothing else between.
std::size_t _skipSeparatorsBack(View path, std::size_t rootName, std::size_t end)
{
    while (end > rootName && path[end - 1] == k_preferred_sep) {
        --end;
    }
    return end;
}

View _parentPath(View path)
{
    const std::size_t rootName = _rootNameLength(path);
    const std::size_t name = _lastNameBegin(path, rootName);
    const std::size_t parent = _skipSeparatorsBack(path, rootName, name);
    if (parent > rootName) {
        return path.substr(0, parent);
    }
    const bool hasRoot = name > rootName;
    if (name < path.size()) {
        return path.substr(0, hasRoot ? rootName + 1 : rootName);
    }
    return path.substr(0, hasRoot ? rootName : 0);
}

/// The last element: "." behind a separator at the end, "/" when there are only separators.
View _lastElement(View path)
{
    const std::size_t rootName = _rootNameLength(path);
    const std::size_t name = _lastNameBegin(path, rootName);
    if (name < path.size()) {
        return path.substr(name);
    }
    if (name == rootName) {
        return path;
    }
    const bool onlySeparators = _skipSeparatorsBack(path, rootName, name) == rootName;
    return onlySeparators ? k_preferred_sep_path : k_dot_path;
}

View _directoryName(View path)
{
    const View parent = _parentPath(path);
    return parent == k_preferred_sep_path ? View() : parent;
}

View _filename(View path)
{
    const View name = _lastElement(path);
    return name == k_dot_path ? View() : name;
}

/// Where the extension of a file name begins; its size when it has none.
std::size_t _extensionBegin(View name)
{
    return name == L".." ? name.size() : std::min(name.rfind(k_dot), name.size());
}

View _extension(View path)
{
    const View name = _filename(path);
    return name.substr(_extensionBegin(name));
}

bool _hasScheme(View path)
{
    const std::size_t colon = path.find(L':');
    return colon != View::npos && colon >= kShortestScheme;
}

/// Reads a path once, counting the characters since the last separator. The root name counts as one
/// element.
bool _hasLongElement(View path)
{
    std::size_t length = _rootNameLength(path);
    for (std::size_t i = length; i < path.size() && length <= kMaxElement; ++i) {
        length = path[i] == k_preferred_sep ? 0 : length + 1;
    }
    return length > kMaxElement;
}

/// The C library's character types for UTF-8; plain ASCII where the system lacks that locale.
std::locale _characterTypes()
{
    try {
        return {std::locale::classic(), XeCRT::_characterTypeLocale(), std::locale::ctype};
    } catch (const std::runtime_error&) {
        return std::locale::classic();
    }
}

/// Upper case by the C library's rules for UTF-8, whatever the host has made of the process's own
/// character-type category. The characters of most names come from a table.
class UpperCase {
public:
    static const UpperCase& instance()
    {
        static const UpperCase upperCase;
        return upperCase;
    }

    wchar_t operator()(wchar_t c) const
    {
        const std::size_t index = static_cast<char32_t>(c);
        return index < m_table.size() ? m_table[index] : m_rules.toupper(c);
    }

private:
    UpperCase()
    {
        for (std::size_t i = 0; i < m_table.size(); ++i) {
            m_table[i] = m_rules.toupper(static_cast<wchar_t>(i));
        }
    }

    const std::locale m_locale = _characterTypes();
    const std::ctype<wchar_t>& m_rules = std::use_facet<std::ctype<wchar_t>>(m_locale);
    std::array<wchar_t, 0x300> m_table{};
};

int _compareLengths(View a, View b)
{
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

int _compareExact(View a, View b)
{
    const int order = std::wmemcmp(a.data(), b.data(), std::min(a.size(), b.size()));
    return order != 0 ? order : _compareLengths(a, b);
}

int _compareUpperCase(View a, View b)
{
    const UpperCase& upper = UpperCase::instance();
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const wchar_t x = upper(a[i]);
        const wchar_t y = upper(b[i]);
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return _compareLengths(a, b);
}

} // namespace

_XeString<wchar_t> MakePreferredPath(const _XeString<wchar_t>& path)
{
    _XeString<wchar_t> preferred = path;
    if (!XeFileSystem::isStreamingBased(path.c_str())) {
        std::replace(preferred.begin(), preferred.end(), k_nonpreferred_sep, k_preferred_sep);
    }
    return preferred;
}

_XeString<wchar_t> Combine(const _XeString<wchar_t>& first, const _XeString<wchar_t>& second,
                           bool appendRooted)
{
    if (first.empty()) {
        return second;
    }
    if (second.empty()) {
        return first;
    }
    const bool rooted = is_preffered_sep(second.front());
    if (_hasScheme(second) || (rooted && !appendRooted)) {
        return second;
    }
    _XeString<wchar_t> joined;
    joined.reserve(first.size() + second.size() + 1);
    joined = first;
    // A volume ("vol:") gets its separator even before a rooted path.
    if (joined.back() == L':' || (!is_preffered_sep(joined.back()) && !rooted)) {
        joined += k_preferred_sep;
    }
    joined += second;
    return joined;
}

_XeString<wchar_t> GetDirectoryName(const _XeString<wchar_t>& path)
{
    return _XeString<wchar_t>(_directoryName(path));
}

_XeString<wchar_t> GetParentPath(const _XeString<wchar_t>& path) { return GetDirectoryName(path); }

_XeString<wchar_t> GetFilename(const _XeString<wchar_t>& path)
{
    return _XeString<wchar_t>(_filename(path));
}

_XeString<wchar_t> GetFilenameWithoutExtension(const _XeString<wchar_t>& path)
{
    const View name = _filename(path);
    return _XeString<wchar_t>(name.substr(0, _extensionBegin(name)));
}

_XeString<wchar_t> GetExtension(const _XeString<wchar_t>& path)
{
    return _XeString<wchar_t>(_extension(path));
}

Facets SplitFacets(const _XeString<wchar_t>& path)
{
    const View name = _filename(path);
    const std::size_t dot = _extensionBegin(name);
    return {_XeString<wchar_t>(_directoryName(path)), _XeString<wchar_t>(name.substr(0, dot)),
            _XeString<wchar_t>(name.substr(dot))};
}

_XeString<wchar_t> ReplaceExtension(const _XeString<wchar_t>& path, const _XeString<wchar_t>& ext)
{
    const std::size_t stem = path.size() - _extension(path).size();
    return AppendExtension(_XeString<wchar_t>(View(path).substr(0, stem)), ext);
}

_XeString<wchar_t> AppendExtension(const _XeString<wchar_t>& path, const _XeString<wchar_t>& ext)
{
    _XeString<wchar_t> extended = path;
    if (!ext.empty() && ext.front() != k_dot) {
        extended += k_dot;
    }
    extended += ext;
    return extended;
}

int Compare(const _XeString<wchar_t>& a, const _XeString<wchar_t>& b, bool ignoreCase,
            bool normalizeForm)
{
    using normalize::form_c;
    if (normalizeForm && !(normalize::_isPlain(a, form_c) && normalize::_isPlain(b, form_c))) {
        return Compare(normalize::normalize(a, form_c), normalize::normalize(b, form_c), ignoreCase,
                       false);
    }
    return ignoreCase ? _compareUpperCase(a, b) : _compareExact(a, b);
}

int PreferredCompare(const _XeString<wchar_t>& a, const _XeString<wchar_t>& b)
{
    return Compare(a, b, true, true);
}

_XeString<wchar_t> PreferredCompareString(const _XeString<wchar_t>& path)
{
    _XeString<wchar_t> key = path;
    std::transform(key.begin(), key.end(), key.begin(), std::cref(UpperCase::instance()));
    return normalize::normalize(key, normalize::form_c);
}

bool IsHiddenPath(const _XeString<wchar_t>& path) { return _filename(path).starts_with(k_dot); }

bool IsValidPath(const _XeString<wchar_t>& path)
{
    return XeFileSystem::isStreamingBased(path.c_str()) ||
           (path.size() <= kMaxPath && !_hasLongElement(path));
}

} // namespace xenon::path

namespace xenon::file {

bool exists(const _XeString<wchar_t>& path) { return XeFileSystem::isFilePresent(path); }

bool exists(const wchar_t* path) { return XeFileSystem::isFilePresent(path); }

} // namespace xenon::file

namespace xenon::directory {

bool exists(const _XeString<wchar_t>& path) { return XeFileSystem::isFolderPresent(path); }

bool exists(const wchar_t* path) { return XeFileSystem::isFolderPresent(path); }

} // namespace xenon::directory

namespace xenon::normalize {

bool _isPlain(std::wstring_view text, form target)
{
    // First characters that a form may change or join to the one before.
    constexpr char32_t kFirstTouched[] = {0x00C0, 0x00A0, 0x0300, 0x00A0};
    const char32_t limit = kFirstTouched[target];
    // No early exit: the loop is meant to be vectorised.
    bool plain = true;
    for (const wchar_t c : text) {
        plain &= static_cast<char32_t>(c) < limit;
    }
    return plain;
}

_XeString<wchar_t> normalize(const _XeString<wchar_t>& text, form target)
{
    try {
        return _isPlain(text, target) ? text : _normalize(text, target);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace xenon::normalize
