// Wide and narrow conversion: nothing is written outside the destination, the text is what the
// facet alone makes of it, and wide text survives the way to UTF-8 and back.

#include "XeStringUtil.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// Where the facet refuses the text, the global locale has the word.
void checkToWide(const std::string& source, int capacity)
{
    const auto buffer = std::make_unique<wchar_t[]>(static_cast<std::size_t>(capacity) + 1);
    StdConvert(buffer.get(), capacity, source.data(), static_cast<int>(source.size()));

    std::wstring expected(source.size() + 1, L'\0');
    std::mbstate_t state{};
    const char* next = nullptr;
    wchar_t* end = nullptr;
    const auto result =
        xenon::get_facet().in(state, source.data(), source.data() + source.size(), next,
                              &expected[0], &expected[0] + source.size(), end);
    if (result == std::codecvt_base::ok) {
        const auto length = std::min<std::size_t>(static_cast<std::size_t>(end - &expected[0]),
                                                  static_cast<std::size_t>(capacity));
        require(std::equal(buffer.get(), buffer.get() + length, expected.begin()));
        require(source.empty() || buffer[length] == 0);
    }
    std::wstring assigned;
    xeassign(assigned, source.c_str());
    require(assigned.size() <= source.size());
}

void checkToNarrow(std::wstring source, int capacity)
{
    const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(capacity) + 1);
    StdConvert(buffer.get(), capacity, source.data(), static_cast<int>(source.size()));

    for (wchar_t& c : source) {
        c = static_cast<wchar_t>(c & 0x1FFFFF); // up to four bytes each
    }
    std::string narrow;
    xeassign(narrow, source.c_str());
    std::wstring back;
    xeassign(back, narrow.c_str());
    require(back == source.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const int capacity = data[0];
    const std::string bytes(data + 1, data + size);
    checkToWide(bytes, capacity);

    std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(wchar_t));
    checkToNarrow(wide, capacity);
    return 0;
}
