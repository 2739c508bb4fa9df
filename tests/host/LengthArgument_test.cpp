#include "host/app/LengthArgument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace host;

namespace {

constexpr LengthKind kDuration = LengthKind::Duration;
constexpr LengthKind kPosition = LengthKind::Position;

std::optional<std::uint64_t> read(const std::string& text,
                                  std::optional<_zqposfmt_format> format = {},
                                  LengthKind kind = kDuration, unsigned rate = 48000)
{
    return readLength(text, format, kind, rate);
}

} // namespace

TEST(LengthArgument, UnitTellsHowTheNumberIsMeantInEveryFormat)
{
    struct Row {
        const char* text;
        std::uint64_t frames;
    };
    const Row rows[] = {
        {"1.5 s", 72000},   {"1.5s", 72000},    {"2 sec", 96000},         {"250 ms", 12000},
        {"0.5ms", 24},      {"2 min", 5760000}, {"48000 samples", 48000}, {"7 smp", 7},
        {" 1   s ", 48000}, {"0 s", 0},         {"0.00001 s", 0},         {"0.000011 s", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(read(row.text), row.frames);
        for (const LengthFormat& format : lengthFormats()) {
            EXPECT_EQ(read(row.text, format.type), row.frames) << format.name;
        }
    }
}

TEST(LengthArgument, FormTellsTheMeaningWhereNoFormatIsGiven)
{
    EXPECT_EQ(read("48000"), 48000U);
    EXPECT_EQ(read("1.5"), 72000U);
    EXPECT_EQ(read("1:02.5"), 3000000U);
    EXPECT_EQ(read("1:00:00"), 172800000U);
    EXPECT_EQ(read("00:00:01:12"), std::nullopt); // frames of which rate?
    EXPECT_EQ(read("12+08"), std::nullopt);
}

TEST(LengthArgument, EveryFormatIsRead)
{
    struct Row {
        const char* format;
        const char* text;
        LengthKind kind;
        std::uint64_t frames; // at 48000 Hz
    };
    const Row rows[] = {
        {"samples", "48000", kDuration, 48000},
        {"samples", "999999999999999", kDuration, 999999999999999},
        {"seconds", "48000", kDuration, 2304000000},
        {"seconds", "0.25", kDuration, 12000},
        {"time", "5", kDuration, 240000},
        {"time", "2:05.25", kDuration, 6012000},
        {"time", "00:00:01.001", kDuration, 48048},
        {"time", "0.00025", kDuration, 12}, // finer than the milliseconds that are shown
        {"time", "23:59:59.999", kDuration, 4147199952},
        {"time-frames", "00:00:01.15", kDuration, 57600},
        {"cd", "1:15", kDuration, 57600},
        {"cd", "115", kDuration, 57600},
        {"smpte-25", "00:00:01:12", kDuration, 71040},
        {"smpte-25", "112", kDuration, 71040},
        {"smpte-25", "0:0:1:37", kDuration, 119040}, // frames carry
        {"smpte-25", "00.00.01.12", kDuration, 71040},
        {"smpte-25", "00:00:01:12*", kDuration, 72000}, // half a frame later
        {"smpte-24", "01:00:00:00", kDuration, 172800000},
        {"smpte-30", "0:0:0:1", kDuration, 1600},
        {"smpte-23.976", "0:0:1:0", kDuration, 48048},
        {"smpte-29.97", "0:1:0:0", kDuration, 2882880},
        {"smpte-29.97-drop", "00:01:00;02", kDuration, 2882880}, // frame 1800
        {"smpte-29.97-drop", "00:01:00;00", kDuration, 2882880}, // there is no such label
        {"measures", "2", kDuration, 192000},
        {"measures", "2:1", kDuration, 216000},
        {"measures", "2:1.1", kDuration, 222000},
        {"measures", "1:1", kPosition, 0}, // the first beat of all
        {"measures", "2", kPosition, 96000},
        {"measures", "2:1.1", kPosition, 102000},
        {"feet-35mm", "12+08", kDuration, 400000},
        {"feet-35mm", "200", kDuration, 400000}, // film frames
        {"feet-16mm", "12+08", kDuration, 976000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.format) + " " + row.text);
        const LengthFormat* const format = findLengthFormat(row.format);
        ASSERT_NE(format, nullptr);
        EXPECT_EQ(read(row.text, format->type, row.kind), row.frames);
    }
}

