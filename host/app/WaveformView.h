#pragma once

#import <AppKit/AppKit.h>

#import "PointerArea.h"
#include "PositionText.h"
#include "host/effect/TrimEngine.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

@class WaveformView;

@protocol WaveformViewDelegate
/// The pointer has come to another frame of the recording, or has left the view.
- (void)waveformViewDidMoveCursor:(WaveformView*)view;
@end

/// Shows a recording from start to end below a time ruler, one lane for each channel, and what the
/// effect makes of it: kept material in colour and as loud as it becomes, cut material grey, each
/// fade as a curve, the thresholds as lines, and the frame under the pointer. [main]
///
/// The peaks of each column are taken once for a recording and a size; a new plan draws again only
/// the columns that it changes.
@interface WaveformView : NSView {
@private
    std::shared_ptr<const host::TrimEngine> m_engine;
    host::TrimPlan m_plan;
    host::TrimSettings m_settings;
    host::PositionStyle m_style;
    std::vector<host::PeakRange> m_columns; // channel by channel, a pixel each
    std::vector<std::uint64_t> m_marks;     // of the ruler
    std::size_t m_columnCount;
    NSSize m_columnsSize; // of the view when they were taken
    std::optional<std::uint64_t> m_cursor;
    host::PointerArea m_area;
    id<WaveformViewDelegate> m_delegate; // not owned
}

- (void)setDelegate:(id<WaveformViewDelegate>)delegate;

/// Shows the recording of that engine, all of it kept; null shows how to open one.
- (void)setEngine:(std::shared_ptr<const host::TrimEngine>)engine;

/// Shows what a plan of that engine does, and the thresholds of the settings that it comes from.
- (void)setPlan:(host::TrimPlan)plan settings:(const host::TrimSettings&)settings;

/// How ruler and cursor are written. The sample rate should be the recording's.
- (void)setPositionStyle:(const host::PositionStyle&)style;

/// Frame under the pointer, none while it is elsewhere.
- (std::optional<std::uint64_t>)cursor;

/// Where a frame of the recording is drawn, in the view; the first frame at its left edge.
- (CGFloat)xOfFrame:(std::uint64_t)frame;

@end
