#include "TrimEngine.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <numeric>
#include <utility>

namespace host {

namespace {

constexpr std::uint64_t kBlock = PeakTable::kBlockFrames;

/// Smallest absolute sample that reaches the threshold; 0 is reached by everything.
float levelOf(float thresholdDb)
{
    return thresholdDb <= kMinusInfinityDb ? 0.0F
                                           : static_cast<float>(std::pow(10.0, thresholdDb / 20.0));
}

double linear(double x) { return x; }

double equalPower(double x) { return std::sin(x * std::numbers::pi / 2); }

double logarithmic(double x) { return std::log10(1 + 9 * x); }

double exponential(double x) { return (std::pow(10.0, x) - 1) / 9; }

double sCurve(double x) { return (1 - std::cos(x * std::numbers::pi)) / 2; }

// In the order of FadeCurve.
constexpr double (*kCurves[])(double) = {linear, equalPower, logarithmic, exponential, sCurve};
static_assert(std::size(kCurves) == kFadeCurveCount);

/// Gives the region its fades, shortened in proportion when they would overlap.
void setFades(KeptRegion& region, std::uint64_t fadeIn, std::uint64_t fadeOut)
{
    const std::uint64_t frames = region.frames();
    if (fadeIn > frames || fadeOut > frames - fadeIn) {
        const double share = static_cast<double>(fadeIn) /
                             (static_cast<double>(fadeIn) + static_cast<double>(fadeOut));
        fadeIn = static_cast<std::uint64_t>(std::lround(share * static_cast<double>(frames)));
        fadeOut = frames - fadeIn;
    }
    region.fadeIn = fadeIn;
    region.fadeOut = fadeOut;
}

} // namespace

double fadeGain(FadeCurve curve, double x) { return kCurves[static_cast<unsigned>(curve)](x); }

template <typename Sample>
void applyFades(const TrimPlan& plan, const KeptRegion& region, std::uint64_t offset,
                std::uint64_t count, unsigned channels, Sample* samples)
{
    const auto scale = [channels, samples](std::uint64_t frame, double gain) {
        Sample* const first = samples + frame * channels;
        std::transform(first, first + channels, first,
                       [gain](Sample sample) { return static_cast<Sample>(sample * gain); });
    };
    const std::uint64_t fadeInEnd = std::min(region.fadeIn, offset + count);
    for (std::uint64_t frame = offset; frame < fadeInEnd; ++frame) {
        const double x = static_cast<double>(frame) / static_cast<double>(region.fadeIn);
        scale(frame - offset, fadeGain(plan.fadeInCurve, x));
    }
    const std::uint64_t fadeOutStart = std::max(region.frames() - region.fadeOut, offset);
    for (std::uint64_t frame = fadeOutStart; frame < offset + count; ++frame) {
        const auto left = static_cast<double>(region.frames() - 1 - frame);
        scale(frame - offset,
              fadeGain(plan.fadeOutCurve, left / static_cast<double>(region.fadeOut)));
    }
}

template void applyFades(const TrimPlan&, const KeptRegion&, std::uint64_t, std::uint64_t, unsigned,
                         float*);
template void applyFades(const TrimPlan&, const KeptRegion&, std::uint64_t, std::uint64_t, unsigned,
                         double*);

std::uint64_t TrimPlan::frames() const
{
    return std::accumulate(
        regions.begin(), regions.end(), std::uint64_t{0},
        [](std::uint64_t sum, const KeptRegion& region) { return sum + region.frames(); });
}

TrimEngine::TrimEngine(std::shared_ptr<const Recording> recording)
    : m_recording(std::move(recording)), m_peaks(*m_recording)
{
}

// ---- what is kept

TrimPlan TrimEngine::plan(const TrimSettings& settings) const
{
    const float attack = levelOf(settings.attackThresholdDb);
    const float release = levelOf(settings.releaseThresholdDb);
    TrimPlan plan{{}, settings.fadeInCurve, settings.fadeOutCurve};
    switch (settings.function) {
    case FunctionMode::TrimStartAndEnd:
        plan.regions = trimmed(attack, release);
        break;
    case FunctionMode::RemoveSilence:
        plan.regions = withoutSilence(attack, release, framesOf(settings.minSilenceMs));
        break;
    case FunctionMode::Crop:
        plan.regions = cropped(framesOf(settings.cropStartMs), framesOf(settings.cropLengthMs));
        break;
    case FunctionMode::FadesOnly:
        plan.regions = cropped(0, m_recording->frames());
        break;
    }
    for (KeptRegion& region : plan.regions) {
        setFades(region, framesOf(settings.fadeInLengthMs), framesOf(settings.fadeOutLengthMs));
    }
    return plan;
}

std::uint64_t TrimEngine::framesOf(double milliseconds) const
{
    constexpr double kMost = 1e15; // far above any recording, far below the type's limit
    const double frames = milliseconds * m_recording->sampleRate / 1000;
    return static_cast<std::uint64_t>(std::llround(std::clamp(frames, 0.0, kMost)));
}

std::vector<KeptRegion> TrimEngine::trimmed(float attack, float release) const
{
    const std::uint64_t frames = m_recording->frames();
    const std::uint64_t first = firstReaching(attack, 0, frames);
    const std::uint64_t end = afterLastReaching(release, first, frames);
    return cropped(first, end - first);
}

std::vector<KeptRegion> TrimEngine::cropped(std::uint64_t start, std::uint64_t length) const
{
    const std::uint64_t frames = m_recording->frames();
    const std::uint64_t first = std::min(start, frames);
    const std::uint64_t count = std::min(length, frames - first);
    if (count == 0) {
        return {};
    }
    return {{.first = first, .end = first + count}};
}

std::vector<KeptRegion> TrimEngine::withoutSilence(float attack, float release,
                                                   std::uint64_t minSilence) const
{
    minSilence = std::max<std::uint64_t>(minSilence, 1);
    const std::uint64_t frames = m_recording->frames();
    const float quiet = std::min(attack, release);
    std::vector<KeptRegion> regions;
    std::uint64_t sound = firstReaching(attack, 0, frames);
    std::uint64_t first = sound < minSilence ? 0 : sound;
    while (first < frames) {
        const std::uint64_t silence = findQuietRun(quiet, std::max(first, sound), minSilence);
        if (silence > first) {
            regions.push_back({.first = first, .end = silence});
        }
        first = sound = firstReaching(attack, silence, frames);
    }
    return regions;
}

// ---- searching, block by block where the peaks allow it

bool TrimEngine::reaches(std::uint64_t frame, float level) const
{
    const unsigned channels = m_recording->channels;
    const float* const samples = &m_recording->samples[frame * channels];
    return level <= 0 || std::any_of(samples, samples + channels,
                                     [level](float sample) { return std::fabs(sample) >= level; });
}

/// First frame of [from, end) that reaches the level; `end` when none does.
std::uint64_t TrimEngine::firstReaching(float level, std::uint64_t from, std::uint64_t end) const
{
    for (std::uint64_t frame = from; frame < end;) {
        const std::uint64_t blockEnd = std::min((frame / kBlock + 1) * kBlock, end);
        if (m_peaks.loudest(frame / kBlock) >= level) {
            for (; frame < blockEnd; ++frame) {
                if (reaches(frame, level)) {
                    return frame;
                }
            }
        }
        frame = blockEnd;
    }
    return end;
}

/// The frame after the last of [from, end) that reaches the level; `from` when none does.
std::uint64_t TrimEngine::afterLastReaching(float level, std::uint64_t from,
                                            std::uint64_t end) const
{
    for (std::uint64_t frame = end; frame > from;) {
        const std::uint64_t blockStart = std::max((frame - 1) / kBlock * kBlock, from);
        if (m_peaks.loudest((frame - 1) / kBlock) >= level) {
            for (; frame > blockStart; --frame) {
                if (reaches(frame - 1, level)) {
                    return frame;
                }
            }
        }
        frame = blockStart;
    }
    return from;
}

std::uint64_t TrimEngine::firstBelow(float level, std::uint64_t from) const
{
    const std::uint64_t frames = m_recording->frames();
    while (from < frames && reaches(from, level)) {
        ++from;
    }
    return from;
}

/// Start of the first stretch, from `from` on, in which at least `length` frames stay below the
/// level; the end of the recording when there is none. `length` is 1 or more.
std::uint64_t TrimEngine::findQuietRun(float level, std::uint64_t from, std::uint64_t length) const
{
    const std::uint64_t frames = m_recording->frames();
    // A long run covers at least one whole block, so blocks with a loud frame can be skipped.
    const bool coversBlock = length >= 2 * kBlock;
    for (std::uint64_t frame = from; frame < frames;) {
        const std::uint64_t block = frame / kBlock;
        if (coversBlock && m_peaks.loudest(block) >= level) {
            frame = (block + 1) * kBlock;
            continue;
        }
        const std::uint64_t start =
            coversBlock ? afterLastReaching(level, from, frame) : firstBelow(level, frame);
        const std::uint64_t end = firstReaching(level, start, frames);
        if (end - start >= length) {
            return start;
        }
        frame = from = end;
    }
    return frames;
}

// ---- rendering

std::uint64_t TrimEngine::render(const TrimPlan& plan, std::uint64_t first, std::uint64_t count,
                                 float* out) const
{
    std::uint64_t written = 0;
    for (const KeptRegion& region : plan.regions) {
        if (first >= region.frames()) {
            first -= region.frames();
            continue;
        }
        const std::uint64_t part = std::min(count - written, region.frames() - first);
        renderRegion(region, plan, first, part, out + written * m_recording->channels);
        written += part;
        first = 0;
        if (written == count) {
            break;
        }
    }
    return written;
}

void TrimEngine::renderRegion(const KeptRegion& region, const TrimPlan& plan, std::uint64_t offset,
                              std::uint64_t count, float* out) const
{
    const unsigned channels = m_recording->channels;
    const auto source = m_recording->samples.begin() +
                        static_cast<std::ptrdiff_t>((region.first + offset) * channels);
    std::copy_n(source, count * channels, out);
    applyFades(plan, region, offset, count, channels, out);
}

} // namespace host
