#include "XeString.h"

#include <cstdio>
#include <cwchar>
#include <memory>

namespace {

constexpr std::size_t kFirstTrialCapacity = 1024;
constexpr std::size_t kTrialCapacityLimit = 0x100000;

// The wide functions of the C library refuse characters that the category does not know.
int _print(wchar_t* buffer, std::size_t capacity, const wchar_t* fmt, va_list args)
{
    XeCRT::setCharacterType();
    return std::vswprintf(buffer, capacity, fmt, args);
}

int _print(char* buffer, std::size_t capacity, const char* fmt, va_list args)
{
    return std::vsnprintf(buffer, capacity, fmt, args);
}

// Leaves `args` to be used again.
template <typename T>
int _printCopy(T* buffer, std::size_t capacity, const T* fmt, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    const int length = _print(buffer, capacity, fmt, copy);
    va_end(copy);
    return length;
}

// vswprintf cannot measure without a buffer and does not tell a text that is too long from a format
// that fails: both are tried again with twice the room. Below 1 when there is nothing to print.
int _measure(const wchar_t* fmt, va_list args)
{
    for (std::size_t capacity = kFirstTrialCapacity; capacity < kTrialCapacityLimit;
         capacity *= 2) {
        const auto trial = std::make_unique<wchar_t[]>(capacity);
        const int length = _printCopy(trial.get(), capacity, fmt, args);
        if (length >= 0) {
            return length;
        }
    }
    return 0;
}

int _measure(const char* fmt, va_list args)
{
    XeCRT::setCharacterType();
    return _printCopy<char>(nullptr, 0, fmt, args);
}

template <typename T>
int _guidToString(_XeString<T>& out, const _GUID& guid)
{
    const auto& d = guid.Data4;
    return out.format(XeStringTraits<T>::kGuidFormat, guid.Data1, guid.Data2, guid.Data3,
                      d[0] << 8 | d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
}

struct GuidScan {
    int count = 0;
    _GUID guid{};
};

template <typename T>
GuidScan _scanGuid(const _XeString<T>& text)
{
    unsigned f[10] = {};
    GuidScan result;
    result.count =
        XeStringTraits<T>::scan(text.c_str(), XeStringTraits<T>::kGuidFormat, &f[0], &f[1], &f[2],
                                &f[3], &f[4], &f[5], &f[6], &f[7], &f[8], &f[9]);
    const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
    result.guid = {f[0],
                   static_cast<std::uint16_t>(f[1]),
                   static_cast<std::uint16_t>(f[2]),
                   {byte(f[3] >> 8), byte(f[3]), byte(f[4]), byte(f[5]), byte(f[6]), byte(f[7]),
                    byte(f[8]), byte(f[9])}};
    return result;
}

} // namespace

template <XeStringCharacter T>
int _XeString<T>::format(const T* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written = va_format(fmt, args);
    va_end(args);
    return written;
}

template <XeStringCharacter T>
int _XeString<T>::va_format(const T* fmt, va_list args)
{
    const int length = _measure(fmt, args);
    if (length < 1) {
        this->clear();
        return 0;
    }
    // `fmt` and the arguments may point into this string, so the text is printed into a new one.
    // Swapped in, it leaves no slack capacity behind.
    _XeString text(static_cast<std::size_t>(length), T{});
    const int written = _print(text.data(), text.size() + 1, fmt, args);
    this->swap(text);
    return written;
}

template <XeStringCharacter T>
void _XeString<T>::tokenize(std::vector<_XeString>& out, const T* delimiters) const
{
    std::vector<_XeString> tokens;
    for (auto begin = this->find_first_not_of(delimiters); begin != Base::npos;) {
        const auto end = this->find_first_of(delimiters, begin);
        tokens.emplace_back(*this, begin, end - begin);
        begin = this->find_first_not_of(delimiters, end);
    }
    if (!tokens.empty()) {
        out.swap(tokens);
    }
}

template <XeStringCharacter T>
void _XeString<T>::trim(const T* chars)
{
    if (chars != nullptr) {
        this->erase(this->find_last_not_of(chars) + 1); // npos + 1 is 0: nothing else is left
        this->erase(0, this->find_first_not_of(chars));
    }
}

template class _XeString<wchar_t>;
template class _XeString<char>;

int XeSprintf(_XeString<wchar_t>& out, const wchar_t* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written = out.va_format(fmt, args);
    va_end(args);
    return written;
}

int XeVSprintf(_XeString<wchar_t>& out, const wchar_t* fmt, va_list args)
{
    return out.va_format(fmt, args);
}

int XeVSprintf(_XeString<wchar_t>& out, const _XeString<wchar_t>& fmt, va_list args)
{
    return out.va_format(fmt.c_str(), args);
}

int XeSprintfA(_XeString<char>& out, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const int written = out.va_format(fmt, args);
    va_end(args);
    return written;
}

int XeVSprintfA(_XeString<char>& out, const char* fmt, va_list args)
{
    return out.va_format(fmt, args);
}

int XeVSprintfA(_XeString<char>& out, const _XeString<char>& fmt, va_list args)
{
    return out.va_format(fmt.c_str(), args);
}

int XeGuidToString(_XeString<wchar_t>& out, const _GUID& guid) { return _guidToString(out, guid); }

int XeGuidToStringA(_XeString<char>& out, const _GUID& guid) { return _guidToString(out, guid); }

_XeString<wchar_t> XeGuidToString(const _GUID& guid)
{
    _XeString<wchar_t> text;
    _guidToString(text, guid);
    return text;
}

_XeString<char> XeGuidToStringA(const _GUID& guid)
{
    _XeString<char> text;
    _guidToString(text, guid);
    return text;
}

void XeGuidFromString(const _XeString<wchar_t>& text, _GUID& guid) { guid = _scanGuid(text).guid; }

void XeGuidFromStringA(const _XeString<char>& text, _GUID& guid) { guid = _scanGuid(text).guid; }

bool XeStringIsGuid(const _XeString<wchar_t>& text) { return _scanGuid(text).count == 10; }

bool XeStringIsGuidA(const _XeString<char>& text) { return _scanGuid(text).count == 10; }
