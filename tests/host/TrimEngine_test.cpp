#include "host/effect/TrimEngine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned kRate = 1000; // so that a millisecond is a frame
const float kNaN = std::numeric_limits<float>::quiet_NaN();

std::shared_ptr<const Recording> makeRecording(std::vector<float> samples, unsigned channels = 1,
                                               unsigned rate = kRate)
{
    auto recording = std::make_shared<Recording>();
    recording->sampleRate = rate;
    recording->channels = channels;
    recording->samples = std::move(samples);
    return recording;
}

/// `frames` of silence, with runs of samples of one level laid over it.
std::vector<float> levels(std::size_t frames,
                          std::initializer_list<std::tuple<std::size_t, std::size_t, float>> runs)
{
    std::vector<float> samples(frames);
    for (const auto& [first, end, level] : runs) {
        std::fill(samples.begin() + static_cast<std::ptrdiff_t>(first),
                  samples.begin() + static_cast<std::ptrdiff_t>(end), level);
    }
    return samples;
}

TrimSettings settings(FunctionMode function)
{
    TrimSettings settings;
    settings.function = function;
    settings.attackThresholdDb = -20;
    settings.releaseThresholdDb = -40;
    settings.fadeInLengthMs = 0;
    settings.fadeOutLengthMs = 0;
    return settings;
}

TrimSettings removeSilence(float attackDb, float releaseDb, float minSilenceMs)
{
    TrimSettings result = settings(FunctionMode::RemoveSilence);
    result.attackThresholdDb = attackDb;
    result.releaseThresholdDb = releaseDb;
    result.minSilenceMs = minSilenceMs;
    return result;
}

TrimSettings crop(float startMs, float lengthMs)
{
    TrimSettings result = settings(FunctionMode::Crop);
    result.cropStartMs = startMs;
    result.cropLengthMs = lengthMs;
    return result;
}

KeptRegion kept(std::uint64_t first, std::uint64_t end) { return {.first = first, .end = end}; }

std::vector<KeptRegion> regionsOf(const std::vector<float>& samples, const TrimSettings& settings)
{
    return TrimEngine(makeRecording(samples)).plan(settings).regions;
}

std::vector<float> rendered(const TrimEngine& engine, const TrimPlan& plan)
{
    std::vector<float> out(plan.frames() * engine.recording().channels);
    EXPECT_EQ(engine.render(plan, 0, plan.frames(), out.data()), plan.frames());
    return out;
}

// ---- a slow version of everything, written to be obviously right

class SlowTrim {
public:
    SlowTrim(const Recording& recording, const TrimSettings& settings)
        : m_recording(recording), m_settings(settings)
    {
    }

    std::vector<float> result() const
    {
        std::vector<float> out;
        std::uint64_t frame = 0;
        const std::vector<bool> keep = keptFrames();
        while (frame < keep.size()) {
            if (!keep[frame]) {
                ++frame;
                continue;
            }
            std::uint64_t end = frame;
            while (end < keep.size() && keep[end]) {
                ++end;
            }
            append(frame, end, out);
            frame = end;
        }
        return out;
    }

private:
    double frames(double ms) const
    {
        return std::max(0.0, std::round(ms * m_recording.sampleRate / 1000));
    }

    bool reaches(std::uint64_t frame, float thresholdDb) const
    {
        if (thresholdDb <= -60) {
            return true;
        }
        const auto level = static_cast<float>(std::pow(10.0, thresholdDb / 20.0));
        for (unsigned channel = 0; channel < m_recording.channels; ++channel) {
            if (std::fabs(m_recording.samples[frame * m_recording.channels + channel]) >= level) {
                return true;
            }
        }
        return false;
    }

    bool attacks(std::uint64_t frame) const { return reaches(frame, m_settings.attackThresholdDb); }
    bool sustains(std::uint64_t frame) const
    {
        return reaches(frame, m_settings.releaseThresholdDb);
    }

    std::vector<bool> keptFrames() const
    {
        const std::uint64_t count = m_recording.frames();
        std::vector<bool> keep(count, true);
        if (m_settings.function == FunctionMode::RemoveSilence) {
            return withoutSilence();
        }
        for (std::uint64_t frame = 0; frame < count; ++frame) {
            if (m_settings.function == FunctionMode::Crop) {
                const auto at = static_cast<double>(frame);
                keep[frame] = at >= frames(m_settings.cropStartMs) &&
                              at < frames(m_settings.cropStartMs) + frames(m_settings.cropLengthMs);
            } else if (m_settings.function == FunctionMode::TrimStartAndEnd) {
                bool attackBefore = false;
                for (std::uint64_t i = 0; i <= frame; ++i) {
                    attackBefore = attackBefore || attacks(i);
                }
                bool soundAfter = false;
                for (std::uint64_t i = frame; i < count; ++i) {
                    soundAfter = soundAfter || sustains(i);
                }
                keep[frame] = attackBefore && soundAfter;
            }
        }
        return keep;
    }

