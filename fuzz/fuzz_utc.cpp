// UTC text: the readers agree with slow ones made of Boost's splitting and conversion, and what can
// be written comes back.

#include "FuzzInput.h"
#include "XeUtcText.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/lexical_cast.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace {

using Text = std::wstring;
using Parts = std::vector<Text>;

Parts splitAtAny(const Text& text, const wchar_t* separators)
{
    Parts parts;
    boost::algorithm::split(parts, text, boost::algorithm::is_any_of(separators));
    return parts;
}

Parts fixedParts(Text text, std::size_t firstWidth)
{
    Parts parts;
    for (std::size_t width = firstWidth; !text.empty() && parts.size() < 3; width = 2) {
        parts.push_back(text.substr(0, width));
        text.erase(0, width);
    }
    return parts;
}

/// Three numbers, or nothing for too many parts.
std::optional<std::array<int, 3>> slowRead(const Text& text, const wchar_t* separator,
                                           std::size_t firstWidth)
{
    Parts parts = splitAtAny(text, separator);
    if (parts.size() > 3) {
        return std::nullopt;
    }
    if (parts.size() == 1) {
        parts = fixedParts(text, firstWidth);
    }
    std::array<int, 3> numbers{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        numbers[i] = boost::lexical_cast<int>(parts[i]);
    }
    return numbers;
}

void slowDate(const Text& text, tm& out)
{
    const auto numbers = text.empty() ? std::nullopt : slowRead(text, L"-", 4);
    if (numbers) {
        const long year = (*numbers)[0] - 1900L;
        if (year != static_cast<int>(year)) {
            throw boost::bad_lexical_cast();
        }
        out.tm_year = static_cast<int>(year);
        out.tm_mon = (*numbers)[1] > 0 ? (*numbers)[1] - 1 : 0;
        out.tm_mday = (*numbers)[2];
    }
}

void slowTime(const Text& text, tm& out)
{
    const auto numbers =
        text.empty() ? std::nullopt : slowRead(splitAtAny(text, L"-+Z").front(), L":", 2);
    if (numbers) {
        out.tm_hour = (*numbers)[0];
        out.tm_min = (*numbers)[1];
        out.tm_sec = (*numbers)[2];
    }
}

tm slowDateTime(const Text& text)
{
    tm t{};
    const Parts parts = splitAtAny(text, L"T");
    slowDate(parts[0], t);
    if (parts.size() > 1) {
        slowTime(parts[1], t);
    }
    return t;
}

template <typename Read>
std::optional<tm> resultOf(Read read)
{
    try {
        return read();
    } catch (const boost::bad_lexical_cast&) {
        return std::nullopt;
    }
}

bool sameClock(const tm& a, const tm& b)
{
    return a.tm_year == b.tm_year && a.tm_mon == b.tm_mon && a.tm_mday == b.tm_mday &&
           a.tm_hour == b.tm_hour && a.tm_min == b.tm_min && a.tm_sec == b.tm_sec;
}

bool inside(int value, int low, int high) { return value >= low && value <= high; }

bool isUsual(const tm& t)
{
    return inside(t.tm_year, -900, 8099) && inside(t.tm_mon, 0, 11) && inside(t.tm_mday, 0, 31) &&
           inside(t.tm_hour, 0, 23) && inside(t.tm_min, 0, 59) && inside(t.tm_sec, 0, 60);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Text text = textOf(bytesOf(data, size));
    const auto read = resultOf([&] { return xenon::util::date_time_from_utc_string(text); });
    const auto slow = resultOf([&] { return slowDateTime(text); });
    require(read.has_value() == slow.has_value());
    if (!read) {
        return 0;
    }
    require(sameClock(*read, *slow));
    if (isUsual(*read)) {
        const Text written = xenon::util::utc_string_from_date_time(*read);
        require(written.size() == 19);
        require(sameClock(xenon::util::date_time_from_utc_string(written), *read));
    }
    return 0;
}
