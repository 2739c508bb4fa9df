#pragma once

#import <AppKit/AppKit.h>

#include "host/effect/Recording.h"

#include <cmath>
#include <memory>

/// Recordings and pictures for tests of what the window draws.
namespace host_test {

/// A second at 1 kHz whose second half is as loud as can be.
inline std::shared_ptr<host::Recording> halfLoud(unsigned channels)
{
    auto recording = std::make_shared<host::Recording>();
    recording->path = "/audio/half.wav";
    recording->format = "WAV (Microsoft)";
    recording->bitDepth = 16;
    recording->sampleRate = 1000;
    recording->channels = channels;
    recording->samples.resize(1000 * channels);
    for (std::size_t i = 500 * channels; i < recording->samples.size(); ++i) {
        recording->samples[i] = i / channels % 2 == 0 ? 1.0F : -1.0F;
    }
    return recording;
}

/// Whether a pixel, counted from the top left, has a colour.
inline bool isColor(NSBitmapImageRep* image, NSInteger x, NSInteger y, NSColor* expected)
{
    NSColor* const color = [[image colorAtX:x
                                          y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return std::abs([color redComponent] - [expected redComponent]) < 0.02 &&
           std::abs([color greenComponent] - [expected greenComponent]) < 0.02 &&
           std::abs([color blueComponent] - [expected blueComponent]) < 0.02;
}

/// What the window shows of a view, after drawing what needs to be drawn.
inline NSBitmapImageRep* pictureOf(NSView* view)
{
    [[view window] displayIfNeeded];
    [view lockFocus];
    NSBitmapImageRep* const image =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    return image;
}

} // namespace host_test
