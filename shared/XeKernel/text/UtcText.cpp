#include "XeUtcText.h"

#include "XeSafeCRT.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <boost/throw_exception.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>
#include <typeinfo>

namespace xenon::util {
namespace {

using View = std::wstring_view;

constexpr int kFirstYear = 1900;
constexpr std::int64_t kTooBig = std::int64_t{std::numeric_limits<int>::max()} + 1;

/// Year, month, day or hour, minute, second.
using Fields = std::array<int, 3>;
using Widths = std::array<std::size_t, 3>;

[[noreturn]] void _failRead()
{
    boost::throw_exception(boost::bad_lexical_cast(typeid(std::wstring), typeid(int)));
}

/// Reads a whole field. Plain digits only: the global locale's grouping plays no part. A minus sign
/// never gets here, it separates.
int _readField(View field)
{
    if (field.starts_with(L'+')) {
        field.remove_prefix(1);
    }
    if (field.empty()) {
        _failRead();
    }
    std::int64_t value = 0;
    for (const wchar_t c : field) {
        if (c < L'0' || c > L'9') {
            _failRead();
        }
        value = value * 10 + (c - L'0');
        if (value >= kTooBig) {
            _failRead();
        }
    }
    return static_cast<int>(value);
}

/// The basic form: fields of fixed width as far as the text goes.
Fields _readFixed(View text, const Widths& widths)
{
    Fields fields{};
    for (std::size_t i = 0; i < fields.size() && !text.empty(); ++i) {
        fields[i] = _readField(text.substr(0, widths[i]));
        text.remove_prefix(std::min(widths[i], text.size()));
    }
    return fields;
}

/// The extended form when the separator occurs, else the basic form; nothing when there are too
/// many fields.
std::optional<Fields> _read(View text, wchar_t separator, const Widths& widths)
{
    const auto separators = std::count(text.begin(), text.end(), separator);
    if (separators == 0) {
        return _readFixed(text, widths);
    }
    if (separators > 2) {
        return std::nullopt;
    }
    Fields fields{};
    for (int& field : fields) {
        const std::size_t end = text.find(separator);
        field = _readField(text.substr(0, end));
        if (end == View::npos) {
            break;
        }
        text.remove_prefix(end + 1);
    }
    return fields;
}

} // namespace

void date_from_utc_string(const std::wstring& text, tm& out)
{
    if (text.empty()) {
        return;
    }
    const auto fields = _read(text, L'-', {4, 2, 2});
    if (!fields) {
        return;
    }
    const auto [year, month, day] = *fields;
    out.tm_year = year - kFirstYear;
    out.tm_mon = month > 0 ? month - 1 : 0;
    out.tm_mday = day;
}

void time_from_utc_string(const std::wstring& text, tm& out)
{
    if (text.empty()) {
        return;
    }
    const auto fields = _read(View(text).substr(0, text.find_first_of(L"-+Z")), L':', {2, 2, 2});
    if (!fields) {
        return;
    }
    const auto [hour, minute, second] = *fields;
    out.tm_hour = hour;
    out.tm_min = minute;
    out.tm_sec = second;
}

tm date_time_from_utc_string(const std::wstring& text)
{
    tm t{};
    const std::size_t mark = std::min(text.find(L'T'), text.size());
    date_from_utc_string(text.substr(0, mark), t);
    if (mark < text.size()) {
        const std::size_t begin = mark + 1;
        time_from_utc_string(text.substr(begin, text.find(L'T', begin) - begin), t);
    }
    return t;
}

std::wstring utc_string_from_date_time(const tm& t)
{
    std::wostringstream text;
    text << std::put_time(&t, L"%Y-%m-%dT%H:%M:%S");
    return text.str();
}

} // namespace xenon::util
