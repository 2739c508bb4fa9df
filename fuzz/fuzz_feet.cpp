// Feet and frames: equal to a slow reader of the pieces between plus signs, refused where a piece
// is no whole number; what is written comes back.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XePosFmt.h"
#include "XeResult.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include <optional>
#include <string>
#include <vector>

namespace {

std::optional<faf_val> slowLength(const std::wstring& text)
{
    if (text.empty() || text.front() == L'+') {
        return faf_val{};
    }
    std::vector<std::wstring> pieces;
    boost::algorithm::split(pieces, text, boost::algorithm::is_any_of(L"+"));
    std::vector<long long> numbers = {0};
    for (const std::wstring& piece : pieces) {
        const slow::Integer number = slow::readInteger(piece);
        if (number.end != piece.size()) {
            return std::nullopt;
        }
        numbers.push_back(static_cast<unsigned>(number.value));
    }
    return faf_val{numbers[numbers.size() - 2], numbers.back()};
}

std::optional<faf_val> lengthOf(const _XeString<wchar_t>& text)
{
    try {
        return XePosFmt::feetAndFramesFromString(text);
    } catch (int code) {
        require(code == kXeUnexpected);
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const _XeString<wchar_t> text = textOf(bytesOf(data, size));
    const std::optional<faf_val> length = lengthOf(text);
    require(length == slowLength(text));
    if (length) {
        const XePosFmt format(zqposfmt_feet_frames_35mm);
        require(lengthOf(format.feetAndFramesToString(*length, 0)) == length);
    }
    return 0;
}
