#ifndef __linux__
#error "for Linux only"
#endif

#include "core/XeSystemPlatform.h"

#include "XeSafeCRT.h"

#include <sys/random.h>
#include <sys/stat.h>

#include <cstring>
#include <ctime>

// The folder has one sub-folder a thread, each linked to it, beside its own two links.
unsigned _threadCount()
{
    struct stat tasks {};
    if (stat("/proc/self/task", &tasks) != 0 || tasks.st_nlink < 2) {
        return 0;
    }
    return static_cast<unsigned>(tasks.st_nlink - 2);
}

double _secondsFromGmtNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    tzset(); // localtime_r need not look at a changed TZ
    return localtime_r(&now, &local) != nullptr ? static_cast<double>(local.tm_gmtoff) : 0.0;
}

_GUID _createGuid()
{
    // Up to 256 bytes come whole; an early start only waits for the pool to be ready.
    _GUID guid{};
    while (getrandom(&guid, sizeof guid, 0) != sizeof guid) {
    }
    guid.Data3 = static_cast<std::uint16_t>((guid.Data3 & 0x0FFF) | 0x4000);
    guid.Data4[0] = static_cast<std::uint8_t>((guid.Data4[0] & 0x3F) | 0x80);
    return guid;
}
