#pragma once

#include "host/effect/TrimEngine.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <random>

namespace bench {

/// Ten minutes of stereo at 48 kHz: two seconds of tone, one of faint noise, and so on.
inline std::shared_ptr<const host::Recording> tenMinutesOfStereo()
{
    constexpr unsigned kRate = 48000;
    constexpr unsigned kChannels = 2;
    auto recording = std::make_shared<host::Recording>();
    recording->sampleRate = kRate;
    recording->channels = kChannels;
    recording->samples.resize(std::size_t{kRate} * 600 * kChannels);
    std::minstd_rand random(1);
    std::uniform_real_distribution<double> noise(-0.0003, 0.0003);
    for (std::size_t i = 0; i < recording->samples.size(); ++i) {
        const double seconds = static_cast<double>(i / kChannels) / kRate;
        const double level = std::fmod(seconds, 3.0) < 2.0 ? 0.3 : 0.0;
        recording->samples[i] =
            static_cast<float>(level * std::sin(seconds * 2000) + noise(random));
    }
    return recording;
}

} // namespace bench
