#include "fs/XeFileSystemArchivesPlatform.h"

#include "XeNativePath.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"
#include "fs/RegularFile.h"

#include <boost/filesystem/operations.hpp>

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using Text = _XeString<wchar_t>;

constexpr wchar_t kZip[] = L"/usr/bin/zip";
constexpr wchar_t kUnzip[] = L"/usr/bin/unzip";
constexpr wchar_t kLargeUnzip[] = L"Contents/unzip64/unzip"; // below the program's folder
constexpr std::int64_t kLargestForSystemUnzip = 0xFFFFFFFF;

constexpr std::uint32_t kLocalHeader = 0x04034B50;
constexpr std::uint32_t kOtherHeader = 0x04054B50; // not that of an empty archive, "PK\5\6"

/// The path from the root on; empty when there is none. The tools run in a folder of their own, and
/// take what begins with '-' for an option.
Text _absolute(wchar_t const* path)
{
    const auto bytes = localPath(path);
    if (!bytes || bytes->front() == '/') {
        return bytes ? Text(path) : Text();
    }
    boost::system::error_code error;
    const bfs::path folder = bfs::current_path(error);
    return error ? Text() : xenon::path::fromNative((folder / *bytes).native());
}

/// An archive's path as unzip reads it: a wildcard pattern, in its last name.
Text _pattern(const Text& path)
{
    const std::size_t name = path.rfind(L'/') + 1;
    if (path.find_first_of(L"*?[", name) == Text::npos) {
        return path;
    }
    Text pattern = path.substr(0, name);
    for (const wchar_t character : path.substr(name)) {
        const bool special = character == L'*' || character == L'?' || character == L'[';
        pattern.append(special ? L"[" : character == L'\\' ? L"\\" : L"");
        pattern += character;
        pattern.append(special ? L"]" : L"");
    }
    return pattern;
}

/// True for what the tools would wait for or change, though it can be no archive: a pipe, a socket,
/// a device.
bool _isSpecial(wchar_t const* path)
{
    switch (localType(path)) {
    case bfs::file_type::fifo_file:
    case bfs::file_type::socket_file:
    case bfs::file_type::character_file:
    case bfs::file_type::block_file:
        return true;
    default:
        return false;
    }
}

/// Reads up to `capacity` bytes from the start of a regular file. A pipe or device is not opened.
std::size_t _readStart(wchar_t const* path, unsigned char* bytes, std::size_t capacity)
{
    if (localType(path) != bfs::file_type::regular_file) {
        return 0;
    }
    const Descriptor file = openRegularFile(localPath(path)->c_str(), O_RDONLY);
    std::size_t count = 0;
    ssize_t more = file ? 1 : 0;
    while (more > 0 && count < capacity) {
        do {
            more = read(file.get(), bytes + count, capacity - count);
        } while (more < 0 && errno == EINTR);
        count += more > 0 ? static_cast<std::size_t>(more) : 0;
    }
    return count;
}

bool _isArchive(wchar_t const* path)
{
    unsigned char bytes[4];
    if (_readStart(path, bytes, sizeof bytes) != sizeof bytes) {
        return false;
    }
    const std::uint32_t header = bytes[0] | std::uint32_t{bytes[1]} << 8 |
                                 std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24;
    return header == kLocalHeader || header == kOtherHeader;
}

} // namespace

Text _getUnzipUrl(wchar_t const* archive)
{
    if (localSize(archive).value_or(0) > kLargestForSystemUnzip) {
        Text tool = _programFolder();
        buildFileURL(tool, tool.c_str(), kLargeUnzip);
        if (localType(tool.c_str()) == bfs::file_type::regular_file) {
            return tool;
        }
    }
    return kUnzip;
}

XeResult _zipFolder(wchar_t const* folder, wchar_t const* archive, bool junkPaths)
{
    const Text from = _absolute(folder);
    const Text to = _absolute(archive);
    if (from.empty() || to.empty() || _isSpecial(archive)) {
        return kXeFileOperationFailed;
    }
    std::vector<Text> arguments = {kZip, L"-q", L"-r", L"-u", L"-0"};
    if (junkPaths) {
        arguments.emplace_back(L"-j");
    }
    arguments.insert(arguments.end(), {to, L"."});
    return _runTool(arguments, from) == 0 ? kXeOk : kXeFileOperationFailed;
}

XeResult _unzipArchive(wchar_t const* archive, wchar_t const* destination, bool junkPaths)
{
    const Text from = _absolute(archive);
    const Text to = _absolute(destination);
    if (from.empty() || to.empty() || _isSpecial(archive)) {
        return kXeOpenFailed;
    }
    std::vector<Text> arguments = {_getUnzipUrl(from.c_str()), L"-q", L"-n", L"-u"};
    if (junkPaths) {
        arguments.emplace_back(L"-j");
    }
    arguments.push_back(_pattern(from));
    return _runTool(arguments, to) == 0 ? kXeOk : kXeOpenFailed;
}

XeResult zipFolder(wchar_t const* folder, wchar_t const* archive, bool junkPaths)
{
    return noThrow(kXeFileOperationFailed, [&] { return _zipFolder(folder, archive, junkPaths); });
}

XeResult unzipArchive(wchar_t const* archive, wchar_t const* destination, bool junkPaths)
{
    return noThrow(kXeOpenFailed, [&] { return _unzipArchive(archive, destination, junkPaths); });
}

bool isArchive(_XeString<wchar_t> const& path)
{
    return noThrow(false, [&] { return _isArchive(path.c_str()); });
}

} // namespace XeFileSystem
