// Decimal numbers: equal to the C library's reader to the last bit, and refused where it refuses
// the same characters or overflows.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XeUtil.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace {

struct Collected {
    std::string number;
    bool negative = false;
    std::size_t end = 0;
};

bool isLetter(wchar_t c) { return (c | 32) >= L'a' && (c | 32) <= L'z'; }

Collected collect(const std::wstring& text)
{
    Collected result;
    std::size_t at = 0;
    while (at < text.size() && slow::isSpace(text[at])) {
        ++at;
    }
    if (at < text.size() && (text[at] == L'+' || text[at] == L'-')) {
        result.negative = text[at++] == L'-';
    }
    const bool word = at < text.size() && isLetter(text[at]);
    for (; at < text.size(); ++at) {
        const wchar_t c = text[at];
        const bool afterExponent = !result.number.empty() && (result.number.back() | 32) == 'e';
        const bool numeric = slow::isDigit(c) || c == L'.' || c == L'e' || c == L'E' ||
                             (afterExponent && (c == L'+' || c == L'-'));
        if (word ? isLetter(c) : numeric) {
            result.number += static_cast<char>(c);
        } else if (word || c != L',') {
            break;
        }
    }
    result.end = at;
    return result;
}

std::optional<double> valueOf(const Collected& collected)
{
    const std::string& number = collected.number;
    char* end = nullptr;
    const double value = std::strtod(number.c_str(), &end);
    if (number.empty() || *end != 0 || (std::isinf(value) && slow::isDigit(number.front()))) {
        return std::nullopt;
    }
    if (std::isinf(value) && number.front() == '.') {
        return std::nullopt;
    }
    return collected.negative ? -value : value;
}

bool same(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const _XeString<wchar_t> text = textOf(bytesOf(data, size));
    const Collected collected = collect(text);
    const std::optional<double> expected = valueOf(collected);
    double value = 1;
    try {
        const auto end = xenon::util::atof(text.begin(), text.end(), value);
        require(expected && same(value, *expected));
        require(end - text.begin() == static_cast<std::ptrdiff_t>(collected.end));
    } catch (const boost::bad_lexical_cast&) {
        require(!expected && value == 0.0);
    }
    return 0;
}
