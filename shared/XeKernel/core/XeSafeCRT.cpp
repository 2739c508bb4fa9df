#include "XeSafeCRT.h"

#include "core/XeSafeCRTPlatform.h"

#include <sys/resource.h>

#include <algorithm>
#include <clocale>

namespace XeCRT {

void setCharacterType() noexcept { std::setlocale(LC_CTYPE, _characterTypeLocale()); }

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
