// The editor as a host sees it: how long it takes to open, how soon a change shows, and what a
// stream of changes costs. Needs a display; without one it says so.

#import <AppKit/AppKit.h>
#import <AudioToolbox/AudioToolbox.h>
#import <AudioUnit/AUCocoaUIView.h>

#import "BenchRunLoop.h"

#include "host/effect/TarvelEffect.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>

using bench::pump;

namespace {

using Clock = std::chrono::steady_clock;

constexpr AudioUnitParameterID kAttackThreshold = 1;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double cpuSeconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void automate(AudioUnit unit, float value)
{
    const AudioUnitParameter attack{unit, kAttackThreshold, kAudioUnitScope_Global, 0};
    AUParameterSet(nullptr, nullptr, &attack, value, 0);
}

// A window on the screen in which editors are shown.
class Stage {
public:
    Stage()
        : m_window([[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 480, 340)
                                               styleMask:NSTitledWindowMask
                                                 backing:NSBackingStoreBuffered
                                                   defer:NO])
    {
        [m_window setReleasedWhenClosed:NO];
        [m_window makeKeyAndOrderFront:nil];
        pump(0.2);
    }

    ~Stage()
    {
        [m_window close];
        [m_window release];
    }

    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    NSView* open(AudioUnit unit) const
    {
        NSBundle* const bundle =
            [NSBundle bundleWithPath:[NSString stringWithUTF8String:EDITOR_BUNDLE]];
        id<AUCocoaUIBase> const factory =
            [[[[bundle classNamed:@"TarvelCocoaViewFactory"] alloc] init] autorelease];
        return [factory uiViewForAudioUnit:unit withSize:NSZeroSize];
    }

    void show(NSView* view) const
    {
        [[m_window contentView] addSubview:view];
        [m_window display];
        [m_window flushWindow];
    }

private:
    NSWindow* m_window;
};

// From the factory's call to the first drawn frame. The first one loads the bundle, reads fonts
// and fills caches: it is the row "cold".
void openEditor(benchmark::State& state)
{
    TarvelEffect effect;
    const Stage stage;
    for (auto _ : state) {
        @autoreleasepool {
            const auto start = Clock::now();
            NSView* const view = stage.open(&effect);
            stage.show(view);
            state.SetIterationTime(secondsSince(start));
            [view removeFromSuperview];
        }
    }
}
BENCHMARK(openEditor)
    ->Name("open/cold")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(openEditor)
    ->Name("open/warm")
    ->Iterations(50)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// The part of it that is the platform's: reading the interface description, nothing bound.
void loadDescription(benchmark::State& state)
{
    TarvelEffect effect;
    const Stage stage;
    @autoreleasepool {
        [stage.open(&effect) frame];
    }
    for (auto _ : state) {
        @autoreleasepool {
            const auto start = Clock::now();
            id const owner =
                [[[NSClassFromString(@"TarvelCocoaViewFactory") alloc] init] autorelease];
            [NSBundle loadNibNamed:@"TarvelCocoaView" owner:owner];
            [[owner valueForKey:@"uiFreshlyLoadedView"] release];
            state.SetIterationTime(secondsSince(start));
        }
    }
}
BENCHMARK(loadDescription)
    ->Name("open/description-alone")
    ->Iterations(50)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// Changes the threshold on another thread and times until `shown` is true of the new value.
template <typename Shown>
void timeChanges(benchmark::State& state, TarvelEffect& effect, Shown shown)
{
    float value = -50;
    for (auto _ : state) {
        value = value > -2 ? -50 : value + 0.5F;
        const auto start = Clock::now();
        std::thread([&effect, value] { automate(&effect, value); }).join();
        while (!shown(value)) {
            @autoreleasepool {
                [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                         beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.2]];
            }
        }
        state.SetIterationTime(secondsSince(start));
        pump(0.03); // not in step with the granule
    }
}

// The floor: a listener that only keeps the value, with the editor's interval and granularity.
// Changes are handed over at most each 50 ms.
void hearChange(benchmark::State& state)
{
    TarvelEffect effect;
    float heard = 0;
    AUEventListenerRef listener = nullptr;
    AUEventListenerCreate(
        [](void* context, void*, const AudioUnitEvent*, UInt64, AudioUnitParameterValue value) {
            *static_cast<float*>(context) = value;
        },
        &heard, nullptr, kCFRunLoopCommonModes, 0.05F, 0.05F, &listener);
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_ParameterValueChange;
    event.mArgument.mParameter = {&effect, kAttackThreshold, kAudioUnitScope_Global, 0};
    AUEventListenerAddEventType(listener, &heard, &event);
    timeChanges(state, effect, [&heard](float value) { return heard == value; });
    AUListenerDispose(listener);
}
BENCHMARK(hearChange)
    ->Name("change-to-bare-listener")
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// From a change to its drawn frame.
void showChange(benchmark::State& state)
{
    @autoreleasepool {
        TarvelEffect effect;
        const Stage stage;
        NSView* const view = stage.open(&effect);
        stage.show(view);
        NSSlider* const slider = [view valueForKey:@"attackSlider"];
        timeChanges(state, effect, [view, slider](float value) {
            if ([slider floatValue] != value) {
                return false;
            }
            [view displayIfNeeded];
            [[view window] flushWindow];
            return true;
        });
        [view removeFromSuperview];
    }
}
BENCHMARK(showChange)
    ->Name("change-to-shown")
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// One second of 10,000 changes from another thread. Counter `cpu`: share of one core that the
// main thread spends on them, delivery and drawing together.
void streamOfChanges(benchmark::State& state)
{
    @autoreleasepool {
        TarvelEffect effect;
        const Stage stage;
        NSView* const view = state.range(0) != 0 ? stage.open(&effect) : nil;
        if (view != nil) {
            stage.show(view);
        }
        double cpu = 0;
        double seconds = 0;
        for (auto _ : state) {
            std::atomic<bool> done = false;
            const auto start = Clock::now();
            const double cpuStart = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
            std::thread automation([&effect, &done, start] {
                for (int i = 0; i < 10000; ++i) {
                    automate(&effect, -60 + static_cast<float>(i % 6000) * 0.01F);
                    std::this_thread::sleep_until(start + std::chrono::microseconds(100 * (i + 1)));
                }
                done = true;
            });
            while (!done) {
                pump(0.02);
            }
            automation.join();
            seconds += secondsSince(start);
            cpu += cpuSeconds(CLOCK_THREAD_CPUTIME_ID) - cpuStart;
            state.SetIterationTime(secondsSince(start));
        }
        state.counters["cpu"] = cpu / seconds;
        [view removeFromSuperview];
    }
}
BENCHMARK(streamOfChanges)
    ->Name("10000-changes-a-second/without-editor")
    ->Arg(0)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(streamOfChanges)
    ->Name("10000-changes-a-second/editor-open")
    ->Arg(1)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (std::getenv("DISPLAY") == nullptr) {
        std::fprintf(stderr, "bench_editor needs a display: set DISPLAY\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    @autoreleasepool {
        [[NSUserDefaults standardUserDefaults] registerDefaults:@{
            @"GSSuppressAppIcon" : @(YES),
            @"NSMenuInterfaceStyle" : @"NSWindows95InterfaceStyle",
        }];
        [NSApplication sharedApplication];
        [NSApp finishLaunching];
        benchmark::RunSpecifiedBenchmarks();
    }
    return 0;
}
