// Typed clock times: accepted where a slow reader of the pieces between colons accepts them, with
// the same fields for numbers that a time can have, and a fraction below a second.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XePosFmt.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include <string>
#include <vector>

namespace {

struct Piece {
    bool valid = true;
    bool negative = false;
    std::string whole;
    std::string decimals;
};

/// Reads one piece; only the last may have a sign that counts, a fraction and a tail.
Piece readPiece(std::wstring text, bool last)
{
    Piece piece;
    text.erase(0, std::min(text.find_first_not_of(L" \t"), text.size()));
    if (last) {
        text.erase(text.find_last_not_of(L" \t%") + 1);
    }
    if (text.starts_with(L'-')) {
        piece.negative = last;
        text.erase(0, 1);
    }
    const std::size_t point = std::min(text.find(L'.'), text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (slow::isDigit(text[at])) {
            (at < point ? piece.whole : piece.decimals) += static_cast<char>(text[at]);
        } else if (at != point && (at > point || text[at] != L',')) {
            piece.valid = false;
        }
    }
    return piece;
}

bool isShaped(const std::wstring& text)
{
    const std::size_t point = text.find(L'.');
    return std::count(text.begin(), text.end(), L':') <= 2 &&
           std::count(text.begin(), text.end(), L'.') <= 1 &&
           (point == std::wstring::npos || text.find(L':', point) == std::wstring::npos);
}

/// True for a number short enough to be exact, and then its value.
bool shortNumber(const std::string& digits, unsigned& value)
{
    value = digits.empty() ? 0 : static_cast<unsigned>(std::stoul(digits.substr(0, 4)));
    return digits.size() <= 4;
}

void checkSeconds(const XESMPTEVAL& time, const Piece& piece)
{
    unsigned seconds = 0;
    if (piece.negative || !shortNumber(piece.whole, seconds)) {
        return;
    }
    if (piece.decimals.size() <= 9) {
        require(time.seconds == seconds);
        require(time.frames == std::stoul((piece.decimals + "000").substr(0, 3)));
    } else { // a row of nines is pushed over the second
        require(time.seconds - seconds <= 1);
    }
}

void checkFields(const XESMPTEVAL& time, const std::vector<Piece>& pieces)
{
    const unsigned fields[] = {time.minutes, time.hours};
    for (std::size_t before = 0; before < 2; ++before) {
        unsigned expected = 0;
        if (before + 1 >= pieces.size() ||
            shortNumber(pieces[pieces.size() - 2 - before].whole, expected)) {
            require(fields[before] == expected);
        }
    }
    require(pieces.back().negative || time.frames < 1000);
    checkSeconds(time, pieces.back());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const _XeString<wchar_t> text = textOf(bytesOf(data, size));
    std::vector<std::wstring> texts;
    boost::algorithm::split(texts, static_cast<const std::wstring&>(text),
                            boost::algorithm::is_any_of(L":"));
    std::vector<Piece> pieces;
    bool valid = isShaped(text);
    for (std::size_t index = 0; index < texts.size() && valid; ++index) {
        pieces.push_back(readPiece(texts[index], index + 1 == texts.size()));
        valid = pieces.back().valid;
    }
    XESMPTEVAL time{1, 1, 1, 1, 1, true};
    require(AsciiToTime(text, &time) == valid);
    if (valid) {
        checkFields(time, pieces);
    }
    return 0;
}
