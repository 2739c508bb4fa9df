#pragma once

#include <gtest/gtest.h>
#include <sndfile.h>

#include <string>
#include <type_traits>
#include <vector>

/// A sound file as its samples: int for whole samples (in the upper bits), double else.
template <typename Sample>
struct SoundContents {
    int format = 0; // libsndfile's, without the byte order
    int rate = 0;
    int channels = 0;
    std::vector<Sample> samples; // interleaved
};

template <typename Sample>
std::string writeSound(const std::string& path, const SoundContents<Sample>& sound)
{
    SF_INFO info{};
    info.format = sound.format;
    info.samplerate = sound.rate;
    info.channels = sound.channels;
    SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
    EXPECT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    const auto count = static_cast<sf_count_t>(sound.samples.size());
    if constexpr (std::is_same_v<Sample, int>) {
        EXPECT_EQ(sf_write_int(file, sound.samples.data(), count), count);
    } else {
        EXPECT_EQ(sf_write_double(file, sound.samples.data(), count), count);
    }
    EXPECT_EQ(sf_close(file), 0);
    return path;
}

template <typename Sample>
SoundContents<Sample> readSound(const std::string& path)
{
    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    EXPECT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    if (file == nullptr) {
        return {};
    }
    SoundContents<Sample> sound{
        info.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK), info.samplerate, info.channels, {}};
    sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    const auto count = static_cast<sf_count_t>(sound.samples.size());
    if constexpr (std::is_same_v<Sample, int>) {
        EXPECT_EQ(sf_read_int(file, sound.samples.data(), count), count);
    } else {
        EXPECT_EQ(sf_read_double(file, sound.samples.data(), count), count);
    }
    EXPECT_EQ(sf_close(file), 0);
    return sound;
}
