#include "RunLoopTimer.h"

#import "RunLoopWatcher.h"

#include <CoreAudio/CoreAudioTypes.h>

#include <cerrno>
#include <utility>

#include <sys/timerfd.h>
#include <unistd.h>

namespace audiounit_compat {

namespace {

using Fire = std::function<void()>;

void _fire(void* context)
{
    const Fire fire = *static_cast<Fire*>(context); // stays whole when it stops the timer
    fire();
}

void _release(void* context) { delete static_cast<Fire*>(context); }

// The run loop's thread, or nil for one that is neither the caller's nor the main one's.
NSThread* _threadOf(CFRunLoopRef runLoop)
{
    if (runLoop == nullptr || runLoop == CFRunLoopGetCurrent()) {
        return [NSThread currentThread];
    }
    return runLoop == CFRunLoopGetMain() ? [NSThread mainThread] : nil;
}

// The common modes, by name because AppKit, which has the last two, is no part of this library. A
// run loop never expands them itself.
NSArray* _commonModes()
{
    return @[ NSDefaultRunLoopMode, @"NSEventTrackingRunLoopMode", @"NSModalPanelRunLoopMode" ];
}

NSArray* _modes(CFStringRef mode)
{
    NSString* const name = reinterpret_cast<NSString*>(mode);
    if (name == nil) {
        return @[ NSDefaultRunLoopMode ];
    }
    if ([name isEqualToString:reinterpret_cast<NSString*>(kCFRunLoopCommonModes)] ||
        [name isEqualToString:NSRunLoopCommonModes]) {
        return _commonModes();
    }
    return @[ name ];
}

void _performOn(NSThread* thread, AudioUnitCompatWatcher* watcher, SEL selector)
{
    if (thread == [NSThread currentThread]) {
        [watcher performSelector:selector];
        return;
    }
    [watcher performSelector:selector
                    onThread:thread
                  withObject:nil
               waitUntilDone:NO
                       modes:_commonModes()];
}

} // namespace

RunLoopTimer::~RunLoopTimer()
{
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
}

int RunLoopTimer::start(CFRunLoopRef runLoop, CFStringRef mode, Fire fire)
{
    @autoreleasepool {
        NSThread* const thread = _threadOf(runLoop);
        if (thread == nil) {
            return kAudio_ParamError;
        }
        m_descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
        if (m_descriptor < 0) {
            return errno;
        }
        AudioUnitCompatWatcher* const watcher =
            [[AudioUnitCompatWatcher alloc] initWithDescriptor:m_descriptor
                                                         modes:_modes(mode)
                                                          fire:_fire
                                                       release:_release
                                                       context:new Fire(std::move(fire))];
        m_watcher = watcher;
        m_thread = [thread retain];
        _performOn(thread, watcher, @selector(attach));
        return noErr;
    }
}

void RunLoopTimer::arm(UInt64 time) noexcept
{
    constexpr UInt64 kSecond = 1'000'000'000;
    itimerspec at{};
    at.it_value.tv_sec = static_cast<time_t>(time / kSecond);
    at.it_value.tv_nsec = static_cast<long>(time % kSecond);
    timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME, &at, nullptr);
}

void RunLoopTimer::stop()
{
    if (m_watcher == nullptr) {
        return;
    }
    @autoreleasepool {
        auto* const watcher =
            static_cast<AudioUnitCompatWatcher*>(std::exchange(m_watcher, nullptr));
        auto* const thread = static_cast<NSThread*>(std::exchange(m_thread, nullptr));
        if ([thread isFinished]) {
            [watcher abandon];
        } else {
            _performOn(thread, watcher, @selector(detach));
        }
        [watcher release];
        [thread release];
    }
}

} // namespace audiounit_compat
