// Whole numbers: the three instances agree with a slow reader in value, modulo their range, and in
// where they stop.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XeUtil.h"

namespace {

template <class Integer>
void check(const _XeString<wchar_t>& text, const slow::Integer& expected)
{
    Integer value = 1;
    const auto end = xenon::util::atoi(text.begin(), text.end(), value);
    require(value == static_cast<Integer>(expected.value));
    require(end - text.begin() == static_cast<std::ptrdiff_t>(expected.end));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const _XeString<wchar_t> text = textOf(bytesOf(data, size));
    const slow::Integer expected = slow::readInteger(text);
    check<unsigned int>(text, expected);
    check<unsigned long long>(text, expected);
    check<long long>(text, expected);
    return 0;
}
