#pragma once

#include "PeakTable.h"
#include "Recording.h"
#include "TrimSettings.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace host {

/// A stretch of the recording that stays, with its fades.
struct KeptRegion {
    std::uint64_t first = 0;   // frame of the recording
    std::uint64_t end = 0;     // frame after the last one
    std::uint64_t fadeIn = 0;  // frames from `first`
    std::uint64_t fadeOut = 0; // frames up to `end`

    std::uint64_t frames() const { return end - first; }
    friend bool operator==(const KeptRegion&, const KeptRegion&) = default;
};

/// What the effect makes of a recording: the kept regions in order, joined without gaps.
struct TrimPlan {
    std::vector<KeptRegion> regions; // never empty ones; none when nothing is kept
    FadeCurve fadeInCurve = FadeCurve::Linear;
    FadeCurve fadeOutCurve = FadeCurve::Linear;

    std::uint64_t frames() const; // of the result
    friend bool operator==(const TrimPlan&, const TrimPlan&) = default;
};

/// Gain of a fade-in, 0 to 1.
///
/// Linear x; equal power sin(x pi/2); logarithmic log10(1 + 9x), early and flattening; exponential
/// (10^x - 1) / 9, its inverse, late and steep; S-curve (1 - cos(x pi)) / 2.
///
/// @param x  Place in the fade, 0 to 1. A fade-out is the mirror image.
double fadeGain(FadeCurve curve, double x);

/// Applies the fades of a kept region to part of it, in place. Sample is float or double.
/// @param offset   First frame, counted from the start of the region.
/// @param count    Frames, all of them within the region.
/// @param samples  Interleaved samples of those frames.
template <typename Sample>
void applyFades(const TrimPlan& plan, const KeptRegion& region, std::uint64_t offset,
                std::uint64_t count, unsigned channels, Sample* samples);

/// Decides what is kept of a recording, and renders it.
///
/// A frame is as loud as the loudest of its channels; a sample that is no number is silent. A
/// frame reaches a threshold when it is exactly as loud or louder. Every frame reaches a threshold
/// of minus infinity, so that the edge it governs is not cut.
///
/// - Trim Start and End keeps everything from the first frame that reaches the attack threshold
///   to the last that reaches the release threshold; nothing when either does not exist.
/// - Remove Silence takes out every silence. One begins after a frame of sound, where frames reach
///   neither threshold for at least the minimum silence, and lasts until a frame reaches the attack
///   threshold, or to the end. The material before the first such frame is a silence too when it
///   is at least that long. A minimum of less than one frame means one frame.
/// - Crop keeps what the start and the length cover of the recording, rounded to whole frames.
/// - Fades Only keeps everything.
///
/// Every kept region is faded at both its edges, also where nothing was cut: the result begins and
/// ends as the fades say. The first frame of a fade-in and the last of a fade-out are silent; the
/// neighbouring frame outside of the fade has full level. Fades that together are longer than their
/// region are shortened in proportion, so they never overlap.
///
/// Lengths below zero count as zero. All functions may be called on any thread at once.
class TrimEngine {
public:
    /// @param recording  Not null; shared, not copied. Its peaks are taken here, once.
    explicit TrimEngine(std::shared_ptr<const Recording> recording);

    const Recording& recording() const { return *m_recording; }
    const PeakTable& peaks() const { return m_peaks; }

    TrimPlan plan(const TrimSettings& settings) const;

    /// Renders part of a plan's result: frames [first, first + count) of it, interleaved, at the
    /// recording's rate and channels. Samples outside of fades are those of the recording.
    /// @param out  Room for `count` frames.
    /// @return     Frames written; fewer than `count` at the end of the result.
    std::uint64_t render(const TrimPlan& plan, std::uint64_t first, std::uint64_t count,
                         float* out) const;

private:
    std::vector<KeptRegion> trimmed(float attack, float release) const;
    std::vector<KeptRegion> withoutSilence(float attack, float release,
                                           std::uint64_t minSilence) const;
    std::vector<KeptRegion> cropped(std::uint64_t start, std::uint64_t length) const;
    std::uint64_t framesOf(double milliseconds) const;
    std::uint64_t firstReaching(float level, std::uint64_t from, std::uint64_t end) const;
    std::uint64_t afterLastReaching(float level, std::uint64_t from, std::uint64_t end) const;
    std::uint64_t findQuietRun(float level, std::uint64_t from, std::uint64_t length) const;
    std::uint64_t firstBelow(float level, std::uint64_t from) const;
    bool reaches(std::uint64_t frame, float level) const;
    void renderRegion(const KeptRegion& region, const TrimPlan& plan, std::uint64_t offset,
                      std::uint64_t count, float* out) const;

    std::shared_ptr<const Recording> m_recording;
    PeakTable m_peaks;
};

} // namespace host
