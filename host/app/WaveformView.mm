#import "WaveformView.h"

#import "HostLook.h"
#import "PlanShape.h"
#import "RulerMarks.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace host;

namespace {

constexpr CGFloat kRulerHeight = 20;
constexpr CGFloat kLaneGap = 2;
constexpr CGFloat kThinnest = 1;     // points of a column, also of silence
constexpr CGFloat kMarkSpacing = 96; // points between two labels, at least
constexpr CGFloat kMarkHeight = 6;
constexpr CGFloat kHintRadius = 6;

/// One column of a lane: the extremes of the frames under it times a gain, full scale filling the
/// lane.
NSRect columnRect(const PeakRange& peaks, double gain, CGFloat x, CGFloat width, NSRect lane)
{
    const CGFloat half = NSHeight(lane) / 2;
    const CGFloat low = NSMidY(lane) + half * std::clamp<CGFloat>(peaks.lowest * gain, -1, 1);
    const CGFloat high = NSMidY(lane) + half * std::clamp<CGFloat>(peaks.highest * gain, -1, 1);
    if (high - low < kThinnest) {
        return NSMakeRect(x, std::floor(low), width, kThinnest); // not blurred over two pixels
    }
    return NSMakeRect(x, low, width, high - low);
}

void fill(const std::vector<NSRect>& rects, NSColor* color)
{
    [color set];
    NSRectFillList(rects.data(), static_cast<NSInteger>(rects.size()));
}

void drawText(NSString* text, NSPoint at, CGFloat size, NSColor* color)
{
    [text drawAtPoint:at
        withAttributes:@{
            NSFontAttributeName : [NSFont systemFontOfSize:size],
            NSForegroundColorAttributeName : color,
        }];
}

bool usesThresholds(FunctionMode function)
{
    return function == FunctionMode::TrimStartAndEnd || function == FunctionMode::RemoveSilence;
}

} // namespace

@implementation WaveformView

- (void)setDelegate:(id<WaveformViewDelegate>)delegate
{
    m_delegate = delegate;
}

- (void)setEngine:(std::shared_ptr<const TrimEngine>)engine
{
    m_engine = std::move(engine);
    m_plan = {};
    m_columns.clear();
    m_cursor.reset();
    if (m_engine != nullptr) {
        m_plan.regions = {{.first = 0, .end = m_engine->recording().frames()}};
        m_settings.function = FunctionMode::FadesOnly;
        m_style.sampleRate = m_engine->recording().sampleRate;
    }
    [self _updateMarks];
    [self setNeedsDisplay:YES];
}

- (void)setPlan:(TrimPlan)plan settings:(const TrimSettings&)settings
{
    const std::vector<Stretch> changed = changedStretches(m_plan, plan);
    const bool linesMove = settings.function != m_settings.function ||
                           settings.attackThresholdDb != m_settings.attackThresholdDb ||
                           settings.releaseThresholdDb != m_settings.releaseThresholdDb;
    m_plan = std::move(plan);
    m_settings = settings;
    if (linesMove) {
        [self setNeedsDisplayInRect:[self _lanes]];
    } else if (!changed.empty()) {
        [self _redrawFrom:changed.front().first to:changed.back().end];
    }
}

- (void)setPositionStyle:(const PositionStyle&)style
{
    if (style == m_style) {
        return;
    }
    m_style = style;
    [self _updateMarks];
    [self setNeedsDisplayInRect:[self _ruler]];
}

- (std::optional<std::uint64_t>)cursor
{
    return m_cursor;
}

- (BOOL)isOpaque
{
    return YES;
}

// ---- geometry

- (NSRect)_lanes
{
    NSRect lanes = [self bounds];
    lanes.size.height = std::max<CGFloat>(NSHeight(lanes) - kRulerHeight, 1);
    return lanes;
}

- (NSRect)_ruler
{
    const NSRect bounds = [self bounds];
    return NSMakeRect(NSMinX(bounds), NSMaxY(bounds) - kRulerHeight, NSWidth(bounds), kRulerHeight);
}

