#include "TimeRecords.h"
#include "XePosFmt.h"

#include <gtest/gtest.h>

#include <cmath>

// Every frame of 24 hours goes to its label and back. The labels are compared with those of a
// counter that advances like the hands of a clock and divides nothing.

namespace {

/// The label after the label after the label ...
class LabelCounter {
public:
    /// @param skipped  Frame numbers that minutes which are no multiple of ten start with.
    LabelCounter(unsigned fps, unsigned skipped) : m_fps(fps), m_skipped(skipped) {}

    const XESMPTEVAL& now() const { return m_label; }

    void advance()
    {
        if (++m_label.frames < m_fps) {
            return;
        }
        m_label.frames = 0;
        if (++m_label.seconds < 60) {
            return;
        }
        m_label.seconds = 0;
        if (++m_label.minutes == 60) {
            m_label.minutes = 0;
            ++m_label.hours;
        }
        if (m_label.minutes % 10 != 0) {
            m_label.frames = m_skipped;
        }
    }

private:
    unsigned m_fps;
    unsigned m_skipped;
    XESMPTEVAL m_label;
};

struct DayRow {
    _zqposfmt_format type;
    double rate;
    unsigned fps;
    unsigned skipped;
    long long day; // frames until the labels start again
};

std::string rowName(const testing::TestParamInfo<DayRow>& info)
{
    return "Type" + std::to_string(info.param.type) + "At" +
           std::to_string(std::lround(info.param.rate * 1000)) + "MilliHz";
}

XePosFmt formatOf(const DayRow& row)
{
    XePosFmt format(row.type);
    format.dFrameRate = row.rate;
    return format;
}

constexpr double ntsc(double rate) { return rate / 1.001; }

// clang-format off
constexpr DayRow kWholeFrames[] = {
    // type                      rate        fps  skipped day
    { zqposfmt_smpte_29_97,      ntsc(30),   30,  0,      2592000 },
    { zqposfmt_smpte_29_97,      ntsc(60),   60,  0,      5184000 },
    { zqposfmt_smpte_29_97,      ntsc(120),  120, 0,      10368000 },
    { zqposfmt_smpte_30,         30,         30,  0,      2592000 },
    { zqposfmt_smpte_30,         60,         60,  0,      5184000 },
    { zqposfmt_smpte_30,         120,        120, 0,      10368000 },
    { zqposfmt_smpte_29_97_drop, ntsc(30),   30,  2,      2589408 },
    { zqposfmt_smpte_29_97_drop, ntsc(60),   60,  4,      5178816 },
    { zqposfmt_smpte_29_97_drop, ntsc(120),  120, 8,      10357632 },
    { zqposfmt_smpte_25,         25,         25,  0,      2160000 },
    { zqposfmt_smpte_25,         50,         50,  0,      4320000 },
    { zqposfmt_smpte_25,         100,        100, 0,      8640000 },
    { zqposfmt_smpte_24,         24,         24,  0,      2073600 },
    { zqposfmt_smpte_24,         48,         48,  0,      4147200 },
    { zqposfmt_smpte_24,         96,         96,  0,      8294400 },
    { zqposfmt_smpte_23_976,     ntsc(24),   24,  0,      2073600 },
    { zqposfmt_smpte_23_976,     ntsc(48),   48,  0,      4147200 },
    { zqposfmt_smpte_23_976,     ntsc(96),   96,  0,      8294400 },
    // No video: these roll over with the length of a drop-frame day, short of 24 hours.
    { zqposfmt_time_frames,      75,         75,  0,      6473520 },
    { zqposfmt_frames_75,        75,         75,  0,      6473520 },
};
// clang-format on

class WholeFrameDay : public testing::TestWithParam<DayRow> {};

INSTANTIATE_TEST_SUITE_P(XePosFmt, WholeFrameDay, testing::ValuesIn(kWholeFrames), rowName);

TEST_P(WholeFrameDay, EveryFrameGoesToItsLabelAndBack)
{
    const XePosFmt format = formatOf(GetParam());
    LabelCounter counter(GetParam().fps, GetParam().skipped);
    for (long long frame = 0; frame < GetParam().day; ++frame, counter.advance()) {
        const XESMPTEVAL label = format.framesToSmpte(frame, false, false);
        if (label != counter.now() || format.framesFromSMPTE(label) != frame) {
            FAIL() << "frame " << frame << ": " << testing::PrintToString(label) << " instead of "
                   << testing::PrintToString(counter.now()) << ", back to "
                   << format.framesFromSMPTE(label);
        }
    }
    EXPECT_EQ(format.framesToSmpte(GetParam().day, false, false), XESMPTEVAL{});
    EXPECT_EQ(typeToRollFrame(GetParam().type, GetParam().fps), GetParam().day);
}

// clang-format off
constexpr DayRow kFields[] = {
    // type                          rate        fps  skipped day (in fields above 30)
    { zqposfmt_smpte_half_step,      ntsc(24),   24,  0,      2073600 },
    { zqposfmt_smpte_half_step,      24,         24,  0,      2073600 },
    { zqposfmt_smpte_half_step,      25,         25,  0,      2160000 },
    { zqposfmt_smpte_half_step,      ntsc(30),   30,  0,      2592000 },
    { zqposfmt_smpte_half_step,      30,         30,  0,      2592000 },
    { zqposfmt_smpte_half_step,      ntsc(48),   48,  0,      4147200 },
    { zqposfmt_smpte_half_step,      48,         48,  0,      4147200 },
    { zqposfmt_smpte_half_step,      50,         50,  0,      4320000 },
    { zqposfmt_smpte_half_step,      ntsc(60),   60,  0,      5184000 },
    { zqposfmt_smpte_half_step,      60,         60,  0,      5184000 },
    { zqposfmt_smpte_half_step,      ntsc(96),   96,  0,      8294400 },
    { zqposfmt_smpte_half_step,      96,         96,  0,      8294400 },
    { zqposfmt_smpte_half_step,      100,        100, 0,      8640000 },
    { zqposfmt_smpte_half_step,      ntsc(120),  120, 0,      10368000 },
    { zqposfmt_smpte_half_step,      120,        120, 0,      10368000 },
    { zqposfmt_smpte_half_step_drop, ntsc(30),   30,  2,      2589408 },
    { zqposfmt_smpte_half_step_drop, ntsc(60),   60,  4,      5178816 },
    { zqposfmt_smpte_half_step_drop, ntsc(120),  120, 8,      10357632 },
};
// clang-format on

/// Writes a label as smpteToString() does, without printf, which would take minutes for a day.
class LabelWriter {
public:
    explicit LabelWriter(wchar_t lastSeparator) { m_text[8] = lastSeparator; }

