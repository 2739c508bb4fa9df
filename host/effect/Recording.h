#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

/// A recording as decoded from its file. Not changed once it is made, so it may be shared between
/// threads.
struct Recording {
    std::string path;      // as it was given; any bytes but zero, empty when made in memory
    std::string format;    // container, for people: "WAV (Microsoft)"
    std::string encoding;  // sample type, for people: "Signed 16 bit PCM"
    int fileFormat = 0;    // libsndfile's container, sample type and byte order, for writing alike
    unsigned bitDepth = 0; // bits of one sample in the file; 0 for coded formats
    unsigned sampleRate = 0;    // Hz
    unsigned channels = 0;      // 1 or more
    std::vector<float> samples; // interleaved, full scale is -1 to 1; float files may exceed it

    std::uint64_t frames() const { return channels == 0 ? 0 : samples.size() / channels; }
    double seconds() const
    {
        return sampleRate == 0 ? 0.0 : static_cast<double>(frames()) / sampleRate;
    }
};

} // namespace host
