#include "XeSafeCRT.h"

#include "core/XeSafeCRTPlatform.h"

#include <sys/resource.h>

#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cwchar>

namespace XeCRT {

void setCharacterType() noexcept { std::setlocale(LC_CTYPE, _characterTypeLocale()); }

int swprintf_s(wchar_t* buffer, std::size_t count, const wchar_t* format, ...) noexcept
{
    setCharacterType();
    va_list args;
    va_start(args, format);
    const int written = std::vswprintf(buffer, count, format, args);
    va_end(args);
    return written;
}

void prepareProcess() noexcept
{
    constexpr rlim_t kOpenFiles = 7168;

    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < kOpenFiles) {
        limit.rlim_cur = std::min(kOpenFiles, limit.rlim_max);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    setCharacterType();
}

} // namespace XeCRT
