#include "PeakTable.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

/// Extremes of every `stride`-th sample. Comparisons are written so that NaN never enters.
PeakRange extremes(const float* samples, std::uint64_t frames, unsigned stride)
{
    PeakRange range;
    bool any = false;
    for (std::uint64_t i = 0; i < frames; ++i) {
        const float sample = samples[i * stride];
        if (std::isnan(sample)) {
            continue;
        }
        range.lowest = any ? std::min(range.lowest, sample) : sample;
        range.highest = any ? std::max(range.highest, sample) : sample;
        any = true;
    }
    return range;
}

float magnitude(const PeakRange& range)
{
    return std::max(std::fabs(range.lowest), std::fabs(range.highest));
}

} // namespace

PeakTable::PeakTable(const Recording& recording) : m_channels(recording.channels)
{
    const std::uint64_t frames = recording.frames();
    const std::size_t blockCount = (frames + kBlockFrames - 1) / kBlockFrames;
    m_ranges.reserve(blockCount * m_channels);
    m_loudest.reserve(blockCount);
    for (std::uint64_t first = 0; first < frames; first += kBlockFrames) {
        const std::uint64_t count = std::min(kBlockFrames, frames - first);
        float loudest = 0;
        for (unsigned channel = 0; channel < m_channels; ++channel) {
            const float* const samples = &recording.samples[first * m_channels + channel];
            m_ranges.push_back(extremes(samples, count, m_channels));
            loudest = std::max(loudest, magnitude(m_ranges.back()));
        }
        m_loudest.push_back(loudest);
    }
}

PeakRange PeakTable::range(unsigned channel, std::uint64_t first, std::uint64_t last) const
{
    const std::size_t end =
        std::min<std::size_t>((last + kBlockFrames - 1) / kBlockFrames, blocks());
    std::size_t index = first / kBlockFrames;
    if (first >= last || index >= end) {
        return {};
    }
    PeakRange range = block(index, channel);
    for (++index; index < end; ++index) {
        const PeakRange next = block(index, channel);
        range.lowest = std::min(range.lowest, next.lowest);
        range.highest = std::max(range.highest, next.highest);
    }
    return range;
}

} // namespace host
