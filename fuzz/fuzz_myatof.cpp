// The reader that stops at other characters: it stops where a slow scan says, is near the C
// library's value, and changes nothing of the text but blanks and percent signs at its end.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XeUtil.h"

#include <cmath>
#include <string>

namespace {

struct Reading {
    double value = 0;
    wchar_t stop = 0;
};

std::wstring withoutTail(std::wstring text)
{
    text.erase(text.find_last_not_of(L" \t%") + 1);
    return text;
}

Reading slowReading(const std::wstring& typed)
{
    const std::size_t start = typed.find_first_not_of(L" \t");
    if (start == std::wstring::npos) {
        return {};
    }
    const std::wstring text = withoutTail(typed.substr(start));
    const std::size_t point = std::min(text.rfind(L'.'), text.size());
    const bool negative = !text.empty() && text.front() == L'-';
    std::string number = "0";
    std::size_t at = negative ? 1 : 0;
    for (; at < point && (slow::isDigit(text[at]) || text[at] == L','); ++at) {
        number += text[at] == L',' ? "" : std::string(1, static_cast<char>(text[at]));
    }
    if (at < point && text[at] != L' ' && text[at] != L'\t') {
        return {std::strtod(number.c_str(), nullptr), text[at]};
    }
    if (at == point && at < text.size()) {
        number += '.';
        for (++at; at < text.size() && slow::isDigit(text[at]); ++at) {
            number += static_cast<char>(text[at]);
        }
    }
    const double value = std::strtod(number.c_str(), nullptr) + 5e-12;
    return {negative ? -value : value, at < text.size() ? text[at] : L'\0'};
}

bool near(double a, double b)
{
    return a == b || std::fabs(a - b) <= 1e-11 * std::max(1.0, std::fabs(b));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring typed = textOf(bytesOf(data, size));
    const Reading expected = slowReading(typed);
    std::wstring text = typed;
    double value = 1;
    require(xenon::util::myatof(text.data(), &value) == expected.stop);
    require(near(value, expected.value));

    require(text.size() == typed.size());
    const std::size_t kept = std::min(text.find(L'\0'), text.size());
    require(typed.compare(0, kept, text, 0, kept) == 0);
    require(typed.find_first_not_of(L" \t%", kept) == std::wstring::npos);
    return 0;
}
