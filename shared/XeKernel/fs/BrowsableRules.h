#pragma once

#include "XeFileSystem.h"
#include "fs/FolderReader.h"

#include <algorithm>
#include <string_view>

// The rules by which a browser shows the entries of a folder, without a word on how a system tells
// about them. Hidden entries have been left out before.

/// True for the name of a library file of the product. Names are wide, or bytes.
template <typename Char>
bool isLibraryName(std::basic_string_view<Char> name)
{
    const std::size_t dot = name.rfind(Char('.'));
    const std::wstring_view extension = XeFileSystem::kLibraryFileExtension;
    return dot != name.npos && std::ranges::equal(name.substr(dot + 1), extension);
}

/// True for the folders of a camera's card, which stay folders where the system calls them
/// packages.
template <typename Char>
bool isCameraFolderName(std::basic_string_view<Char> name)
{
    constexpr std::wstring_view kNames[] = {L"AVCHD", L"PRIVATE"};
    return std::ranges::any_of(
        kNames, [&](std::wstring_view other) { return std::ranges::equal(name, other); });
}

/// Tells whether a browser shows an entry, among the files or among the folders.
///
/// @param entry  Has `type`, `name`, `isReadable()`, `isPackage()` and, for links,
///               `leadsSomewhere()`. The three functions ask the file system, so they are called
///               last and only where the answer depends on them.
template <typename Entry>
bool isBrowsable(const Entry& entry, bool filesOnly)
{
    const bool wanted = filesOnly || (entry.type == EntryType::file && isLibraryName(entry.name))
                            ? entry.type == EntryType::file
                            : entry.type == EntryType::folder || entry.type == EntryType::link;
    return wanted && entry.isReadable() &&
           (entry.type != EntryType::link || entry.leadsSomewhere()) &&
           (!entry.isPackage() || isCameraFolderName(entry.name));
}
