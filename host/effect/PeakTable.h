#pragma once

#include "Recording.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

/// Lowest and highest sample of a stretch.
struct PeakRange {
    float lowest = 0;
    float highest = 0;

    friend bool operator==(const PeakRange&, const PeakRange&) = default;
};

/// Extremes of a recording, block by block, so that drawing and analysis need not visit every
/// sample. Made once for a recording; about a twenty-fifth of its size in stereo. Not changed
/// afterwards. [any]
class PeakTable {
public:
    static constexpr std::uint64_t kBlockFrames = 64;

    explicit PeakTable(const Recording& recording);

    std::size_t blocks() const { return m_loudest.size(); }

    /// Extremes of one channel in a block. The last block may be shorter than the others.
    PeakRange block(std::size_t index, unsigned channel) const
    {
        return m_ranges[index * m_channels + channel];
    }

    /// Largest absolute sample of a block in any channel. A sample that is no number counts as 0.
    float loudest(std::size_t index) const { return m_loudest[index]; }

    /// Extremes of one channel over the blocks that the frames [first, last) touch; zeros when
    /// there are none.
    PeakRange range(unsigned channel, std::uint64_t first, std::uint64_t last) const;

private:
    unsigned m_channels;
    std::vector<PeakRange> m_ranges; // block by block, channels within
    std::vector<float> m_loudest;    // block by block
};

} // namespace host
