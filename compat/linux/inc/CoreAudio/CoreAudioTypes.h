#pragma once

#include <CoreFoundation/CFBase.h>

typedef UInt32 AudioFormatID;
typedef UInt32 AudioFormatFlags;

enum : OSStatus { kAudio_ParamError = -50 };

enum : AudioFormatID { kAudioFormatLinearPCM = 0x6c70636d }; // 'lpcm'

enum : AudioFormatFlags {
    kAudioFormatFlagIsFloat = 1U << 0,
    kAudioFormatFlagIsBigEndian = 1U << 1,
    kAudioFormatFlagIsSignedInteger = 1U << 2,
    kAudioFormatFlagIsPacked = 1U << 3,
    kAudioFormatFlagIsNonInterleaved = 1U << 5,
    kAudioFormatFlagsNativeFloatPacked = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked
};

/// The layout of a stream of samples. A packet of uncompressed sound is one frame, and with
/// separate channels the byte counts are those of one channel.
struct AudioStreamBasicDescription {
    Float64 mSampleRate; // frames per second
    AudioFormatID mFormatID;
    AudioFormatFlags mFormatFlags;
    UInt32 mBytesPerPacket;
    UInt32 mFramesPerPacket;
    UInt32 mBytesPerFrame;
    UInt32 mChannelsPerFrame;
    UInt32 mBitsPerChannel;
    UInt32 mReserved;
};
typedef struct AudioStreamBasicDescription AudioStreamBasicDescription;

static_assert(sizeof(AudioStreamBasicDescription) == 40);