    std::vector<bool> withoutSilence() const
    {
        const std::uint64_t count = m_recording.frames();
        const double minimum = std::max(1.0, frames(m_settings.minSilenceMs));
        std::vector<bool> keep(count, true);
        bool inSilence = true; // until the first attack
        std::uint64_t silence = 0;
        for (std::uint64_t frame = 0; frame < count; ++frame) {
            if (inSilence && attacks(frame)) {
                inSilence = false;
                if (silence == 0 && static_cast<double>(frame) < minimum) {
                    std::fill(keep.begin(), keep.begin() + static_cast<std::ptrdiff_t>(frame),
                              true);
                }
            }
            if (!inSilence && quietFor(frame) >= minimum) {
                inSilence = true;
                silence = frame;
            }
            keep[frame] = !inSilence;
        }
        if (inSilence && silence == 0 && static_cast<double>(count) < minimum) {
            keep.assign(count, true);
        }
        return keep;
    }

    double quietFor(std::uint64_t frame) const
    {
        std::uint64_t end = frame;
        while (end < m_recording.frames() && !attacks(end) && !sustains(end)) {
            ++end;
        }
        return static_cast<double>(end - frame);
    }

    void append(std::uint64_t first, std::uint64_t end, std::vector<float>& out) const
    {
        const auto length = static_cast<double>(end - first);
        double fadeIn = frames(m_settings.fadeInLengthMs);
        double fadeOut = frames(m_settings.fadeOutLengthMs);
        if (fadeIn + fadeOut > length) {
            fadeIn = std::round(fadeIn / (fadeIn + fadeOut) * length);
            fadeOut = length - fadeIn;
        }
        for (std::uint64_t frame = first; frame < end; ++frame) {
            const auto fromStart = static_cast<double>(frame - first);
            const auto fromEnd = static_cast<double>(end - 1 - frame);
            for (unsigned channel = 0; channel < m_recording.channels; ++channel) {
                float sample = m_recording.samples[frame * m_recording.channels + channel];
                if (fromStart < fadeIn) {
                    sample *= gain(m_settings.fadeInCurve, fromStart / fadeIn);
                }
                if (fromEnd < fadeOut) {
                    sample *= gain(m_settings.fadeOutCurve, fromEnd / fadeOut);
                }
                out.push_back(sample);
            }
        }
    }

    static double gain(FadeCurve curve, double x)
    {
        const double kPi = std::acos(-1.0);
        switch (curve) {
        case FadeCurve::Linear:
            return x;
        case FadeCurve::EqualPower:
            return std::sin(x * kPi / 2);
        case FadeCurve::Logarithmic:
            return std::log10(1 + 9 * x);
        case FadeCurve::Exponential:
            return (std::pow(10.0, x) - 1) / 9;
        case FadeCurve::SCurve:
            return (1 - std::cos(x * kPi)) / 2;
        }
        return 0;
    }

    const Recording& m_recording;
    const TrimSettings& m_settings;
};

} // namespace

// ---- trim start and end

TEST(TrimStartAndEnd, KeepsFromFirstAttackToLastRelease)
{
    // -20 dB is 0.1, -40 dB is 0.01.
    const auto samples = levels(1000, {{200, 300, 0.05F}, {300, 500, 0.5F}, {500, 700, -0.02F}});
    EXPECT_THAT(regionsOf(samples, settings(FunctionMode::TrimStartAndEnd)),
                ElementsAre(kept(300, 700)));
}

TEST(TrimStartAndEnd, SampleExactlyAtTheThresholdReachesIt)
{
    auto exact = settings(FunctionMode::TrimStartAndEnd);
    exact.attackThresholdDb = 0;
    exact.releaseThresholdDb = 0;
    EXPECT_THAT(regionsOf(levels(100, {{40, 42, 1.0F}}), exact), ElementsAre(kept(40, 42)));
    EXPECT_THAT(regionsOf(levels(100, {{40, 42, 0.9999999F}}), exact), IsEmpty());
}

TEST(TrimStartAndEnd, NegativeSamplesAndEveryChannelCount)
{
    std::vector<float> stereo(200);
    stereo[2 * 30 + 1] = -0.5F;
    stereo[2 * 60] = 0.5F;
    const TrimEngine engine(makeRecording(stereo, 2));
    EXPECT_THAT(engine.plan(settings(FunctionMode::TrimStartAndEnd)).regions,
                ElementsAre(kept(30, 61)));
}

