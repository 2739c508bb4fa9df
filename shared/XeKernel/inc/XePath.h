#pragma once

#include "XeString.h"

/// Paths as text.
///
/// Nothing here touches the disk, except the two `exists`. A path is a list of names between '/'
/// characters, cut as Boost.Filesystem version 3 cuts it on POSIX:
///
/// - repeated separators count as one, and are kept;
/// - a path that ends in a separator has the last name ".";
/// - the last name of a path of separators only is "/";
/// - exactly two separators in front make, with the name behind them, a root name ("//net").
///
/// Any text is a path: none of these functions fails, and none throws but for lack of memory.
/// Characters pass through unjudged and unconverted. [any]

namespace xenon::path {

inline constexpr wchar_t k_dot = L'.';
inline constexpr wchar_t k_dot_path[] = L".";
inline constexpr wchar_t k_preferred_sep = L'/';
inline constexpr wchar_t k_nonpreferred_sep = L'\\';
inline constexpr wchar_t k_preferred_sep_path[] = L"/";

/// A path in three parts, each as the function of its name gives it.
struct Facets {
    _XeString<wchar_t> directory; ///< GetDirectoryName
    _XeString<wchar_t> name;      ///< GetFilenameWithoutExtension
    _XeString<wchar_t> extension; ///< GetExtension

    friend bool operator==(const Facets&, const Facets&) = default;
};

/// True for '/'.
constexpr bool is_preffered_sep(wchar_t c) { return c == k_preferred_sep; }

/// True for '\\'.
constexpr bool is_nonpreferred_sep(wchar_t c) { return c == k_nonpreferred_sep; }

/// Turns every '\\' into '/'. A streaming-based path (XeFileSystem::isStreamingBased) stays as it
/// is.
_XeString<wchar_t> MakePreferredPath(const _XeString<wchar_t>& path); // "a\\b" -> "a/b"

/// Joins two paths.
///
///     Combine(L"/a", L"b", false);            // "/a/b"; the same for "/a/"
///     Combine(L"/a", L"/b", false);           // "/b"
///     Combine(L"/a", L"/b", true);            // "/a/b"
///     Combine(L"/a", L"file:///x", true);     // "file:///x"
///     Combine(L"vol:", L"b", false);          // "vol:/b"
///
/// An empty path gives the other one. A second path whose first ':' stands at index 3 or later has
/// a scheme and replaces the first, as does one that begins with '/' unless `appendRooted`.
/// Otherwise a separator is put between the two, except where one of them has it there already.
///
/// @param appendRooted  Hangs a second path that begins with '/' below the first.
_XeString<wchar_t> Combine(const _XeString<wchar_t>& first, const _XeString<wchar_t>& second,
                           bool appendRooted);

/// The path without its last name and the separators before it; empty, not "/", for a name directly
/// below the root.
_XeString<wchar_t> GetDirectoryName(const _XeString<wchar_t>& path); // "/a/b.wav" -> "/a"
_XeString<wchar_t> GetParentPath(const _XeString<wchar_t>& path);    // another name of the same

/// The last name; empty when it is ".", as after a separator at the end.
_XeString<wchar_t> GetFilename(const _XeString<wchar_t>& path); // "/a/b.wav" -> "b.wav"

/// GetFilename up to its last dot. The name ".." has no extension.
_XeString<wchar_t> GetFilenameWithoutExtension(const _XeString<wchar_t>& path); // "/a/b.wav" -> "b"

/// GetFilename from its last dot, or empty. A name that only begins with a dot is all extension.
_XeString<wchar_t> GetExtension(const _XeString<wchar_t>& path); // "/a/b.wav" -> ".wav"

/// Cuts a path in three at once.
Facets SplitFacets(const _XeString<wchar_t>& path); // "/a/b.wav" -> "/a", "b", ".wav"

/// Removes the extension, then adds `ext` unless it is empty, with a dot before it if it has none.
_XeString<wchar_t> ReplaceExtension(const _XeString<wchar_t>& path,
                                    const _XeString<wchar_t>& ext); // "a.tar", "gz" -> "a.gz"

/// Adds `ext` unless it is empty, with a dot before it if it has none, and removes nothing.
_XeString<wchar_t> AppendExtension(const _XeString<wchar_t>& path,
                                   const _XeString<wchar_t>& ext); // "a.tar", "gz" -> "a.tar.gz"

/// Compares two paths character by character, and the shorter one first when it begins the other.
///
/// `ignoreCase` compares the upper-case characters, mapped one by one by the C library's rules for
/// UTF-8. `normalizeForm` compares the composed forms; normalisation comes first, so characters
/// outside the Basic Multilingual Plane keep their case (see normalize::normalize), and all texts
/// that are not valid UTF-32 compare as the empty text.
///
/// @return  Negative, 0 or positive.
int Compare(const _XeString<wchar_t>& a, const _XeString<wchar_t>& b, bool ignoreCase,
            bool normalizeForm);

/// `Compare(a, b, true, true)`: the library's notion of equal names.
int PreferredCompare(const _XeString<wchar_t>& a, const _XeString<wchar_t>& b);

/// A comparison key: the path in upper case, then composed. PreferredCompare works in the other
/// order, so for a few characters (a lower-case letter that composes only with a mark whose upper
/// case is a letter, such as U+0345, and letters outside the Basic Multilingual Plane) equal keys
/// and PreferredCompare disagree.
_XeString<wchar_t> PreferredCompareString(const _XeString<wchar_t>& path);

/// True when GetFilename begins with a dot.
bool IsHiddenPath(const _XeString<wchar_t>& path);

/// True when the path has at most 1023 characters and none of its elements more than 256, a root
/// name counted with its separators. A streaming-based path is always valid.
bool IsValidPath(const _XeString<wchar_t>& path);

} // namespace xenon::path

namespace xenon::file {

/// XeFileSystem::isFilePresent. Null is no file. [any], blocks on the file system.
bool exists(const _XeString<wchar_t>& path);
bool exists(const wchar_t* path);

} // namespace xenon::file

namespace xenon::directory {

/// XeFileSystem::isFolderPresent. Null is no folder. [any], blocks on the file system.
bool exists(const _XeString<wchar_t>& path);
bool exists(const wchar_t* path);

} // namespace xenon::directory

namespace xenon::normalize {

/// The normalisation forms of Unicode Standard Annex 15, numbered as CoreFoundation numbers them.
enum form {
    form_d = 0,  ///< decomposed
    form_kd = 1, ///< compatibility decomposed
    form_c = 2,  ///< composed
    form_kc = 3, ///< compatibility composed
};

/// Brings text into a normalisation form.
///
/// The result holds the UTF-16 units of the normalised text, one per element: a character outside
/// the Basic Multilingual Plane comes out as its two surrogates. Normalising such a result again
/// therefore gives the empty text.
///
/// @param text  Valid UTF-32; for any other text (a surrogate, a number above 0x10FFFF) the result
///              is empty. It is empty, too, when there is not enough memory.
/// @param target  One of the four.
_XeString<wchar_t> normalize(const _XeString<wchar_t>& text, form target);

} // namespace xenon::normalize
