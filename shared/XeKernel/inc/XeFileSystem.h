#pragma once

#include "XeResult.h"
#include "XeString.h"

/// File-system services.
///
/// Paths are wide text with '/' between names. In this library's words a URL is a plain path or a
/// text with a scheme ("http://..."). A null text argument counts as the empty text. Results may be
/// written over an argument's own text: `splitFileURL(url.c_str(), folder, url)` is allowed. [any]
namespace XeFileSystem {

// --- Tests
// ----------------------------------------------------------------------------------------

/// True when `path` names a regular file, directly or through links. A path that cannot be looked
/// up (no rights on a parent, a loop of links, a name too long) is not present. Blocks on the file
/// system.
bool isFilePresent(wchar_t const* path);
bool isFilePresent(_XeString<wchar_t> const& path);

/// The same for a folder.
bool isFolderPresent(wchar_t const* path);
bool isFolderPresent(_XeString<wchar_t> const& path);

// --- URLs and file names
// -------------------------------------------------------------------------- These work on text
// alone. When built, a path has at most 1023 characters and a file name at most 255; as valid
// counts a path of up to 1024.

/// Cuts a URL behind its last '/' or '\\'. The folder keeps that separator.
///
///     splitFileURL(L"/dir/a.wav", folder, name);  // "/dir/", "a.wav"
///     splitFileURL(L"/a.wav", folder, name);      // "/", "a.wav"
///     splitFileURL(L"\\a.wav", folder, name);     // "/", "a.wav"
///     splitFileURL(L"a.wav", folder, name);       // "", "a.wav"
///
/// @return  0.
XeResult splitFileURL(wchar_t const* url, _XeString<wchar_t>& folder, _XeString<wchar_t>& name);

/// The same, with the scheme as getScheme gives it. The folder still begins with it.
XeResult splitFileURL(wchar_t const* url, _XeString<wchar_t>& folder, _XeString<wchar_t>& name,
                      _XeString<wchar_t>& scheme);

/// Joins folder and name with one '/', bounding the name as boundFilenameLen does. Only a '/' at
/// the folder's end counts as a separator that is there already, not a '\\'.
///
/// @return  1 when the name was too long and had to be cut, else 0.
int buildFileURL(_XeString<wchar_t>& out, wchar_t const* folder, wchar_t const* name);

/// Adds text to a URL's file name, before or behind its extension, and bounds the new name as
/// buildFileURL does.
///
///     appendToUrl(url = L"/d/a.wav", L" 2", true);   // "/d/a 2.wav"
///     appendToUrl(url = L"/d/a.wav", L".pk", false); // "/d/a.wav.pk"
///
/// @return  0.
XeResult appendToUrl(_XeString<wchar_t>& url, wchar_t const* text, bool beforeExtension);

/// Cuts a name before its last '.'. A dot in a folder's name does not count, and a name like
/// ".profile" is all extension.
///
///     splitFileExt(L"a.tar.gz", base, ext, false);  // "a.tar", ".gz"
///     splitFileExt(L"a.tar.gz", base, ext, true);   // "a.tar", "gz"
///     splitFileExt(L"dir.d/file", base, ext, true); // "dir.d/file", ""
///
/// @return  0.
XeResult splitFileExt(wchar_t const* name, _XeString<wchar_t>& base, _XeString<wchar_t>& ext,
                      bool dropDot);

/// The text before the first ':' when that is 3 to 7 characters long, else the empty text; so a
/// drive letter is no scheme.
/// @return  0.
XeResult getScheme(wchar_t const* url, _XeString<wchar_t>& scheme); // "http://h/x" -> "http"

/// True when the URL has at most 1024 characters and its file name at most 255.
bool isValidUrl(wchar_t const* url);

/// True when the scheme is exactly "http", "https" or "ipe", in this letter case.
bool isStreamingBased(wchar_t const* url);

/// Cuts a file name so that a folder and the name together stay at 1023 characters, and the name at
/// 255. What goes is chosen by removeCharacters, which may find nothing to remove.
///
/// @param folderLength  Characters of the folder, its trailing separator included.
/// @return              1 when a limit was exceeded, else 0.
int boundFilenameLen(_XeString<wchar_t>& name, unsigned long folderLength);

/// Removes `count` characters from a file name where it hurts least.
///
///     removeCharacters(name = L"abcdef.tar.gz", 2);  // "abcd.tar.gz"
///     removeCharacters(name = L"abcdef (2).wav", 3); // "abcd(2).wav"
///     removeCharacters(name = L"abcdef", 2);         // "abcd"
///
/// They go from directly before the counter or tag of the name: its last '(' or '<', or the one
/// before that when there are two or more. Without those they go from before the first '.', and
/// without a dot from the end. Where fewer than `count` characters lie there, none is removed.
void removeCharacters(_XeString<wchar_t>& name, unsigned long count);

/// Shortens a URL for display by putting "..." in the middle of it.
///
/// With a folder, the middle of the folder goes and the file name is kept; the result has
/// `maxLength` - 1 characters, one more when the folder ends in '\\' and joining adds a '/'. A name
/// too long for that (its length + 5 >= `maxLength`) leaves `out` as it was. Without a folder the
/// middle of the name goes, and the result has `maxLength`. The part kept in front is as long as
/// the part kept at the end, or one longer. A result beyond the limits of buildFileURL is cut as
/// that does.
///
/// @param maxLength  A URL shorter than this is copied unchanged.
/// @return           0; kXeGeneralFailure when `maxLength` is below 5.
XeResult getShorterUrl(_XeString<wchar_t> const& url, _XeString<wchar_t>& out,
                       unsigned long maxLength);

/// Cuts a moniker at its first '?': the path before it and the tail behind it. Without one all is
/// path and the tail empty.
/// @return  0.
XeResult parseMoniker(wchar_t const* moniker, _XeString<wchar_t>& path, _XeString<wchar_t>& tail);
XeResult parseMoniker(wchar_t const* moniker, _XeString<wchar_t>& path);

} // namespace XeFileSystem