TEST(TrimStartAndEnd, MinusInfinityLeavesItsEdgeUncut)
{
    const auto samples = levels(1000, {{300, 500, 0.5F}});
    auto wanted = settings(FunctionMode::TrimStartAndEnd);
    wanted.attackThresholdDb = -60;
    EXPECT_THAT(regionsOf(samples, wanted), ElementsAre(kept(0, 500)));
    wanted.releaseThresholdDb = -60;
    EXPECT_THAT(regionsOf(samples, wanted), ElementsAre(kept(0, 1000)));
    wanted.attackThresholdDb = -59.9F;
    EXPECT_THAT(regionsOf(samples, wanted), ElementsAre(kept(300, 1000)));
}

TEST(TrimStartAndEnd, NothingIsKeptWhenAThresholdIsNeverReached)
{
    const auto samples = levels(1000, {{300, 500, 0.5F}});
    auto wanted = settings(FunctionMode::TrimStartAndEnd);
    wanted.attackThresholdDb = 0;
    EXPECT_THAT(regionsOf(samples, wanted), IsEmpty());
    wanted.attackThresholdDb = -20;
    wanted.releaseThresholdDb = 0;
    EXPECT_THAT(regionsOf(samples, wanted), IsEmpty());
}

TEST(TrimStartAndEnd, NumbersThatAreNoneAreSilent)
{
    const auto samples = levels(200, {{0, 10, kNaN}, {50, 60, 0.5F}, {190, 200, kNaN}});
    EXPECT_THAT(regionsOf(samples, settings(FunctionMode::TrimStartAndEnd)),
                ElementsAre(kept(50, 60)));
}

// ---- remove silence

TEST(RemoveSilence, SilenceOfTheMinimumLengthGoesAShorterOneStays)
{
    const auto samples = levels(2000, {{0, 500, 0.5F}, {799, 1000, 0.5F}, {1300, 2000, 0.5F}});
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 300)),
                ElementsAre(kept(0, 1000), kept(1300, 2000)));
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 299)),
                ElementsAre(kept(0, 500), kept(799, 1000), kept(1300, 2000)));
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 301)), ElementsAre(kept(0, 2000)));
}

TEST(RemoveSilence, LeadingAndTrailingSilenceFollowTheSameLimit)
{
    const auto samples = levels(1000, {{200, 700, 0.5F}});
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 200)), ElementsAre(kept(200, 700)));
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 201)), ElementsAre(kept(0, 700)));
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 301)), ElementsAre(kept(0, 1000)));
}

// A decaying tail between the thresholds belongs to the sound before it; noise of that level
// before an attack does not bring the sound back.
TEST(RemoveSilence, TailIsKeptDownToTheReleaseThreshold)
{
    const auto samples =
        levels(2000, {{0, 500, 0.5F}, {500, 800, 0.05F}, {1400, 1600, 0.05F}, {1600, 2000, 0.5F}});
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -40, 300)),
                ElementsAre(kept(0, 800), kept(1600, 2000)));
}

TEST(RemoveSilence, ZeroCrossingsAreNoSilence)
{
    std::vector<float> samples(1000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = i % 20 < 10 ? 0.5F : 0.0F;
    }
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 11)), ElementsAre(kept(0, 1000)));
}

TEST(RemoveSilence, MinimumBelowOneFrameIsOneFrame)
{
    const auto samples = levels(10, {{0, 4, 0.5F}, {5, 10, 0.5F}});
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, 0)),
                ElementsAre(kept(0, 4), kept(5, 10)));
    EXPECT_THAT(regionsOf(samples, removeSilence(-20, -20, -5)),
                ElementsAre(kept(0, 4), kept(5, 10)));
}

TEST(RemoveSilence, NothingIsLeftOfSilenceUnlessItIsShort)
{
    EXPECT_THAT(regionsOf(levels(500, {}), removeSilence(-20, -40, 500)), IsEmpty());
    EXPECT_THAT(regionsOf(levels(500, {}), removeSilence(-20, -40, 501)),
                ElementsAre(kept(0, 500)));
}

TEST(RemoveSilence, MinusInfinityFindsNoSilence)
{
    const auto samples = levels(1000, {{200, 300, 0.5F}, {600, 700, 0.5F}});
    EXPECT_THAT(regionsOf(samples, removeSilence(-60, -60, 10)), ElementsAre(kept(0, 1000)));
}

// ---- crop and fades only

