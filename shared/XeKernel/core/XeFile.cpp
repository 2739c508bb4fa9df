#include "XeFile.h"

#include "core/XeFileAttributes.h"
#include "core/XeFilePlatform.h"

#include "XeFileSystem.h"
#include "XeSafeCRT.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <exception>
#include <span>
#include <string_view>

namespace {

constexpr unsigned long kNotOpen = static_cast<unsigned long>(-1);
constexpr std::size_t kUnitsAtOnce = 4096;

constexpr bool _isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool _isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Collects UTF-16 units that come in pieces, which may cut a pair.
class _Utf16Reader {
public:
    explicit _Utf16Reader(std::wstring& text) : m_text(text) {}

    void append(std::span<const char16_t> units)
    {
        for (const char16_t unit : units) {
            _append(unit);
        }
    }

    void finish()
    {
        if (m_high != 0) {
            m_text += L'_';
        }
    }

private:
    void _append(std::uint32_t unit)
    {
        if (m_high != 0) {
            m_text += _isLowSurrogate(unit) ? _pair(m_high, unit) : L'_';
            m_high = 0;
        } else if (_isHighSurrogate(unit)) {
            m_high = unit;
        } else {
            m_text += static_cast<wchar_t>(unit);
        }
    }

    static wchar_t _pair(std::uint32_t high, std::uint32_t low)
    {
        return static_cast<wchar_t>((high - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000);
    }

    std::wstring& m_text;
    std::uint32_t m_high = 0; // waits for its other half
};

/// Reads up to `count` units and hands them on in pieces. Returns bytes.
template <typename Unit, typename Take>
unsigned long _readUnits(std::FILE* stream, unsigned long count, Take take)
{
    std::array<Unit, kUnitsAtOnce> units;
    unsigned long total = 0;
    while (count != 0) {
        const std::size_t wanted = std::min<std::size_t>(count, units.size());
        const std::size_t bytes = std::fread(units.data(), 1, wanted * sizeof(Unit), stream);
        take(std::span<const Unit>(units.data(), bytes / sizeof(Unit)));
        total += bytes;
        if (bytes != wanted * sizeof(Unit)) {
            break;
        }
        count -= wanted;
    }
    return total;
}

unsigned long _readUtf16(std::FILE* stream, std::wstring& text, unsigned long count)
{
    _Utf16Reader reader(text);
    const unsigned long bytes =
        _readUnits<char16_t>(stream, count, [&](auto units) { reader.append(units); });
    reader.finish();
    return bytes;
}

unsigned long _readUtf32(std::FILE* stream, std::wstring& text, unsigned long count)
{
    return _readUnits<wchar_t>(stream, count,
                               [&](auto units) { text.append(units.data(), units.size()); });
}

unsigned long _read(std::FILE* stream, std::wstring& text, unsigned long count, bool utf16)
{
    text.clear();
    try {
        const unsigned long bytes =
            utf16 ? _readUtf16(stream, text, count) : _readUtf32(stream, text, count);
        text.resize(std::min(text.size(), text.find(L'\0')));
        return bytes;
    } catch (const std::exception&) { // no memory for so long a text
        text.clear();
        return kNotOpen;
    }
}

/// Room for the units of so many characters.
using _Utf16Units = std::array<char16_t, 2 * kUnitsAtOnce>;

/// Text without pairs. The loops have no early end, so that the compiler can do many at a time.
bool _toSingleUnits(std::wstring_view text, _Utf16Units& units)
{
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        all |= static_cast<std::uint32_t>(text[i]);
        units[i] = static_cast<char16_t>(text[i]);
    }
    return all < 0x10000;
}

std::size_t _toPairs(std::wstring_view text, _Utf16Units& units)
{
    std::size_t count = 0;
    for (const wchar_t element : text) {
        const auto character = static_cast<char32_t>(element);
        if (character < 0x10000) {
            units[count++] = static_cast<char16_t>(character);
        } else {
            units[count++] = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            units[count++] = static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return count;
}

std::size_t _toUtf16(std::wstring_view text, _Utf16Units& units)
{
    return _toSingleUnits(text, units) ? text.size() : _toPairs(text, units);
}

/// Adds what was written to `total`; false after a short write.
bool _writeBytes(std::FILE* stream, const void* bytes, std::size_t count, unsigned long& total)
{
    const std::size_t written = std::fwrite(bytes, 1, count, stream);
    total += written;
    return written == count;
}

bool _writeUtf16(std::FILE* stream, std::wstring_view text, unsigned long& total)
{
    _Utf16Units units;
    while (!text.empty()) {
        const std::wstring_view piece = text.substr(0, kUnitsAtOnce);
        const std::size_t count = _toUtf16(piece, units);
        if (!_writeBytes(stream, units.data(), count * sizeof(char16_t), total)) {
            return false;
        }
        text.remove_prefix(piece.size());
    }
    return true;
}

unsigned long _write(std::FILE* stream, std::wstring_view text, bool writeNull, bool utf16)
{
    constexpr wchar_t kNull = L'\0';

    unsigned long total = 0;
    const bool whole = utf16
                           ? _writeUtf16(stream, text, total)
                           : _writeBytes(stream, text.data(), text.size() * sizeof(wchar_t), total);
    if (whole && writeNull) {
        _writeBytes(stream, &kNull, utf16 ? sizeof(char16_t) : sizeof(wchar_t), total);
    }
    return total;
}

} // namespace

XeFile::XeFile(_xeAttrib& attributes) { setOpenAttrib(attributes); }

XeFile::XeFile(void* stream) { attach(stream); }

XeFile::XeFile(const XeFile& other) { *this = other; }

XeFile::~XeFile() { Close(); }

XeFile& XeFile::operator=(const XeFile& other) // NOLINT(bugprone-unhandled-self-assignment)
{
    m_create = other.m_create;
    m_offset = other.m_offset;
    m_newFileSize = other.m_newFileSize;
    m_stream = nullptr;
    try {
        m_mode = other.m_mode;
        m_path = other.m_path;
    } catch (const std::exception&) { // no memory: a path that cannot be opened
        m_path.clear();
    }
    return *this;
}

void XeFile::setOpenAttrib(_xeAttrib& attributes)
{
    m_create = attributes.create;
    m_offset = attributes.offset;
    m_newFileSize = attributes.newFileSize;
    try {
        xeassign(m_path, attributes.path);
        m_mode = buildCRTOpenStr(attributes);
    } catch (const std::exception&) { // no memory: a path that cannot be opened
        m_path.clear();
    }
}

_XeString<char> XeFile::buildCRTOpenStr(_xeAttrib& attributes)
{
    _putRight(attributes);
    _XeString<char> mode;
    if (attributes.readOnly) {
        mode = "r";
    } else if (attributes.create) {
        mode = "w+";
    } else {
        mode = XeFileSystem::isFilePresent(attributes.path) ? "r+" : "a+";
    }
    mode += attributes.text ? 't' : 'b';
    return mode;
}

XeResult XeFile::attach(void* stream)
{
    if (m_stream != nullptr) {
        return kXeGeneralFailure;
    }
    m_stream = static_cast<std::FILE*>(stream);
    return kXeOk;
}

XeResult XeFile::Open()
{
    _closeStream();
    if (m_create) {
        if (const XeResult result = createFolder(); result < 0) {
            return result;
        }
    }
    try {
        m_stream = _fopenSystem(m_path.c_str(), m_mode.c_str());
    } catch (const std::exception&) { // no memory for the path
        return kXeOpenFailed;
    }
    if (m_offset > 0) {
        seek(SEEK_SET, m_offset);
    }
    return isOpen() ? kXeOk : kXeOpenFailed;
}

XeResult XeFile::Open(_xeAttrib& attributes)
{
    _closeStream();
    setOpenAttrib(attributes);
    return Open();
}

void XeFile::_closeStream()
{
    if (m_stream == nullptr) {
        return;
    }
    if (m_newFileSize > 0) {
        seek(SEEK_SET, m_newFileSize);
    }
    flush();
    std::fclose(m_stream);
    m_stream = nullptr;
}

int XeFile::Close()
{
    _closeStream();
    m_path.clear();
    return 0;
}

XeResult XeFile::createFolder()
{
    try {
        _XeString<wchar_t> folder;
        _XeString<wchar_t> name;
        XeFileSystem::splitFileURL(m_path.c_str(), folder, name);
        if (folder.empty() || XeFileSystem::isFolderPresent(folder)) {
            return kXeOk;
        }
        return XeFileSystem::createFolder(folder.c_str());
    } catch (const std::exception&) {
        return kXeFileOperationFailed;
    }
}

int XeFile::seek(int whence, long long offset) const
{
    return isOpen() ? fseeko(m_stream, offset, whence) : -1;
}

long long XeFile::curFilePos() const { return isOpen() ? ftello(m_stream) : -1; }

unsigned long XeFile::read(void* buffer, unsigned long bytes) const
{
    return isOpen() ? std::fread(buffer, 1, bytes, m_stream) : kNotOpen;
}

unsigned long XeFile::write(const void* buffer, unsigned long bytes) const
{
    return isOpen() ? std::fwrite(buffer, 1, bytes, m_stream) : kNotOpen;
}

unsigned long XeFile::read(_XeString<wchar_t>& text, unsigned long count, bool utf16) const
{
    return isOpen() ? _read(m_stream, text, count, utf16) : kNotOpen;
}

unsigned long XeFile::write(const _XeString<wchar_t>& text, bool writeNull, bool utf16) const
{
    return isOpen() ? _write(m_stream, text, writeNull, utf16) : kNotOpen;
}

unsigned long XeFile::writeString(const wchar_t* text) const
{
    return write(text, text == nullptr ? 0 : std::wcslen(text) * sizeof *text);
}

unsigned long XeFile::writeStringA(const wchar_t* text) const
{
    try {
        _XeString<char> narrow;
        xeassign(narrow, text);
        return write(narrow.data(), narrow.size());
    } catch (const std::exception&) {
        return isOpen() ? 0 : kNotOpen;
    }
}

unsigned long XeFile::writeStringA(const char* text) const
{
    return write(text, text == nullptr ? 0 : std::strlen(text));
}

int XeFile::flush() const { return isOpen() ? std::fflush(m_stream) : -1; }
