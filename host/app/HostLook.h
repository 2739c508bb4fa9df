#pragma once

#import <AppKit/AppKit.h>

/// Colours and measures of the host's own window. [main]
namespace host::look {

inline NSColor* rgb(unsigned value, double alpha = 1.0)
{
    const auto part = [value](int shift) { return (value >> shift & 0xFF) / 255.0; };
    return [NSColor colorWithCalibratedRed:part(16) green:part(8) blue:part(0) alpha:alpha];
}

// clang-format off
inline NSColor* background()     { return rgb(0x1B1D21); }
inline NSColor* panel()          { return rgb(0x24272C); }
inline NSColor* well()           { return rgb(0x131518); }
inline NSColor* line()           { return rgb(0x34383F); }
inline NSColor* text()           { return rgb(0xE3E6EA); }
inline NSColor* faintText()      { return rgb(0x8B929C); }
inline NSColor* accent()         { return rgb(0x4C9BE8); }
inline NSColor* accentText()     { return rgb(0xFFFFFF); }
inline NSColor* waveform()       { return rgb(0x5FA8EC); }
inline NSColor* cutWaveform()    { return rgb(0x4A5058); }
inline NSColor* keptGround()     { return rgb(0x1A2532); }
inline NSColor* fadeLine()       { return rgb(0xF2C14E); }
inline NSColor* attackLine()     { return rgb(0x6FCF97, 0.75); }
inline NSColor* releaseLine()    { return rgb(0xEB8F6A, 0.75); }
inline NSColor* hover()          { return rgb(0x2F343B); }
inline NSColor* pressed()        { return rgb(0x3A4049); }
inline NSColor* warning()        { return rgb(0xF2C14E); }
// clang-format on

} // namespace host::look