TEST(Crop, KeepsStartAndLengthWithinTheRecording)
{
    struct Row {
        float startMs, lengthMs;
        std::optional<KeptRegion> expected;
    };
    const Row rows[] = {
        {100, 200, kept(100, 300)}, {0, 1e9F, kept(0, 1000)}, {990, 100, kept(990, 1000)},
        {-50, 10, kept(0, 10)},     {1000, 10, std::nullopt}, {5000, 10, std::nullopt},
        {10, 0, std::nullopt},      {10, -5, std::nullopt},   {0.4F, 10.5F, kept(0, 11)},
        {0.5F, 10.4F, kept(1, 11)},
    };
    const auto samples = levels(1000, {});
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.startMs << " + " << row.lengthMs);
        const auto regions = regionsOf(samples, crop(row.startMs, row.lengthMs));
        ASSERT_EQ(regions.size(), row.expected ? 1U : 0U);
        if (row.expected) {
            EXPECT_EQ(regions.front(), *row.expected);
        }
    }
}

TEST(Crop, CountsFramesAtTheRateOfTheRecording)
{
    const TrimEngine engine(makeRecording(std::vector<float>(44100), 1, 44100));
    EXPECT_THAT(engine.plan(crop(10, 100)).regions, ElementsAre(kept(441, 4851)));
}

TEST(FadesOnly, KeepsEverything)
{
    EXPECT_THAT(regionsOf(levels(1000, {}), settings(FunctionMode::FadesOnly)),
                ElementsAre(kept(0, 1000)));
}

TEST(EmptyRecording, KeepsNothingInAnyMode)
{
    for (unsigned mode = 0; mode < kFunctionModeCount; ++mode) {
        SCOPED_TRACE(mode);
        EXPECT_THAT(regionsOf({}, settings(static_cast<FunctionMode>(mode))), IsEmpty());
    }
}

// ---- fades

TEST(Fade, CurvesHaveTheirShape)
{
    struct Row {
        FadeCurve curve;
        double quarter, half, threeQuarters;
    };
    const Row rows[] = {
        {FadeCurve::Linear, 0.25, 0.5, 0.75},
        {FadeCurve::EqualPower, 0.382683, 0.707107, 0.923880},
        {FadeCurve::Logarithmic, 0.511883, 0.740363, 0.889302},
        {FadeCurve::Exponential, 0.086475, 0.240253, 0.513713},
        {FadeCurve::SCurve, 0.146447, 0.5, 0.853553},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(static_cast<unsigned>(row.curve));
        EXPECT_NEAR(fadeGain(row.curve, 0), 0, 1e-12);
        EXPECT_NEAR(fadeGain(row.curve, 0.25), row.quarter, 1e-6);
        EXPECT_NEAR(fadeGain(row.curve, 0.5), row.half, 1e-6);
        EXPECT_NEAR(fadeGain(row.curve, 0.75), row.threeQuarters, 1e-6);
        EXPECT_NEAR(fadeGain(row.curve, 1), 1, 1e-12);
    }
}

TEST(Fade, BeginsAndEndsInSilenceBesideFullLevel)
{
    const TrimEngine engine(makeRecording(std::vector<float>(10, 1.0F)));
    auto wanted = settings(FunctionMode::FadesOnly);
    wanted.fadeInLengthMs = 4;
    wanted.fadeOutLengthMs = 2;
    EXPECT_THAT(rendered(engine, engine.plan(wanted)),
                ElementsAre(0.0F, 0.25F, 0.5F, 0.75F, 1.0F, 1.0F, 1.0F, 1.0F, 0.5F, 0.0F));
}

TEST(Fade, FadesThatWouldOverlapAreShortenedInProportion)
{
    const TrimEngine engine(makeRecording(std::vector<float>(100, 1.0F)));
    auto wanted = settings(FunctionMode::FadesOnly);
    wanted.fadeInLengthMs = 300;
    wanted.fadeOutLengthMs = 100;
    const KeptRegion region = engine.plan(wanted).regions.at(0);
    EXPECT_EQ(region.fadeIn, 75U);
    EXPECT_EQ(region.fadeOut, 25U);
    wanted.fadeOutLengthMs = 0;
    EXPECT_EQ(engine.plan(wanted).regions.at(0).fadeIn, 100U);
}

TEST(Fade, EveryRegionIsFadedAtBothEdges)
{
    const TrimEngine engine(makeRecording(levels(1000, {{0, 200, 0.5F}, {600, 1000, 0.5F}})));
    auto wanted = removeSilence(-20, -20, 300);
    wanted.fadeInLengthMs = 10;
    wanted.fadeOutLengthMs = 20;
    EXPECT_THAT(engine.plan(wanted).regions,
                ElementsAre(KeptRegion{0, 200, 10, 20}, KeptRegion{600, 1000, 10, 20}));
}