    const _XeString<wchar_t>& write(const XESMPTEVAL& label)
    {
        m_text.resize(kLength);
        _writePair(0, label.hours);
        _writePair(3, label.minutes);
        _writePair(6, label.seconds);
        _writePair(9, label.frames);
        if (label.field) {
            m_text += L'*';
        }
        return m_text;
    }

private:
    static constexpr std::size_t kLength = 11;

    void _writePair(std::size_t at, unsigned number)
    {
        m_text[at] = static_cast<wchar_t>(L'0' + number / 10);
        m_text[at + 1] = static_cast<wchar_t>(L'0' + number % 10);
    }

    _XeString<wchar_t> m_text = L"00:00:00:00";
};

class HalfStepDay : public testing::TestWithParam<DayRow> {};

INSTANTIATE_TEST_SUITE_P(XePosFmt, HalfStepDay, testing::ValuesIn(kFields), rowName);

// Half-step records go back through text. One in 499 texts is the format's own.
TEST_P(HalfStepDay, EveryFieldGoesToItsTextAndBack)
{
    constexpr long long kOwnTextEvery = 499;

    const XePosFmt format = formatOf(GetParam());
    const bool fields = GetParam().fps > 30;
    const bool threeDigits = GetParam().rate >= 100.0;
    LabelCounter counter(GetParam().fps, GetParam().skipped);
    LabelWriter writer(format.isSmpteDrop() ? L';' : L':');
    for (long long frame = 0; frame < GetParam().day; ++frame, counter.advance()) {
        XESMPTEVAL expected = counter.now();
        if (fields) {
            expected.field = expected.frames % 2 != 0;
            expected.frames /= 2;
        }
        const XESMPTEVAL label = format.framesToSmpte(frame, false, false);
        const _XeString<wchar_t>& text = writer.write(label);
        if (label != expected || format.framesFromSMPTE(format.smpteFromString(text)) != frame) {
            FAIL() << "frame " << frame << ": " << testing::PrintToString(label);
        }
        if (frame % kOwnTextEvery == 0) {
            _XeString<wchar_t> own = format.smpteToString(label, 0);
            ASSERT_EQ(format.framesFromSMPTE(format.smpteFromString(own)), frame);
            if (threeDigits) {
                own.erase(9, 1);
            }
            ASSERT_EQ(own, text);
        }
    }
    EXPECT_EQ(format.framesToSmpte(GetParam().day, false, false), XESMPTEVAL{});
}

// A rate with an odd number of fields has no whole frame at the end of a second: the last field
// reads back as the first of the next second, once a second.
TEST(HalfStepOddRate, LastFieldOfEachSecondSharesTheNextLabel)
{
    XePosFmt format(zqposfmt_smpte_half_step);
    format.dFrameRate = 75;
    int shared = 0;
    for (long long frame = 0; frame < 75 * 600; ++frame) {
        const XESMPTEVAL label = format.framesToSmpte(frame, false, false);
        const long long back =
            format.framesFromSMPTE(format.smpteFromString(format.smpteToString(label, 0)));
        const bool last = frame % 75 == 74;
        ASSERT_EQ(back, last ? frame + 1 : frame);
        shared += last ? 1 : 0;
    }
    EXPECT_EQ(shared, 600);
}

// Below 30 frames a second nothing is dropped, but labels ;00 and ;01 are avoided all the same:
// the first three frames of every minute that is no multiple of ten share the label ;02, and the
// first two of them do not come back. The day has 1439 minutes begun, 144 of them tenths.
class DropFrameBelow30 : public testing::TestWithParam<DayRow> {};

constexpr DayRow kBelow30[] = {
    {zqposfmt_smpte_29_97_drop, ntsc(7.5), 7, 0, 604195},
    {zqposfmt_smpte_29_97_drop, ntsc(15), 15, 0, 1294704},
    {zqposfmt_smpte_29_97_drop, 24, 24, 0, 2071526},
    {zqposfmt_smpte_29_97_drop, 25, 25, 0, 2157840},
    {zqposfmt_smpte_half_step_drop, 25, 25, 0, 2157840},
};

INSTANTIATE_TEST_SUITE_P(XePosFmt, DropFrameBelow30, testing::ValuesIn(kBelow30), rowName);

TEST_P(DropFrameBelow30, TwoFramesOfEachMinuteShareALabel)
{
    const XePosFmt format = formatOf(GetParam());
    LabelCounter counter(GetParam().fps, 0);
    int shared = 0;
    for (long long frame = 0; frame < GetParam().day; ++frame, counter.advance()) {
        XESMPTEVAL expected = counter.now();
        long long back = frame;
        if (expected.minutes % 10 != 0 && expected.seconds == 0 && expected.frames < 2) {
            back += 2 - expected.frames;
            expected.frames = 2;
            ++shared;
        }
        const XESMPTEVAL label = format.framesToSmpte(frame, false, false);
        if (label != expected || format.framesFromSMPTE(label) != back) {
            FAIL() << "frame " << frame << ": " << testing::PrintToString(label);
        }
    }
    EXPECT_EQ(shared, 2 * (1439 - 144));
    EXPECT_EQ(format.framesToSmpte(GetParam().day, false, false), XESMPTEVAL{});
}

} // namespace
