#pragma once

#include "XeResult.h"
#include "XeString.h"

#include <cstdint>
#include <ctime>
#include <istream>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

/// A moment of a file, in UTC.
struct tFileTime {
    std::int64_t seconds = 0;     ///< Since 1970-01-01 00:00:00, negative before.
    std::int32_t nanoseconds = 0; ///< 0 to 999999999, after `seconds`.

    friend bool operator==(const tFileTime&, const tFileTime&) = default;
};

/// What a listing tells of an entry, links followed.
struct tFileAtrribute {
    std::int64_t size = 0; ///< Bytes; 0 for a folder.
    tFileTime created;     ///< `modified` where the file system does not keep it.
    tFileTime modified;
    bool folder = false;
    bool link = false; ///< The entry itself is a symbolic link.
    bool hidden = false;
    bool readonly = false;
    bool locked = false;
};

/// Well-known folders. Numbers without a name here are not served.
// clang-format off
enum ESysFolder : int {                         // macOS                        Linux
    kSysFolderUserApplicationSupport     = 1,   // ~/Library/Application Support  $XDG_DATA_HOME, ~/.local/share
    kSysFolderLocalApplicationSupport    = 2,   // /Library/Application Support   /usr/local/share
    kSysFolderUserDocuments              = 5,   // ~/Documents                    DOCUMENTS of user-dirs.dirs
    kSysFolderUserApplications           = 7,   // ~/Applications                 "applications" in that of 1
    kSysFolderUserLibrary                = 11,  // ~/Library                      as 1
    kSysFolderLocalLibrary               = 12,  // /Library                       /usr/local/share
    kSysFolderSystemLibrary              = 13,  // /System/Library                /usr/share
    kSysFolderUserSavedState             = 14,  // "Saved Application State" in that of 11
    kSysFolderUserCaches                 = 15,  // ~/Library/Caches               $XDG_CACHE_HOME, ~/.cache
    kSysFolderUserPreferences            = 16,  // "Preferences" in that of 11
    kSysFolderUserHome                   = 17,  // as the password database has it
    kSysFolderUserMovies                 = 18,  // ~/Movies                       VIDEOS of user-dirs.dirs
    kSysFolderUserPictures               = 19,  // ~/Pictures                     PICTURES of user-dirs.dirs
};
// clang-format on

/// What copyFolder does with a destination that is there. Every value but the first merges.
enum ECopyOption : int {
    kCopyMerge = 0,        ///< Copies into it and overwrites its files.
    kCopyFailIfExists = 1, ///< Fails, and overwrites no file below either.
};

/// Format of a volume. Values not named here leave open what the system calls it.
// clang-format off
enum EFileSystem : int {
    kFileSystemMsdos               = 2,
    kFileSystemExfat               = 3,
    kFileSystemUdf                 = 6,
    kFileSystemHfs                 = 7,
    kFileSystemNetworkShare        = 9,   // SMB, AFP
    kFileSystemNfs                 = 10,
    kFileSystemRemote              = 11,  // served by an IFileSystem
    kFileSystemUfs                 = 12,
    kFileSystemVendorDisc          = 14,  // media of the vendor's recorders and drives
    kFileSystemVendorCard          = 15,
    kFileSystemVendorDualLayerDisc = 17,
    kFileSystemVendorArchiveDisc   = 18,
    kFileSystemVendorMemoryPack    = 19,
    kFileSystemDiscShare           = 20,  // an SMB share with the folders of an optical disc
    kFileSystemUnknown             = 255,
};

enum EVolumeMediaType : int {
    kVolumeRemovable       = 0,   // local, removable or ejectable
    kVolumeInternal        = 1,   // local, in the machine
    kVolumeNetwork         = 2,
    kVolumeCardReader      = 16,  // in a reader of the vendor's, for one card
    kVolumeMultiCardReader = 17,  // for several cards
    kVolumeDiscDrive       = 18,
    kVolumeUnknown         = 255,
};

/// Bits of GetVolumes' filter.
enum EVolumeFilter : unsigned {
    kVolumesLocal     = 1,   // neither removable nor network
    kVolumesRemovable = 2,
    kVolumesNetwork   = 4,
};
// clang-format on