// ---- rendering

TEST(Render, SamplesOutsideOfFadesAreThoseOfTheRecording)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> level(-2, 2);
    std::vector<float> samples(6 * 500);
    std::generate(samples.begin(), samples.end(), [&] { return level(random); });
    const TrimEngine engine(makeRecording(samples, 6));
    auto wanted = crop(100, 300);
    wanted.fadeInLengthMs = 20;
    wanted.fadeOutLengthMs = 30;
    const std::vector<float> out = rendered(engine, engine.plan(wanted));
    ASSERT_EQ(out.size(), 6U * 300);
    EXPECT_TRUE(std::equal(out.begin() + 6 * 20, out.end() - 6 * 30, samples.begin() + 6 * 120));
}

TEST(Render, PiecesOfAnySizeMakeTheWhole)
{
    std::vector<float> samples =
        levels(2000, {{0, 500, 0.5F}, {900, 1300, 0.6F}, {1700, 2000, 0.7F}});
    const TrimEngine engine(makeRecording(samples));
    auto wanted = removeSilence(-20, -20, 100);
    wanted.fadeInLengthMs = 40;
    wanted.fadeOutLengthMs = 60;
    const TrimPlan plan = engine.plan(wanted);
    const std::vector<float> whole = rendered(engine, plan);
    ASSERT_EQ(whole.size(), 1200U);
    for (const std::uint64_t size : {1U, 7U, 499U, 500U, 501U, 1199U, 5000U}) {
        SCOPED_TRACE(size);
        std::vector<float> joined;
        std::vector<float> piece(size);
        while (const auto got = engine.render(plan, joined.size(), size, piece.data())) {
            joined.insert(joined.end(), piece.begin(),
                          piece.begin() + static_cast<std::ptrdiff_t>(got));
        }
        EXPECT_EQ(joined, whole);
    }
}

TEST(Render, EndsWithThePlan)
{
    const TrimEngine engine(makeRecording(std::vector<float>(10, 1.0F)));
    const TrimPlan plan = engine.plan(settings(FunctionMode::FadesOnly));
    std::vector<float> out(20);
    EXPECT_EQ(engine.render(plan, 10, 5, out.data()), 0U);
    EXPECT_EQ(engine.render(plan, 8, 5, out.data()), 2U);
    EXPECT_EQ(engine.render({}, 0, 5, out.data()), 0U);
}

// Bursts, tails and gaps of random length in every mode, at every rate and channel count, against
// the version above.
TEST(TrimEngine, AgreesWithTheSlowVersion)
{
    constexpr unsigned kRates[] = {1000, 8000, 11025, 44100, 48000, 96000, 192000, 7};
    std::mt19937 random(20240607);
    const auto pick = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const auto channels = static_cast<unsigned>(pick(1, 9));
        const unsigned rate = kRates[static_cast<std::size_t>(round) % std::size(kRates)];
        const auto ms = [&](double low, double high) { return pick(low, high) * 1000 / rate; };
        std::vector<float> samples;
        while (samples.size() < 700 * channels) {
            const double level = std::pow(10.0, pick(-70, 0) / 20);
            const auto run = static_cast<std::size_t>(pick(1, 220));
            for (std::size_t i = 0; i < run * channels; ++i) {
                samples.push_back(static_cast<float>(round % 3 == 0 ? level : pick(-level, level)));
            }
        }
        const auto recording = makeRecording(std::move(samples), channels, rate);
        const TrimSettings wanted{
            .function = static_cast<FunctionMode>(round % 4),
            .attackThresholdDb = static_cast<float>(pick(-65, 0)),
            .releaseThresholdDb = static_cast<float>(pick(-65, 0)),
            .fadeInCurve = static_cast<FadeCurve>(round % 5),
            .fadeInLengthMs = ms(0, 200),
            .fadeOutCurve = static_cast<FadeCurve>(round / 5 % 5),
            .fadeOutLengthMs = ms(0, 200),
            .minSilenceMs = ms(0, 300),
            .cropStartMs = ms(-50, 700),
            .cropLengthMs = ms(-50, 700),
        };
        const TrimEngine engine(recording);
        const std::vector<float> fast = rendered(engine, engine.plan(wanted));
        const std::vector<float> slow = SlowTrim(*recording, wanted).result();
        ASSERT_EQ(fast.size(), slow.size());
        for (std::size_t i = 0; i < fast.size(); ++i) {
            ASSERT_EQ(fast[i], slow[i]) << "sample " << i;
        }
    }
}
