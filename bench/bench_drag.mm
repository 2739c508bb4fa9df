// Dragging the slider of the attack threshold with 120 mouse events a second, in the window of the
// real host with ten minutes of stereo at 48 kHz. Counter `cpu` is the share of one core that the
// process takes, all its threads together, of the time that the events take at this rate: a machine
// that is too busy to keep the rate, which `events_per_second` tells, changes it little. The X
// server is another process.
//
// What the editor costs is the difference to the same events without it: then a bare view hears the
// mouse and sets the parameter, and the host plans and draws as before. A plain slider of the
// platform in the editor's place is its peer. Needs a display; without one it says so.

#import "BenchRunLoop.h"
#import "host/app/HostApplication.h"

#include "BenchRecording.h"

#include <AudioToolbox/AudioToolbox.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

using namespace host;
using bench::pump;

namespace {

constexpr AudioUnitParameterID kAttackThreshold = 1;
constexpr double kLowestDb = -60;
constexpr double kEventsPerSecond = 120;
constexpr int kEventsPerDrag = 600;
constexpr double kEventsPerSweep = 120; // from one end to the other
constexpr int kDrags = 3;

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double cpuSeconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

} // namespace

/// Moves the mouse over a view to and fro, as long as the view's tracking lasts.
@interface Mouse : NSObject {
@public
    NSView* view; // not owned
    int moves;
}
@end

@implementation Mouse

- (NSEvent*)_eventOfType:(NSEventType)type at:(double)fraction
{
    const NSSize size = [view bounds].size;
    const NSPoint point = NSMakePoint(size.width * fraction, size.height / 2);
    return [NSEvent mouseEventWithType:type
                              location:[view convertPoint:point toView:nil]
                         modifierFlags:0
                             timestamp:[NSDate timeIntervalSinceReferenceDate]
                          windowNumber:[[view window] windowNumber]
                               context:[[view window] graphicsContext]
                           eventNumber:0
                            clickCount:1
                              pressure:1];
}

- (void)_move:(NSTimer*)timer
{
    const double sweeps = moves++ / kEventsPerSweep;
    const double place = 0.1 + 0.8 * std::abs(std::fmod(sweeps, 2.0) - 1);
    const bool isLast = moves == kEventsPerDrag;
    [NSApp postEvent:[self _eventOfType:isLast ? NSLeftMouseUp : NSLeftMouseDragged at:place]
             atStart:NO];
    if (isLast) {
        [timer invalidate];
    }
}

- (void)drag
{
    moves = 0;
    NSTimer* const timer = [NSTimer timerWithTimeInterval:1 / kEventsPerSecond
                                                   target:self
                                                 selector:@selector(_move:)
                                                 userInfo:nil
                                                  repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    [NSApp postEvent:[self _eventOfType:NSLeftMouseDown at:0.9] atStart:NO];
    while (moves < kEventsPerDrag) {
        pump(0.01); // the view's tracking happens in there
    }
}

@end

/// Sets the threshold, with nothing between it and the mouse.
@interface BareArea : NSView {
@public
    AudioUnit unit;
}
- (void)takeValueOf:(NSSlider*)slider;
@end

@implementation BareArea

- (void)_set:(double)decibels
{
    const AudioUnitParameter attack{unit, kAttackThreshold, kAudioUnitScope_Global, 0};
    AUParameterSet(nullptr, nullptr, &attack, static_cast<float>(decibels), 0);
}

- (void)takeValueOf:(NSSlider*)slider
{
    [self _set:[slider doubleValue]];
}

- (void)mouseDown:(NSEvent*)event
{
    while ([event type] != NSLeftMouseUp) {
        @autoreleasepool {
            event = [[self window] nextEventMatchingMask:NSLeftMouseUpMask | NSLeftMouseDraggedMask
                                               untilDate:[NSDate distantFuture]
                                                  inMode:NSEventTrackingRunLoopMode
                                                 dequeue:YES];
            const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
            [self _set:kLowestDb * (1 - point.x / NSWidth([self bounds]))];
        }
    }
}

@end

namespace {

enum class Controls { None, PlainSlider, Editor };

double g_cpuWithout = 0; // of the first row, for the rows after it

/// The view over which the mouse is moved.
NSView* prepare(HostWindow* window, Controls controls)
{
    EditorPane* const pane = [window editorPane];
    NSSlider* const slider = [[pane editor] valueForKey:@"attackSlider"];
    if (controls == Controls::Editor) {
        return slider;
    }
    const NSRect place = [slider convertRect:[slider bounds] toView:pane];
    [pane closeEditor];
    BareArea* const area = [[[BareArea alloc] initWithFrame:place] autorelease];
    area->unit = [window effect];
    [pane addSubview:area];
    if (controls == Controls::None) {
        return area;
    }
    NSSlider* const plain = [[[NSSlider alloc] initWithFrame:place] autorelease];
    [plain setMinValue:kLowestDb];
    [plain setMaxValue:0];
    [plain setContinuous:YES];
    [plain setTarget:area];
    [plain setAction:@selector(takeValueOf:)];
    [pane addSubview:plain];
    return plain;
}

void drag(benchmark::State& state, Controls controls)
{
    @autoreleasepool {
        static const std::shared_ptr<const Recording> recording = bench::tenMinutesOfStereo();
        HostWindow* const window = [[HostWindow alloc] initWithBundle:EDITOR_BUNDLE
                                                              factory:"TarvelCocoaViewFactory"];
        [window showRecording:recording];
        [[window window] makeKeyAndOrderFront:nil];
        Mouse* const mouse = [[[Mouse alloc] init] autorelease];
        mouse->view = prepare(window, controls);
        pump(0.5);
        double cpu = 0;
        double seconds = 0;
        for (auto _ : state) {
            const double start = now();
            const double cpuStart = cpuSeconds();
            [mouse drag];
            cpu += cpuSeconds() - cpuStart;
            seconds += now() - start;
            state.SetIterationTime(now() - start);
            pump(0.3);
        }
        const double share = cpu * kEventsPerSecond / (kEventsPerDrag * kDrags);
        state.counters["cpu"] = share;
        state.counters["events_per_second"] = kEventsPerDrag * kDrags / seconds;
        if (controls == Controls::None) {
            g_cpuWithout = share;
        } else {
            state.counters["cpu_of_controls"] = share - g_cpuWithout;
        }
        [window close];
        [[window window] close];
        [window release];
    }
}

#define DRAG(name, controls)                                                                       \
    BENCHMARK_CAPTURE(drag, controls, Controls::controls)                                          \
        ->Name("drag/" name)                                                                       \
        ->Iterations(kDrags)                                                                       \
        ->UseManualTime()                                                                          \
        ->Unit(benchmark::kMillisecond)

DRAG("without-editor", None);
DRAG("plain-slider", PlainSlider);
DRAG("whole-host", Editor);

} // namespace

int main(int argc, char** argv)
{
    if (std::getenv("DISPLAY") == nullptr) {
        std::fprintf(stderr, "bench_drag needs a display: set DISPLAY\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    @autoreleasepool {
        prepareFrameworks(argv[0], 1);
        HostApplication* const application = [HostApplication prepare];
        [application setDelegate:nil]; // it would end with its first window
        [application finishLaunching];
        benchmark::RunSpecifiedBenchmarks();
    }
    return 0;
}