// The first channel is at the top.
- (NSRect)_laneOfChannel:(unsigned)channel
{
    const unsigned channels = m_engine->recording().channels;
    const NSRect lanes = [self _lanes];
    const CGFloat height = NSHeight(lanes) / channels;
    return NSMakeRect(NSMinX(lanes), NSMaxY(lanes) - (channel + 1) * height + kLaneGap / 2,
                      NSWidth(lanes), std::max<CGFloat>(height - kLaneGap, 1));
}

- (double)_framesPerPoint
{
    return static_cast<double>(m_engine->recording().frames()) / NSWidth([self bounds]);
}

- (CGFloat)_pixel
{
    return 1 / std::max<CGFloat>([[self window] userSpaceScaleFactor], 0.5);
}

- (CGFloat)xOfFrame:(std::uint64_t)frame
{
    return m_engine == nullptr ? 0 : static_cast<CGFloat>(frame) / [self _framesPerPoint];
}

- (void)_redrawFrom:(std::uint64_t)first to:(std::uint64_t)end
{
    const CGFloat left = std::floor([self xOfFrame:first]) - 2;
    const CGFloat right = std::ceil([self xOfFrame:end]) + 2;
    [self setNeedsDisplayInRect:NSMakeRect(left, 0, right - left, NSHeight([self _lanes]))];
}

- (void)_updateMarks
{
    m_marks.clear();
    if (m_engine != nullptr) {
        m_marks = rulerMarks(m_engine->recording().frames(), kMarkSpacing * [self _framesPerPoint],
                             m_style);
    }
}

- (void)_takeColumns
{
    const NSSize size = [self bounds].size;
    const auto count = static_cast<std::size_t>(std::ceil(size.width / [self _pixel]));
    if (!m_columns.empty() && NSEqualSizes(size, m_columnsSize) && count == m_columnCount) {
        return;
    }
    m_columnsSize = size;
    m_columnCount = count;
    const unsigned channels = m_engine->recording().channels;
    m_columns.assign(channels * count, {});
    const double framesPerColumn = [self _framesPerPoint] * [self _pixel];
    for (std::size_t i = 0; i < count; ++i) {
        const auto first = static_cast<std::uint64_t>(static_cast<double>(i) * framesPerColumn);
        const auto end = static_cast<std::uint64_t>(static_cast<double>(i + 1) * framesPerColumn);
        for (unsigned channel = 0; channel < channels; ++channel) {
            m_columns[channel * count + i] =
                m_engine->peaks().range(channel, first, std::max(end, first + 1));
        }
    }
}

- (void)setFrameSize:(NSSize)size
{
    [super setFrameSize:size];
    [self _updateMarks];
    m_area.follow(self);
}

// ---- pointer

- (void)viewDidMoveToWindow
{
    m_area.follow(self);
    [[self window] setAcceptsMouseMovedEvents:YES];
}

- (void)viewWillMoveToWindow:(NSWindow*)window
{
    m_area.stop(self);
    [super viewWillMoveToWindow:window];
}

- (void)mouseMoved:(NSEvent*)event
{
    [self _pointAt:[self convertPoint:[event locationInWindow] fromView:nil]];
}

- (void)mouseDragged:(NSEvent*)event
{
    [self mouseMoved:event];
}

- (void)mouseEntered:(NSEvent*)event
{
    [[self window] setAcceptsMouseMovedEvents:YES];
    [self mouseMoved:event];
}

- (void)mouseExited:(NSEvent*)event
{
    [self _setCursor:std::nullopt];
}

- (void)_pointAt:(NSPoint)point
{
    if (m_engine == nullptr || !NSPointInRect(point, [self bounds])) {
        [self _setCursor:std::nullopt];
        return;
    }
    const auto frame =
        static_cast<std::uint64_t>(std::max<CGFloat>(point.x, 0) * [self _framesPerPoint]);
    [self _setCursor:std::min(frame, m_engine->recording().frames() - 1)];
}

