#include "RecordingText.h"

#include "host/effect/AudioFile.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace host {

namespace {

constexpr const char* kSeparator = "  \u00B7  ";

template <typename... Values>
std::string formatted(const char* format, Values... values)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

std::string channelText(unsigned channels)
{
    switch (channels) {
    case 1:
        return "Mono";
    case 2:
        return "Stereo";
    default:
        return formatted("%u channels", channels);
    }
}

/// "FLAC (Free Lossless Audio Codec)" -> "FLAC"
std::string shortFormat(const std::string& format) { return format.substr(0, format.find(' ')); }

} // namespace

std::string clockText(double seconds)
{
    const auto ms = static_cast<unsigned long long>(std::llround(seconds * 1000));
    const unsigned long long hours = ms / 3600000;
    const unsigned long long minutes = ms / 60000 % 60;
    const unsigned long long rest = ms % 60000;
    if (hours == 0) {
        return formatted("%llu:%02llu.%03llu", minutes, rest / 1000, rest % 1000);
    }
    return formatted("%llu:%02llu:%02llu.%03llu", hours, minutes, rest / 1000, rest % 1000);
}

std::string describeRecording(const Recording& recording)
{
    const std::string depth =
        recording.bitDepth == 0 ? recording.encoding : formatted("%u bit", recording.bitDepth);
    return formatted("%g kHz", recording.sampleRate / 1000.0) + kSeparator +
           channelText(recording.channels) + kSeparator + depth + kSeparator +
           clockText(recording.seconds()) + kSeparator + shortFormat(recording.format);
}

std::string displayName(const Recording& recording)
{
    const std::string quoted = quotedPath(recording.path.substr(recording.path.rfind('/') + 1));
    return quoted.substr(1, quoted.size() - 2);
}

} // namespace host
