#pragma once

#include "XeResult.h"
#include "fs/FileStatus.h"

#include <string>

/// XeFileSystem::copyFile between two paths on the local file system.
/// @param from  What `source` leads to. [any]
XeResult copyLocalFile(const std::string& source, const FileStatus& from,
                       const std::string& destination, bool failIfExists);

/// The same to a path where nothing is. What has come to be there is not replaced.
/// @param source  Leads to a regular file. [any]
XeResult copyToNewFile(const std::string& source, const std::string& destination);