/// Further facts about an application's folder. Not defined yet: getSysAppFolder takes a pointer to
/// one and does not look at it.
struct EXTENSION_INFO;

/// File-system services.
///
/// Paths are wide text with '/' between names. In this library's words a URL is a plain path or a
/// text with a scheme ("http://..."). A null text argument counts as the empty text. Results may be
/// written over an argument's own text: `splitFileURL(url.c_str(), folder, url)` is allowed.
///
/// A path on a mount point that stands for a remote volume (kRemoteVolumeContext) is served by that
/// volume's IFileSystem where a function says so: "remote". Results of the remote reach the caller
/// unchanged. kXeRemoteVolumeGone ejects the volume first. A function that is not remote looks at
/// the local mount point.
///
/// Everything that takes a path but the text functions blocks on the file system. Nothing throws.
/// [any]
namespace XeFileSystem {

// --- Well-known folders and the executable ------------------------------------------------

/// Tells where a well-known folder is; it may not exist. The path ends in '/', except those of
/// kSysFolderUserSavedState, kSysFolderUserPreferences and kSysFolderUserHome.
/// @return  0; kXeInvalidArgument for a number that is not served, kXeGeneralFailure when the
///          system knows no such folder. Both leave `out` alone.
XeResult getSysFolder(_XeString<wchar_t>& out, ESysFolder folder);

/// Tells where an application keeps its files below a well-known folder, with '/' at the end:
///
///     getSysAppFolder(out, kSysFolderUserCaches, L"App", false, true, 2, 1, nullptr);
///                                                // "<caches>/VANTA/App/2.1/"
///
/// The vendor's folder comes in between for application support and caches only. Saved state is
/// "<folder>/App.savedState" and preferences "<folder>/App", without version and '/', and they are
/// not created.
///
/// @param appName        Null gives the well-known folder itself, which is not created.
/// @param create         Creates the folder with all missing levels.
/// @param appendVersion  Adds a folder "major.minor".
/// @return               As getSysFolder and createFolder.
XeResult getSysAppFolder(_XeString<wchar_t>& out, ESysFolder folder, wchar_t const* appName,
                         bool create, bool appendVersion, int major, int minor,
                         EXTENSION_INFO* info);

/// True for every folder: file managers hide them.
bool isSysFolderHiddenByDefault(ESysFolder folder);

/// Paths of the program that runs, not of a library in it: the file, its folder, the folder of its
/// resources and the file's name. On Linux the resources are in "Resources" beside the executable
/// when there is one, else in its folder. The folders have no '/' at the end.
/// @return  0; kXeGeneralFailure, which leaves `out` alone.
XeResult getExecutablePath(_XeString<wchar_t>& out);
XeResult getExecutableFolder(_XeString<wchar_t>& out);
XeResult getResourceFolder(_XeString<wchar_t>& out);
XeResult getExecutableName(_XeString<wchar_t>& out);

// --- Tests --------------------------------------------------------------------------------

/// True when `path` names a regular file, directly or through links. A path that cannot be looked
/// up (no rights on a parent, a loop of links, a name too long) is not present. Remote.
bool isFilePresent(wchar_t const* path);
bool isFilePresent(_XeString<wchar_t> const& path);

/// The same for a folder. Remote.
bool isFolderPresent(wchar_t const* path);
bool isFolderPresent(_XeString<wchar_t> const& path);

/// Another word for isFolderPresent.
bool isFolder(wchar_t const* path);
bool isFolder(_XeString<wchar_t> const& path);

/// True for a folder that is present and can be read and has no entries, hidden ones counted.
/// Remote.
bool isFolderEmpty(wchar_t const* path);
bool isFolderEmpty(_XeString<wchar_t> const& path);

/// True for an item that file managers do not show: its name begins with '.', or it carries the
/// mark of its system. The item need not exist for the name to count.
bool isHidden(wchar_t const* path);
bool isHidden(_XeString<wchar_t> const& path);

/// True when the owner of the item may not write it; a folder is read-only also when this process
/// may not write it, and so is a socket or a block device. False for what cannot be looked up.
bool isFileReadonly(wchar_t const* path);
bool isFileReadonly(_XeString<wchar_t> const& path);
bool isFolderReadonly(wchar_t const* path);
bool isFolderReadonly(_XeString<wchar_t> const& path);

/// True when the item is locked against every change: the user's immutable flag on macOS, the file
/// system's on Linux. Of a link macOS tells its own flag, Linux that of what it leads to. False for
/// what cannot be looked up.
bool isFileLocked(wchar_t const* path);
bool isFileLocked(_XeString<wchar_t> const& path);
bool isFolderLocked(wchar_t const* path);
bool isFolderLocked(_XeString<wchar_t> const& path);

// --- Changes ------------------------------------------------------------------------------

/// Creates a folder with all missing levels above it. Remote.
///
/// An existing folder, also through a link, is success. When a level cannot be made, those that
/// this call has made are removed again; a remote keeps them.
///
/// @return  0; kXeFileOperationFailed when there is no folder of that path afterwards, as for the
///          empty path or one with a file in its way; the remote's failure.
XeResult createFolder(wchar_t const* path);

/// Copies a file with its permissions, less what the process's umask takes; links are followed.
/// Remote, each path by itself: a file of a remote volume is copied through streams, as bytes.
///
/// A failed copy leaves no half-written destination; an old one may be gone by then, but not for a
/// source that is missing or may not be read. What is at the destination and no file stays.
///
/// @return  0; kXeGeneralFailure for a destination that is there with `failIfExists`, that is the
///          source itself or that cannot be deleted (there a remote's own failure);
///          kXeFileOperationFailed when it cannot be copied, as for a source that is missing or no
///          regular file, or when a remote fails.
XeResult copyFile(wchar_t const* source, wchar_t const* destination, bool failIfExists);

/// Copies a folder with all below it, entry by entry, until the first that fails. What was copied
/// by then stays.
///
/// Links to files are copied as those files, links to folders as their contents, but for those that
/// lead to a folder above them. Pipes, sockets, devices and links that lead nowhere are failures;
/// nothing but regular files is opened. The copy of a folder has its permissions, and its owner may
/// fill it. Remote, each path by itself: a remote folder holds what its volume lists.
///
/// @param destination  Created when missing; the folder that holds it must be there.
/// @return             0; kXeSourceFolderMissing; kXeGeneralFailure for a destination that is there
///                     with kCopyFailIfExists, lies inside the source or cannot be created;
///                     kXeFileOperationFailed for a source that cannot be listed; else the first
///                     failure of copyFile.
XeResult copyFolder(wchar_t const* source, wchar_t const* destination, ECopyOption option);

/// Renames a file or folder within its volume, a link itself. Without `failIfExists` an existing
/// file is replaced, and an empty folder by a folder; with it nothing is, not even a link that
/// leads nowhere. Remote.
/// @return  0; kXeDestinationExists; kXeGeneralFailure when the system refuses or the paths lie on
///          different volumes.
XeResult renameFile(wchar_t const* source, wchar_t const* destination, bool failIfExists);

/// Moves a file: renames it, and copies and deletes it where getVolumeName tells that the volumes
/// differ or where the system says so. An existing destination is replaced. A folder moves only
/// where it can be renamed. Remote.
/// @return  As renameFile; else as copyFile, then deleteFile of the source.
XeResult moveFile(wchar_t const* source, wchar_t const* destination);

/// Makes `linkPath` a link to `target`, symbolic or hard.
/// @param target  A symbolic link keeps this text; it need not exist.
/// @return        0; kXeDestinationExists when there is something of that name, a dangling link
///                too; kXeFileOperationFailed.
XeResult linkFile(wchar_t const* target, wchar_t const* linkPath, bool symbolic);

/// Deletes one file, or a link itself. No folder. Remote.
/// @return  0; kXeGeneralFailure when nothing was deleted.
XeResult deleteFile(wchar_t const* path);
XeResult deleteFile(_XeString<wchar_t> const& path);

/// Deletes a folder with all its contents, after ending the watch on it. Of a link to a folder only
/// the link goes. Holds a descriptor for each level of folders. Remote.
/// @param onlyIfEmpty  A folder with entries is left alone, with result 0.
/// @return             0, also when there is no such folder; kXeGeneralFailure when it is still
///                     there.
XeResult deleteFolder(wchar_t const* path, bool onlyIfEmpty);

/// Deletes the empty folders below a folder, children before parents, so a chain of empty folders
/// goes as a whole.
/// @param includeSelf  The folder itself goes too if it is empty then.
/// @return             0; kXeGeneralFailure when a folder could not be listed or an empty one not
///                     be deleted; the others are deleted all the same.
XeResult deleteEmptyFolders(wchar_t const* path, bool includeSelf);

/// Moves an item to the user's trash, from where the desktop can put it back.
/// @return  0; kXeGeneralFailure when refused: the item stays where it is.
XeResult moveFileToTrash(wchar_t const* path);
XeResult moveFolderToTrash(wchar_t const* path);

/// Sets or clears the flag that isFileLocked reads; no other flag changes. On Linux that takes the
/// rights of root and a file system that has the flag.
/// @return  True on success.
bool setLockFile(_XeString<wchar_t> const& path, bool lock);

/// Clears or sets the owner's right to write; no other right changes.
/// @return  True on success.
bool setFileReadonly(wchar_t const* path, bool readonly);

/// Sets the time of last modification to now. Who may write the item but does not own it sets the
/// time of last access, too.
/// @return  0; kXeGeneralFailure.
XeResult touchLastModified(wchar_t const* path);

// --- Listings -----------------------------------------------------------------------------
//
// Each empties `out` first and gives full paths, the folder's text in front, in any order. The
// listings for a browser follow the links in the folder's path and give the paths without them.
// Names that are not UTF-8 are listed too (see xenon::path).
//
// Each returns 0, or kXeGeneralFailure when the folder or a part of what is below it cannot be
// read; the rest is listed all the same. What disappears during the listing is left out.

/// The folders that a browser shows: not the hidden ones and not those this process may not read.
/// Links are listed under their own path when they lead to something, be it a file. Packages are
/// left out, but for those named "AVCHD" or "PRIVATE"; Linux knows no packages. A library file of
/// the product (see kLibraryFileExtension) is shown among the folders. Remote; there the remote's
/// folders but for hidden ones, with the remote's result.
XeResult getBrowsableSubFolders(wchar_t const* path, std::vector<_XeString<wchar_t>>& out);

/// The same of the local file system, also on the mount point of a remote volume.
XeResult getBrowsableSubFoldersNative(wchar_t const* path, std::vector<_XeString<wchar_t>>& out);

/// The regular files that a browser shows, by the same rules. Links to files are not listed.
XeResult getBrowsableFilesInFolder(wchar_t const* path, std::vector<_XeString<wchar_t>>& out);

/// The same with what is to be known of each file.
XeResult
getBrowsableFilesWithAttribute(wchar_t const* path,
                               std::vector<std::pair<_XeString<wchar_t>, tFileAtrribute>>& out);

/// The files of a folder whose names match a wildcard pattern, links to files counted.
/// @param pattern        '*' stands for any text, '?' for one character; letter case counts. Null
///                       and the empty text match all.
/// @param recursive      Also of all folders below; links to folders are not entered.
/// @param includeHidden  Also hidden files, and those in hidden folders.
XeResult getFilesInFolder(wchar_t const* path, wchar_t const* pattern, bool recursive,
                          std::vector<_XeString<wchar_t>>& out, bool includeHidden);

/// The files and folders of a folder whose names match, hidden ones left out.
XeResult getFilesAndFoldersInFolder(wchar_t const* path, wchar_t const* pattern,
                                    std::vector<_XeString<wchar_t>>& out);

/// The folders of a folder, hidden ones too; links to folders are left out.
/// @param recursive  Also all folders below, each behind those that it holds.
XeResult getSubFolders(wchar_t const* path, bool recursive, std::vector<_XeString<wchar_t>>& out);

/// Extension of the product's library files, without the dot: files that a browser shows as
/// folders.
inline constexpr wchar_t kLibraryFileExtension[] = L"tarvellib";

// --- Times and sizes ----------------------------------------------------------------------

/// Time of the last modification, links followed.
/// @return  0; kXeGeneralFailure, which leaves `time` alone.
XeResult getLastModified(wchar_t const* path, tFileTime& time);

/// The same in whole seconds since 1970; -1 when it cannot be told.
std::time_t getModifiedTime(wchar_t const* path);

/// Time of creation in whole seconds since 1970, that of the last modification where the file
/// system does not keep it; -1 when it cannot be told.
std::time_t getCreationTime(wchar_t const* path);

/// Size of a regular file in bytes, links followed. Remote.
/// @return  0; kXeGeneralFailure or the remote's failure, which leaves `size` alone.
XeResult getFileSize(wchar_t const* path, long long& size);

/// The same; -1 when there is no such file.
long long getFileSize(wchar_t const* path);

/// All of tFileAtrribute for one item.
/// @return  0; kXeGeneralFailure, which leaves `attribute` alone.
XeResult getFileAttribute(wchar_t const* path, tFileAtrribute& attribute);

// --- Streams ------------------------------------------------------------------------------

/// Opens a file for binary reading, or for binary writing from an empty file. Remote.
///
/// Only regular files are opened, links followed: a pipe would wait for its other end, perhaps for
/// ever. Nobody else is kept from the file.
///
/// @return  A std::ifstream or std::ofstream, of a remote file an XeNetStream or XeNetOStream.
///          Never null but when memory is short. In failed state when the local file does not open;
///          a remote one starts good and tells at the first read or flush.
std::shared_ptr<std::istream> openIStream(_XeString<wchar_t> const& path);
std::shared_ptr<std::ostream> openOStream(_XeString<wchar_t> const& path);

// --- Archives -----------------------------------------------------------------------------

/// Puts a folder's contents into a zip archive, without compression. An archive that is there is
/// updated with what is newer. Links are followed, pipes and devices left out.
///
/// The work is that of zip(1): it adds ".zip" to an archive's name without an extension, and a file
/// in the folder itself whose name is "-" comes out empty.
///
/// @param junkPaths  Leaves the folders' names out.
/// @return           0; kXeFileOperationFailed when the tool fails, or has nothing to do: an empty
///                   folder, nothing newer.
XeResult zipFolder(wchar_t const* folder, wchar_t const* archive, bool junkPaths);

/// Takes an archive out into a folder that is there. Files that are there already are kept as they
/// are. The work is that of unzip(1), which leaves control characters and the byte 0xFF out of
/// names.
/// @return  0; kXeOpenFailed when the tool fails.
XeResult unzipArchive(wchar_t const* archive, wchar_t const* destination, bool junkPaths);

/// True for a file that begins with a zip archive's first local header, or with "PK\5\4". An empty
/// archive is not recognised.
bool isArchive(_XeString<wchar_t> const& path);

// --- Volumes ------------------------------------------------------------------------------

/// Tells the format of the volume that holds a path. Remote: kFileSystemRemote, when the system
/// itself has no answer. On Linux vfat counts as kFileSystemMsdos, cifs as kFileSystemNetworkShare.
/// @return  0, also for a format that has no number: `format` is left alone then.
///          kXeGeneralFailure when the path cannot be looked up, with `format` left alone.
XeResult getFileSystemFormat(wchar_t const* path, EFileSystem& format);

/// Tells the kind of medium of the volume that holds a path. A volume without a device of its own
/// (in memory, an overlay) is kVolumeUnknown.
/// @return  0; kXeGeneralFailure, with kVolumeUnknown, when the path cannot be looked up.
XeResult getVolumeMediaType(wchar_t const* path, EVolumeMediaType& type);

/// Tells the volume that a path's text names: the volume's folder below "/Volumes/", on Linux also
/// below "/media/<user>/", "/run/media/<user>/" and "/mnt/". Every other path is cut behind its
/// first '/'. Nothing is looked up.
///
///     getVolumeName(L"/Volumes/Disk/a.wav", name); // "/Volumes/Disk/"
///     getVolumeName(L"/Volumes/Disk", name);       // "/Volumes/Disk"
///     getVolumeName(L"/home/ann/a.wav", name);     // "/"
///
/// @return  0.
XeResult getVolumeName(wchar_t const* path, _XeString<wchar_t>& name);

/// Tells where the volume that holds `path` is mounted, links followed. A path that does not exist
/// counts as its nearest parent that does; on Linux also one on a volume that does not answer any
/// more.
/// @return  0; kXeGeneralFailure when the system does not tell, which leaves `mountPoint` alone.
XeResult getVolumeMountPoint(_XeString<wchar_t> const& path, _XeString<wchar_t>& mountPoint);

/// Tells the bytes that the caller may still write on a volume, and those that it holds in all. A
/// path that does not exist counts as its nearest parent that does.
/// @return  0; kXeGeneralFailure, which leaves both alone.
XeResult getVolumeSpace(wchar_t const* path, unsigned long long& free, unsigned long long& total);

/// The free bytes of getVolumeSpace; 0 when they cannot be told.
unsigned long long getFreeSpace(wchar_t const* path);

/// Tells whether a volume is mounted for writing. A path that does not exist counts as its nearest
/// parent that does.
/// @return  0; kXeGeneralFailure, which leaves `writable` alone.
XeResult isVolumeWritable(_XeString<wchar_t> const& path, bool& writable);

/// True when files on the volume can be read at any position at no cost: not on one that an
/// IFileSystem serves as a stream, nor on a tape. A path that does not exist counts as its nearest
/// parent that does. False when the path cannot be looked up.
bool isSeekableVolume(_XeString<wchar_t> const& path);

/// Lists the mount points of the volumes a user can store files on, in the order of the system's
/// table. What the system mounts for itself, what lies in memory and what another mount hides is
/// left out, but never "/".
/// @param filter  EVolumeFilter bits.
void GetVolumes(std::vector<_XeString<wchar_t>>& volumes, unsigned int filter);

/// Lists the mount points of such volumes that lie below a path, at any depth; not that of the path
/// itself.
/// @return  0, also for a path that cannot be looked up, which has none; kXeGeneralFailure when the
///          mounts cannot be read.
XeResult getSubVolumes(_XeString<wchar_t> const& path, std::vector<_XeString<wchar_t>>& volumes);

/// Gives the name that file managers show for an item: its file name, and for the mount point of a
/// volume that one's label, if it has one. A link is shown under its own name.
/// @return  0; kXeGeneralFailure when the item does not exist, which leaves `name` alone.
XeResult getDisplayName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name);