TEST(LengthArgument, WhatIsNoLengthIsRefused)
{
    for (const LengthFormat& format : lengthFormats()) {
        SCOPED_TRACE(format.name);
        for (const char* const text : {"",      " ",       "-5",
                                       "+5",    "five",    "1e3",
                                       "0x10",  "nan",     "inf",
                                       "1 2",   "1,5",     "1::2",
                                       ":1",    "1:",      "1..2",
                                       "5 m",   "5 hours", "s",
                                       "ms",    "samples", "-1 s",
                                       "1:2 s", "1.2.3 s", "1.5 samples",
                                       "1*2",   "*",       "1:2:3:4:5",
                                       "1+2+",  "+",       "\xc3\xa9",
                                       "1\n",   "5\t",     "9999999999999999"}) {
            EXPECT_EQ(read(text, format.type), std::nullopt) << '"' << text << '"';
            EXPECT_EQ(read(text), std::nullopt) << '"' << text << '"';
        }
    }
}

TEST(LengthArgument, FormatsRefuseWhatBelongsToOthers)
{
    struct Row {
        const char* format;
        const char* text;
    };
    const Row rows[] = {
        {"samples", "1.5"},    {"samples", "1:00"},    {"seconds", "1:00"}, {"seconds", "1.5.1"},
        {"time", "1:2:3:4"},   {"time", "1.5:20"},     {"time", "1+5"},     {"time", "1;00"},
        {"smpte-25", "1+2"},   {"smpte-25", "1:00**"}, {"measures", "1;2"}, {"measures", "1.5"},
        {"feet-35mm", "1:00"}, {"feet-35mm", "1.5"},   {"cd", "1:00*"},     {"time-frames", "1*"},
        {"measures", "1:2:3"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(read(row.text, findLengthFormat(row.format)->type), std::nullopt)
            << row.format << ' ' << row.text;
    }
    EXPECT_EQ(read("0:1", zqposfmt_measures, kPosition), std::nullopt);
    EXPECT_EQ(read("1:0", zqposfmt_measures, kPosition), std::nullopt);
    EXPECT_EQ(read("0", zqposfmt_measures, kPosition), std::nullopt);
}

// Labels start again after a day, so a longer one would mean something else.
TEST(LengthArgument, TimesOfADayAndMoreAreRefused)
{
    for (const char* const text : {"24:00:00:00", "24000000", "23:59:60:00", "0:1440:00:00",
                                   "0:0:86400:0", "99999999", "0:0:0:999999999", "0:9999999"}) {
        EXPECT_EQ(read(text, zqposfmt_smpte_25), std::nullopt) << text;
        EXPECT_EQ(read(text, zqposfmt_frames_75), std::nullopt) << text;
    }
    for (const char* const text : {"24:00:00", "1440:00", "86400", "23:59:60", "999999999:0:0"}) {
        EXPECT_EQ(read(text, zqposfmt_time_ms), std::nullopt) << text;
    }
    EXPECT_NE(read("23:59:59:24", zqposfmt_smpte_25), std::nullopt);
    EXPECT_NE(read("86399", zqposfmt_time_ms), std::nullopt);
}

TEST(LengthArgument, WhatIsShownIsReadAgain)
{
    for (const unsigned rate : {8000U, 11025U, 44100U, 48000U, 88200U, 96000U, 192000U}) {
        for (const LengthFormat& format : lengthFormats()) {
            for (const LengthKind kind : {kDuration, kPosition}) {
                for (const std::uint64_t frames : {0U, 1U, 479U, 48000U, 2882880U, 86313599U}) {
                    const std::string text = lengthText(frames, format.type, kind, rate);
                    SCOPED_TRACE(std::string(format.name) + " " + text);
                    const auto read = readLength(text, format.type, kind, rate);
                    ASSERT_TRUE(read.has_value());
                    EXPECT_LE(*read, frames);
                    EXPECT_LT(frames - *read, rate / 7); // an eighth is the coarsest step
                    EXPECT_EQ(lengthText(*read, format.type, kind, rate), text);
                }
            }
        }
    }
}

TEST(LengthArgument, ExamplesAreWhatIsShown)
{
    for (const LengthFormat& format : lengthFormats()) {
        EXPECT_EQ(lengthText(4329600, format.type, kDuration, 48000), format.example)
            << format.name;
    }
}

TEST(LengthArgument, FormatsHaveNames)
{
    EXPECT_EQ(findLengthFormat("smpte-29.97-drop")->type, zqposfmt_smpte_29_97_drop);
    EXPECT_EQ(findLengthFormat("SAMPLES"), nullptr);
    EXPECT_EQ(findLengthFormat(""), nullptr);
    EXPECT_EQ(lengthFormats().size(), 14U);
}