- (void)_setCursor:(std::optional<std::uint64_t>)cursor
{
    if (cursor == m_cursor) {
        return;
    }
    for (const std::optional<std::uint64_t>& place : {m_cursor, cursor}) {
        if (place) {
            const CGFloat x = std::floor([self xOfFrame:*place]);
            [self setNeedsDisplayInRect:NSMakeRect(x - 1, 0, 3, NSHeight([self bounds]))];
        }
    }
    m_cursor = cursor;
    [m_delegate waveformViewDidMoveCursor:self];
}

// ---- drawing

- (void)drawRect:(NSRect)dirtyRect
{
    [look::well() set];
    NSRectFill(dirtyRect);
    if (m_engine == nullptr) {
        [self _drawHint];
        return;
    }
    [self _takeColumns];
    [self _drawRuler:dirtyRect];
    [self _drawKeptGround:dirtyRect];
    const unsigned channels = m_engine->recording().channels;
    for (unsigned channel = 0; channel < channels; ++channel) {
        [self _drawChannel:channel inRect:[self _laneOfChannel:channel] dirtyRect:dirtyRect];
    }
    [self _drawEdges:dirtyRect];
    [self _drawCursor];
}

- (void)_drawRuler:(NSRect)dirtyRect
{
    const NSRect ruler = [self _ruler];
    if (!NSIntersectsRect(dirtyRect, ruler)) {
        return;
    }
    [look::panel() set];
    NSRectFill(NSIntersectionRect(ruler, dirtyRect));
    for (const std::uint64_t mark : m_marks) {
        const CGFloat x = std::floor([self xOfFrame:mark]);
        [look::line() set];
        NSRectFill(NSMakeRect(x, NSMinY(ruler), 1, kMarkHeight));
        const std::string text = positionText(mark, m_style);
        drawText([NSString stringWithUTF8String:text.c_str()],
                 NSMakePoint(x + 4, NSMinY(ruler) + 4), 10, look::faintText());
    }
}

- (void)_drawKeptGround:(NSRect)dirtyRect
{
    const NSRect area = NSIntersectionRect([self _lanes], dirtyRect);
    std::vector<NSRect> grounds;
    for (const KeptRegion& region : m_plan.regions) {
        const CGFloat left = std::max([self xOfFrame:region.first], NSMinX(area));
        const CGFloat right = std::min([self xOfFrame:region.end], NSMaxX(area));
        if (left < right) {
            grounds.push_back(NSMakeRect(left, NSMinY(area), right - left, NSHeight(area)));
        }
    }
    fill(grounds, look::keptGround());
}

- (void)_drawChannel:(unsigned)channel inRect:(NSRect)lane dirtyRect:(NSRect)dirtyRect
{
    [look::line() set];
    NSRectFill(NSMakeRect(NSMinX(lane), std::floor(NSMidY(lane)), NSWidth(lane), 1));

    const CGFloat width = [self _pixel];
    const double framesPerColumn = [self _framesPerPoint] * width;
    const auto first = static_cast<std::size_t>(std::max<CGFloat>(NSMinX(dirtyRect), 0) / width);
    const auto end = std::min(m_columnCount, static_cast<std::size_t>(std::ceil(
                                                 std::max<CGFloat>(NSMaxX(dirtyRect), 0) / width)));
    std::vector<NSRect> cut;
    std::vector<NSRect> kept;
    for (std::size_t i = first; i < end; ++i) {
        const CGFloat x = NSMinX(lane) + static_cast<CGFloat>(i) * width;
        const PeakRange& peaks = m_columns[channel * m_columnCount + i];
        const auto middle =
            static_cast<std::uint64_t>((static_cast<double>(i) + 0.5) * framesPerColumn);
        const double gain = gainAt(m_plan, middle);
        if (gain < 1) {
            cut.push_back(columnRect(peaks, 1, x, width, lane));
        }
        if (gain > 0) {
            kept.push_back(columnRect(peaks, gain, x, width, lane));
        }
    }
    fill(cut, look::cutWaveform());
    fill(kept, look::waveform());
    if (usesThresholds(m_settings.function)) {
        [self _drawThreshold:m_settings.attackThresholdDb
                      inRect:lane
                   dirtyRect:dirtyRect
                       color:look::attackLine()];
        [self _drawThreshold:m_settings.releaseThresholdDb
                      inRect:lane
                   dirtyRect:dirtyRect
                       color:look::releaseLine()];
    }
}

