#include "XeFile.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "core/XeFileAttributes.h"
#include "core/XeFilePlatform.h"

#include <boost/filesystem/operations.hpp>
#include <boost/iostreams/device/mapped_file.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <optional>
#include <string>

namespace {

using boost::iostreams::mapped_file;

constexpr mode_t kNewFileMode = 0666; // less the process's umask

/// Makes an empty file or empties one, and gives it its size. A file that was not there before is
/// removed again when the size is refused.
bool _makeFile(const char* path, long long size)
{
    int descriptor = open(path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
    const bool isNew = descriptor >= 0;
    if (!isNew && errno == EEXIST) {
        descriptor = open(path, O_RDWR | O_TRUNC | O_CLOEXEC);
    }
    if (descriptor < 0) {
        return false;
    }
    const bool sized = _setNewFileSize(descriptor, size);
    if (!sized && isNew) {
        unlink(path);
    } else if (!sized) {
        [[maybe_unused]] const int emptied = ftruncate(descriptor, 0);
    }
    close(descriptor);
    return sized;
}

/// Size of a regular file, without opening what a path may lead to instead.
std::optional<long long> _sizeOf(const std::string& path)
{
    boost::system::error_code error;
    const auto size = boost::filesystem::file_size(path, error);
    return error ? std::nullopt : std::optional(static_cast<long long>(size));
}

} // namespace

struct XeMappedFile::Parameters {
    mapped_file::mapmode mode;
    long long alignedOffset; // bytes
    long long delta;         // from there to the requested offset
    long long length;        // bytes from the requested offset, 0 for all to the end
    long long newFileSize;   // bytes, 0 for a file that is there

    std::optional<std::size_t> bytesToMap(long long fileSize) const;
};

XeMappedFile::XeMappedFile() = default;

XeMappedFile::XeMappedFile(_xeAttrib& attributes) { setOpenAttrib(attributes); }

XeMappedFile::~XeMappedFile() { Close(); }

void XeMappedFile::setOpenAttrib(_xeAttrib& attributes)
{
    static const long long cbPage = mapped_file::alignment();

    _putRight(attributes);
    const long long remainder = attributes.offset % cbPage;
    const long long delta = remainder < 0 ? remainder + cbPage : remainder;
    try {
        xeassign(m_path, attributes.path);
        m_parameters = std::make_unique<Parameters>(Parameters{
            attributes.readOnly ? mapped_file::readonly : mapped_file::readwrite,
            attributes.offset - delta, delta, attributes.length, attributes.newFileSize});
    } catch (const std::exception&) { // no memory
        m_parameters.reset();
    }
}

/// Bytes to map from the aligned offset; nothing when the window is empty or leaves the file.
std::optional<std::size_t> XeMappedFile::Parameters::bytesToMap(long long fileSize) const
{
    const long long start = alignedOffset + delta;
    if (start < 0 || start >= fileSize || length < 0 || length > fileSize - start) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(delta + (length != 0 ? length : fileSize - start));
}

/// Leaves the mapping closed when there is nothing to map.
/// @throws std::exception  when the system refuses.
void XeMappedFile::_map()
{
    const auto path = xenon::path::toNative(m_path);
    if (!path) {
        return;
    }
    const bool makesFile = m_parameters->newFileSize > 0;
    const auto fileSize = makesFile ? std::optional(m_parameters->newFileSize) : _sizeOf(*path);
    const auto bytes = fileSize ? m_parameters->bytesToMap(*fileSize) : std::nullopt;
    if (!bytes || (makesFile && !_makeFile(path->c_str(), *fileSize))) {
        return;
    }
    m_mapping->open(*path, m_parameters->mode, *bytes, m_parameters->alignedOffset);
    m_delta = m_parameters->delta;
}

XeResult XeMappedFile::Open()
{
    if (isOpen() || !m_parameters) {
        return kXeUnexpected;
    }
    try {
        m_mapping = std::make_unique<mapped_file>();
        _map();
    } catch (const std::exception&) {
        return kXeGeneralFailure;
    }
    return isOpen() ? kXeOk : kXeGeneralFailure;
}

XeResult XeMappedFile::Open(_xeAttrib& attributes)
{
    setOpenAttrib(attributes);
    return Open();
}

int XeMappedFile::Close()
{
    const bool wasOpen = isOpen();
    m_mapping.reset();
    return wasOpen ? 0 : 1;
}

bool XeMappedFile::isOpen() const { return m_mapping && m_mapping->is_open(); }

std::size_t XeMappedFile::size() const
{
    return isOpen() ? m_mapping->size() - static_cast<std::size_t>(m_delta) : 0;
}

char* XeMappedFile::data() const
{
    // Null of itself when read only, which must stay null.
    char* const start = isOpen() ? m_mapping->data() : nullptr;
    return start != nullptr ? start + m_delta : nullptr;
}

const char* XeMappedFile::const_data() const
{
    return isOpen() ? m_mapping->const_data() + m_delta : nullptr;
}
