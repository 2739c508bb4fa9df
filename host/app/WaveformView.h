#pragma once

#import <AppKit/AppKit.h>

#include "host/effect/TrimEngine.h"

#include <memory>

/// Shows a recording from start to end, one lane for each channel. [main]
@interface WaveformView : NSView {
@private
    std::shared_ptr<const host::TrimEngine> m_engine;
}

/// Shows the recording of that engine; null shows how to open one.
- (void)setEngine:(std::shared_ptr<const host::TrimEngine>)engine;

@end