/// Gives the URL by which the network share that holds a path can be mounted again, with escapes:
/// "smb://host/my%20share", "nfs://host/path". A path that does not exist counts as its nearest
/// parent that does.
/// @return  0; kXeGeneralFailure for a path that is not on a share, and for one whose mount does
///          not tell the server. Both leave `url` alone.
XeResult mountableShareVolume(wchar_t const* path, _XeString<wchar_t>& url);

// --- URLs and file names ------------------------------------------------------------------
//
// These work on text alone. When built, a path has at most 1023 characters and a file name at most
// 255; as valid counts a path of up to 1024.

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

/// Removes one '/' or '\\' at the end of a path. One that is the whole path stays.
void removeLastSeparator(_XeString<wchar_t>& path); // "/dir/" -> "/dir"

/// Gives a name that is free in a folder, for an item that the user wants to call `name`: that
/// name, or else with the first free counter before its extension.
///
///     getUserDefinedName(L"/dir", L"take.wav", out); // "take.wav", "take (2).wav", ...
///
/// A name like ".profile", which is all extension, gets its counter at the end. The name is bounded
/// as boundFilenameLen does. A link that leads nowhere counts as an item too. Looks at the local
/// disk; the name may be taken by the time it is used.
/// @return  0; kXeInvalidArgument for a name that no item can have ("", ".", "..", one with a '/'),
///          or that bounding makes one, which leaves `out` alone.
XeResult getUserDefinedName(wchar_t const* path, wchar_t const* name, _XeString<wchar_t>& out);

/// Tells the name of an item as its file system keeps it, which differs from the path's in letter
/// case on file systems that do not tell cases apart. Remote: the name that the remote accepts,
/// whether the item exists or not.
/// @return  False when there is no such item, or a link that leads nowhere, which leaves `name`
///          alone.
bool getStrictFileName(_XeString<wchar_t> const& path, _XeString<wchar_t>& name);

} // namespace XeFileSystem
