#include "TimeRecords.h"
#include "XePosFmt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

// Values published by others, see vectors/README.md. Where they differ from ours, the test names
// the rule that makes the difference.

namespace {

using Row = std::vector<std::string>;

std::vector<Row> rowsOf(const std::string& file, std::size_t columns)
{
    std::ifstream in(std::string(TEXT_VECTORS) + "/" + file);
    std::vector<Row> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with('#')) {
            continue;
        }
        Row row;
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) {
            row.push_back(cell);
        }
        row.resize(columns); // an empty last cell is not read
        rows.push_back(row);
    }
    return rows;
}

_XeString<wchar_t> wide(const std::string& text) { return {text.begin(), text.end()}; }

/// "30000/1001" -> 29.97002997002997
double rateOf(const std::string& text)
{
    const std::size_t slash = text.find('/');
    return std::stod(text) / std::stod(text.substr(slash + 1));
}

XePosFmt formatOf(double rate, bool drop)
{
    XePosFmt format(XePosFmt::posFmtTypeByFramerate(rate, drop));
    format.dFrameRate = rate;
    return format;
}

TEST(PublishedValues, LabelsOfFrames)
{
    const std::vector<Row> rows = rowsOf("tc_published_test_values.tsv", 5);
    EXPECT_EQ(rows.size(), 90u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row[0] + " " + row[3]);
        const double rate = rateOf(row[0]);
        const XePosFmt format = formatOf(rate, row[1] == "1");
        const long long frame = std::stoll(row[2]);
        _XeString<wchar_t> expected = wide(row[3]);
        if (rate >= 100.0) { // three digits of frames, always
            expected.insert(9, 12 - expected.size(), L'0');
        }
        EXPECT_EQ(format.smpteToString(format.framesToSmpte(frame, false, false), 0), expected);
        EXPECT_EQ(format.framesFromSMPTE(format.smpteFromString(wide(row[3]))), frame);
    }
}

// A label that does not exist means the first one that does; others count back into the minute
// before or refuse it.
TEST(PublishedValues, LabelsThatDoNotExist)
{
    const std::vector<Row> rows = rowsOf("tc_nonexistent_labels.tsv", 5);
    EXPECT_EQ(rows.size(), 18u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row[0] + " " + row[1]);
        const bool sixty = row[0] == "59.94df";
        const XePosFmt format = formatOf((sixty ? 60000.0 : 30000.0) / 1001.0, true);
        long long expected = std::stoll(row[2]);
        if (row[4] == "invalid") {
            expected += (sixty ? 4 : 2) - std::stoi(row[1].substr(9));
        }
        EXPECT_EQ(format.framesFromSMPTE(format.smpteFromString(wide(row[1]))), expected);
    }
}

/// "h:m:s:f" without padding, "reject" for a text that is refused.
std::string readingOf(const XePosFmt& format, const std::string& typed)
{
    try {
        return testing::PrintToString(format.smpteFromString(wide(typed)));
    } catch (int) {
        return "reject";
    }
}

/// "01:02:03:04" -> "1:2:3:4"
std::string unpadded(const std::string& label)
{
    std::string text;
    for (std::size_t at = 0; at < label.size(); ++at) {
        const bool leading = label[at] == '0' && (at == 0 || label[at - 1] == ':') &&
                             at + 1 < label.size() && label[at + 1] != ':';
        text += leading ? "" : std::string(1, label[at]);
    }
    return text;
}

TEST(PublishedValues, TypedLabels)
{
    const std::map<std::string, std::string> ours = {
        {"123:00:00:00", "3:0:0:0"},   // hours wrap at 24
        {"", "0:0:0:0"},               // missing fields are zero
        {"01564523", "1:56:45:23"},    // digits alone are read in pairs
        {"3 01:56:45:23", "reject"},   // a space separates: five fields
        {"12:01:56:45:23", "reject"},  // five fields
        {"3 01;56;45;23", "reject"},   // five fields
        {"0.0.0.0", "0:0:0:0"},        // a point separates
        {"01.56.45.23", "1:56:45:23"}, // a point separates
    };
    std::size_t differing = 0;
    const std::vector<Row> rows = rowsOf("tc_parse_text.tsv", 5);
    EXPECT_EQ(rows.size(), 29u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row[2]);
        const XePosFmt format = formatOf(row[1] == "any" ? 30.0 : rateOf(row[1]), false);
        const bool differs = !row[4].empty();
        differing += differs ? 1 : 0;
        EXPECT_EQ(readingOf(format, row[2]), differs ? ours.at(row[2]) : unpadded(row[3]));
    }
    EXPECT_EQ(differing, ours.size());
}

// Clock times are read to the millisecond; what is below is cut off.
TEST(PublishedValues, ClockTimes)
{
    const std::vector<Row> rows = rowsOf("clock_text.tsv", 3);
    EXPECT_EQ(rows.size(), 29u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row[1]);
        XESMPTEVAL time;
        ASSERT_TRUE(AsciiToTime(wide(row[1]), &time));
        const long long milliseconds =
            ((time.hours * 60LL + time.minutes) * 60 + time.seconds) * 1000 + time.frames;
        EXPECT_EQ(milliseconds, static_cast<long long>(std::stod(row[2]) * 1000 + 1e-6));
    }
}

// Frames are printed without a leading zero. How many frames a foot has is the caller's affair: the
// published 16 mm column counts 20, while the gauge itself has 40.
TEST(PublishedValues, FeetAndFrames)
{
    struct {
        std::size_t column;
        long long framesPerFoot;
        _zqposfmt_format type;
    } const gauges[] = {{1, 16, zqposfmt_feet_frames_35mm},
                        {2, 32, zqposfmt_feet_frames_35mm},
                        {3, 20, zqposfmt_feet_frames_16mm}};
    const std::vector<Row> rows = rowsOf("feet_frames.tsv", 4);
    EXPECT_EQ(rows.size(), 16u);
    for (const Row& row : rows) {
        for (const auto& gauge : gauges) {
            const std::string& text = row[gauge.column];
            SCOPED_TRACE(text);
            const faf_val length = XePosFmt::feetAndFramesFromString(wide(text));
            EXPECT_EQ(length.feet * gauge.framesPerFoot + length.frames, std::stoll(row[0]));
            const std::size_t plus = text.find('+');
            const std::string expected =
                text.substr(0, plus + 1) + std::to_string(std::stoi(text.substr(plus + 1)));
            EXPECT_EQ(XePosFmt(gauge.type).feetAndFramesToString(length, 0), wide(expected));
        }
    }
}

// Positions between two samples round up. One of the published ones was rounded down.
TEST(PublishedValues, SamplePositions)
{
    const std::vector<Row> rows = rowsOf("tc_day_samples.tsv", 5);
    EXPECT_EQ(rows.size(), 6u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row[0] + " " + row[2]);
        XePosFmt format(row[1] == "1" ? zqposfmt_smpte_29_97_drop : zqposfmt_smpte_24);
        format.dFrameRate = rateOf(row[0]);
        XESMPTEVAL position = format.smpteFromString(wide(row[2]));
        position.hours = static_cast<unsigned>(std::stoul(row[2])); // reading wraps at 24
        const bool roundedDown = row[4].find("floor") != std::string::npos;
        EXPECT_EQ(format.smpteToPosition(static_cast<unsigned>(std::stoul(row[3])), position),
                  std::stoll(row[4]) + (roundedDown ? 1 : 0));
    }
}

} // namespace
