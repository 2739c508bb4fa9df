#import "WaveformView.h"

#import "HostLook.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace host;

namespace {

constexpr CGFloat kLaneGap = 2;
constexpr CGFloat kThinnest = 1; // points of a column, also of silence

/// One column of a lane: the extremes of the frames under it, full scale filling the lane.
NSRect columnRect(const PeakRange& peaks, CGFloat x, CGFloat width, NSRect lane)
{
    const CGFloat half = NSHeight(lane) / 2;
    const CGFloat low = NSMidY(lane) + half * std::clamp<CGFloat>(peaks.lowest, -1, 1);
    const CGFloat high = NSMidY(lane) + half * std::clamp<CGFloat>(peaks.highest, -1, 1);
    if (high - low < kThinnest) {
        return NSMakeRect(x, std::floor(low), width, kThinnest); // not blurred over two pixels
    }
    return NSMakeRect(x, low, width, high - low);
}

} // namespace

@implementation WaveformView

- (void)setEngine:(std::shared_ptr<const TrimEngine>)engine
{
    m_engine = std::move(engine);
    [self setNeedsDisplay:YES];
}

- (BOOL)isOpaque
{
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect
{
    [look::well() set];
    NSRectFill(dirtyRect);
    if (m_engine == nullptr) {
        [self _drawHint];
        return;
    }
    const unsigned channels = m_engine->recording().channels;
    for (unsigned channel = 0; channel < channels; ++channel) {
        [self _drawChannel:channel inRect:[self _laneOfChannel:channel] dirtyRect:dirtyRect];
    }
}

// The first channel is at the top.
- (NSRect)_laneOfChannel:(unsigned)channel
{
    const unsigned channels = m_engine->recording().channels;
    const NSRect bounds = [self bounds];
    const CGFloat height = NSHeight(bounds) / channels;
    return NSMakeRect(NSMinX(bounds), NSMaxY(bounds) - (channel + 1) * height + kLaneGap / 2,
                      NSWidth(bounds), std::max<CGFloat>(height - kLaneGap, 1));
}

- (void)_drawChannel:(unsigned)channel inRect:(NSRect)lane dirtyRect:(NSRect)dirtyRect
{
    [look::line() set];
    NSRectFill(NSMakeRect(NSMinX(lane), std::floor(NSMidY(lane)), NSWidth(lane), 1));

    const CGFloat width = 1 / [[self window] userSpaceScaleFactor]; // a pixel
    const double framesPerPoint =
        static_cast<double>(m_engine->recording().frames()) / NSWidth(lane);
    const CGFloat start = std::max(NSMinX(dirtyRect), NSMinX(lane)) - NSMinX(lane);
    const CGFloat end = std::min(NSMaxX(dirtyRect), NSMaxX(lane)) - NSMinX(lane);
    std::vector<NSRect> columns;
    for (auto i = static_cast<long>(start / width); static_cast<CGFloat>(i) * width < end; ++i) {
        const CGFloat x = static_cast<CGFloat>(i) * width;
        const auto first = static_cast<std::uint64_t>(x * framesPerPoint);
        const auto last = static_cast<std::uint64_t>((x + width) * framesPerPoint);
        const PeakRange peaks = m_engine->peaks().range(channel, first, std::max(last, first + 1));
        columns.push_back(columnRect(peaks, NSMinX(lane) + x, width, lane));
    }
    [look::waveform() set];
    NSRectFillList(columns.data(), static_cast<NSInteger>(columns.size()));
}

- (void)_drawHint
{
    NSString* const hint = @"Open a recording with File, Open";
    NSDictionary* const attributes = @{
        NSFontAttributeName : [NSFont systemFontOfSize:0],
        NSForegroundColorAttributeName : look::faintText(),
    };
    const NSSize size = [hint sizeWithAttributes:attributes];
    const NSRect bounds = [self bounds];
    [hint drawAtPoint:NSMakePoint(NSMidX(bounds) - size.width / 2, NSMidY(bounds) - size.height / 2)
        withAttributes:attributes];
}

@end