- (void)_drawThreshold:(float)db
                inRect:(NSRect)lane
             dirtyRect:(NSRect)dirtyRect
                 color:(NSColor*)color
{
    if (db <= kMinusInfinityDb) {
        return;
    }
    const CGFloat height = NSHeight(lane) / 2 * std::min(std::pow(10.0, db / 20.0), 1.0);
    const CGFloat pixel = [self _pixel];
    constexpr CGFloat kDash = 4;
    std::vector<NSRect> dashes;
    const auto first = static_cast<long>(std::floor(NSMinX(dirtyRect) / (2 * kDash)));
    const auto last = static_cast<long>(std::ceil(NSMaxX(dirtyRect) / (2 * kDash)));
    for (long dash = first; dash < last; ++dash) {
        const CGFloat x = static_cast<CGFloat>(dash) * 2 * kDash;
        dashes.push_back(NSMakeRect(x, NSMidY(lane) + height - pixel, kDash, pixel));
        dashes.push_back(NSMakeRect(x, NSMidY(lane) - height, kDash, pixel));
    }
    fill(dashes, color);
}

- (void)_drawEdges:(NSRect)dirtyRect
{
    const NSRect lanes = [self _lanes];
    for (const KeptRegion& region : m_plan.regions) {
        const CGFloat left = [self xOfFrame:region.first];
        const CGFloat right = [self xOfFrame:region.end];
        if (right < NSMinX(dirtyRect) - 2 || left > NSMaxX(dirtyRect) + 2) {
            continue;
        }
        [look::accent() set];
        NSRectFill(NSMakeRect(std::floor(left), NSMinY(lanes), 1, NSHeight(lanes)));
        NSRectFill(NSMakeRect(std::ceil(right) - 1, NSMinY(lanes), 1, NSHeight(lanes)));
        [self _drawFadeFrom:region.first to:region.first + region.fadeIn];
        [self _drawFadeFrom:region.end - region.fadeOut to:region.end];
    }
}

/// The course of a fade, over the whole height.
- (void)_drawFadeFrom:(std::uint64_t)first to:(std::uint64_t)end
{
    constexpr int kSegments = 32;
    const NSRect lanes = NSInsetRect([self _lanes], 0, 1);
    if (end - first < 2) {
        return;
    }
    NSBezierPath* const path = [NSBezierPath bezierPath];
    for (int i = 0; i <= kSegments; ++i) {
        const auto frame = first + (end - 1 - first) * static_cast<std::uint64_t>(i) / kSegments;
        const NSPoint point = NSMakePoint([self xOfFrame:frame],
                                          NSMinY(lanes) + NSHeight(lanes) * gainAt(m_plan, frame));
        i == 0 ? [path moveToPoint:point] : [path lineToPoint:point];
    }
    [path setLineWidth:1.5];
    [look::fadeLine() set];
    [path stroke];
}

- (void)_drawCursor
{
    if (m_cursor) {
        [look::text() set];
        NSRectFill(NSMakeRect(std::floor([self xOfFrame:*m_cursor]), 0, [self _pixel],
                              NSHeight([self bounds])));
    }
}

- (void)_drawHint
{
    const NSRect frame = NSInsetRect([self bounds], 12, 12);
    NSBezierPath* const border = [NSBezierPath bezierPathWithRoundedRect:frame
                                                                 xRadius:kHintRadius
                                                                 yRadius:kHintRadius];
    const CGFloat dashes[] = {5, 4};
    [border setLineDash:dashes count:2 phase:0];
    [look::line() set];
    [border stroke];
    NSString* const hint = @"Drop a recording here, or open one with File, Open";
    NSDictionary* const attributes = @{
        NSFontAttributeName : [NSFont systemFontOfSize:0],
        NSForegroundColorAttributeName : look::faintText(),
    };
    const NSSize size = [hint sizeWithAttributes:attributes];
    [hint drawAtPoint:NSMakePoint(NSMidX(frame) - size.width / 2, NSMidY(frame) - size.height / 2)
        withAttributes:attributes];
}

@end
