#ifndef __APPLE__
#error "for macOS only"
#endif

#include "core/XeSystemPlatform.h"

#include "XeSafeCRT.h"

#include <CoreFoundation/CoreFoundation.h>

#include <mach/mach.h>

unsigned _threadCount()
{
    thread_act_array_t threads = nullptr;
    mach_msg_type_number_t count = 0;
    if (task_threads(mach_task_self(), &threads, &count) != KERN_SUCCESS) {
        return 0;
    }
    for (mach_msg_type_number_t i = 0; i < count; ++i) {
        mach_port_deallocate(mach_task_self(), threads[i]);
    }
    vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(threads),
                  count * sizeof *threads);
    return count;
}

double _secondsFromGmtNow()
{
    const CFTimeZoneRef zone = CFTimeZoneCopySystem();
    const double seconds = CFTimeZoneGetSecondsFromGMT(zone, CFAbsoluteTimeGetCurrent());
    CFRelease(zone);
    return seconds;
}

_GUID _createGuid()
{
    const CFUUIDRef uuid = CFUUIDCreate(kCFAllocatorDefault);
    const CFStringRef string = CFUUIDCreateString(kCFAllocatorDefault, uuid);
    _XeString<wchar_t> text;
    for (CFIndex i = 0; i < CFStringGetLength(string); ++i) {
        text += CFStringGetCharacterAtIndex(string, i);
    }
    CFRelease(string);
    CFRelease(uuid);
    _GUID guid{};
    XeGuidFromString(text, guid);
    return guid;
}
