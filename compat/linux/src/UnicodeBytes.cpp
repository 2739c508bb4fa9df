#include "UnicodeBytes.h"

#include <bit>
#include <cstring>

namespace audiounit_compat {

namespace {

constexpr char32_t kMark = 0xFEFF;
constexpr bool kBigEndianMachine = std::endian::native == std::endian::big;

struct FormRow {
    CFStringEncoding encoding;
    UnitForm form;
};

constexpr FormRow kForms[] = {
    {kCFStringEncodingUTF16, {2, kBigEndianMachine, false}},
    {kCFStringEncodingUTF16BE, {2, true, true}},
    {kCFStringEncodingUTF16LE, {2, false, true}},
    {kCFStringEncodingUTF32, {4, kBigEndianMachine, false}},
    {kCFStringEncodingUTF32BE, {4, true, true}},
    {kCFStringEncodingUTF32LE, {4, false, true}},
};

bool _isSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

// One character of a UTF-16 text; a lone surrogate is one too.
struct Character {
    char32_t value;
    CFIndex units;
};

Character _characterAt(const UniChar* units, std::size_t count, std::size_t at)
{
    const UniChar first = units[at];
    const bool isPair = first >= 0xD800 && first <= 0xDBFF && at + 1 < count &&
                        units[at + 1] >= 0xDC00 && units[at + 1] <= 0xDFFF;
    if (!isPair) {
        return {first, 1};
    }
    return {0x10000U + ((first - 0xD800U) << 10) + (units[at + 1] - 0xDC00U), 2};
}

// Up to four bytes; none stands for a character that the encoding does not have.
struct Bytes {
    UInt8 values[4];
    CFIndex count;
};

void _append(Bytes& bytes, unsigned value)
{
    bytes.values[bytes.count++] = static_cast<UInt8>(value);
}

void _appendUnit(Bytes& bytes, const UnitForm& form, char32_t unit)
{
    const unsigned bits = static_cast<unsigned>(form.unitSize) * 8;
    for (unsigned done = 0; done < bits; done += 8) {
        _append(bytes, unit >> (form.bigEndian ? bits - 8 - done : done));
    }
}

Bytes _utf8(char32_t character)
{
    Bytes bytes{};
    if (character < 0x80) {
        _append(bytes, character);
    } else if (character < 0x800) {
        _append(bytes, 0xC0 | character >> 6);
        _append(bytes, 0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        _append(bytes, 0xE0 | character >> 12);
        _append(bytes, 0x80 | (character >> 6 & 0x3F));
        _append(bytes, 0x80 | (character & 0x3F));
    } else {
        _append(bytes, 0xF0 | character >> 18);
        _append(bytes, 0x80 | (character >> 12 & 0x3F));
        _append(bytes, 0x80 | (character >> 6 & 0x3F));
        _append(bytes, 0x80 | (character & 0x3F));
    }
    return bytes;
}

Bytes _units(const UnitForm& form, char32_t character)
{
    Bytes bytes{};
    if (form.unitSize == 2 && character >= 0x10000) {
        _appendUnit(bytes, form, 0xD800 + ((character - 0x10000) >> 10));
        _appendUnit(bytes, form, 0xDC00 + ((character - 0x10000) & 0x3FF));
    } else {
        _appendUnit(bytes, form, character);
    }
    return bytes;
}

class Encoder {
public:
    Encoder(CFStringEncoding encoding, UInt8 lossByte)
        : m_encoding(encoding), m_form(unitFormOf(encoding)), m_loss{}
    {
        if (lossByte != 0 && m_form) {
            m_loss = _units(*m_form, lossByte);
        } else if (lossByte != 0) {
            _append(m_loss, lossByte);
        }
    }

    bool isKnown() const
    {
        return m_form || m_encoding == kCFStringEncodingUTF8 ||
               m_encoding == kCFStringEncodingASCII;
    }

    bool writesMark() const { return m_form && !m_form->orderIsNamed; }

    Bytes encode(char32_t character) const
    {
        if (m_form) {
            const bool has = m_form->unitSize == 2 || !_isSurrogate(character);
            return has ? _units(*m_form, character) : m_loss;
        }
        if (m_encoding == kCFStringEncodingASCII) {
            return character < 0x80 ? _utf8(character) : m_loss;
        }
        return _isSurrogate(character) ? m_loss : _utf8(character);
    }

private:
    CFStringEncoding m_encoding;
    std::optional<UnitForm> m_form;
    Bytes m_loss;
};

bool _put(const Bytes& bytes, const EncodeRequest& request, CFIndex& used)
{
    if (bytes.count == 0) {
        return false;
    }
    if (request.buffer != nullptr) {
        if (bytes.count > request.capacity - used) {
            return false;
        }
        std::memcpy(request.buffer + used, bytes.values, static_cast<std::size_t>(bytes.count));
    }
    used += bytes.count;
    return true;
}

char32_t _unitAt(const UInt8* bytes, const UnitForm& form)
{
    char32_t unit = 0;
    for (std::size_t index = 0; index < form.unitSize; ++index) {
        unit = unit << 8 | bytes[form.bigEndian ? index : form.unitSize - 1 - index];
    }
    return unit;
}

bool _appendCharacter(std::vector<UniChar>& units, char32_t character)
{
    if (_isSurrogate(character) || character > 0x10FFFF) {
        return false;
    }
    if (character >= 0x10000) {
        units.push_back(static_cast<UniChar>(0xD800 + ((character - 0x10000) >> 10)));
        character = 0xDC00 + ((character - 0x10000) & 0x3FF);
    }
    units.push_back(static_cast<UniChar>(character));
    return true;
}

} // namespace

std::optional<UnitForm> unitFormOf(CFStringEncoding encoding)
{
    for (const FormRow& row : kForms) {
        if (row.encoding == encoding) {
            return row.form;
        }
    }
    return std::nullopt;
}

std::optional<std::vector<UniChar>> decodeUnits(UnitForm form, bool withMark, const UInt8* bytes,
                                                std::size_t byteCount)
{
    if (byteCount % form.unitSize != 0) {
        return std::nullopt;
    }
    if (withMark && !form.orderIsNamed && byteCount != 0) {
        UnitForm swapped = form;
        swapped.bigEndian = !form.bigEndian;
        const bool isSwapped = _unitAt(bytes, swapped) == kMark;
        if (isSwapped || _unitAt(bytes, form) == kMark) {
            form = isSwapped ? swapped : form;
            bytes += form.unitSize;
            byteCount -= form.unitSize;
        }
    }
    std::vector<UniChar> units;
    units.reserve(byteCount / form.unitSize);
    for (std::size_t at = 0; at < byteCount; at += form.unitSize) {
        const char32_t unit = _unitAt(bytes + at, form);
        if (form.unitSize == 2) {
            units.push_back(static_cast<UniChar>(unit));
        } else if (!_appendCharacter(units, unit)) {
            return std::nullopt;
        }
    }
    return units;
}

EncodeResult encodeUnits(const UniChar* units, std::size_t count, const EncodeRequest& request)
{
    const Encoder encoder(request.encoding, request.lossByte);
    EncodeResult result{0, 0};
    if (!encoder.isKnown()) {
        return result;
    }
    if (request.withMark && encoder.writesMark() &&
        !_put(encoder.encode(kMark), request, result.bytesUsed)) {
        return result;
    }
    while (static_cast<std::size_t>(result.unitsRead) < count) {
        const Character next =
            _characterAt(units, count, static_cast<std::size_t>(result.unitsRead));
        if (!_put(encoder.encode(next.value), request, result.bytesUsed)) {
            break;
        }
        result.unitsRead += next.units;
    }
    return result;
}

} // namespace audiounit_compat
