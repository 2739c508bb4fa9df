// Labels of 29.97 drop-frame code and clock times, both ways, beside printf, scanf, {fmt} and
// Boost. "floor" is the arithmetic or the one pass over the characters that no way to do it can
// leave out. Ours comes last in each group.

#include "XePosFmt.h"

#include "ComparedRows.h"
#include "Hidden.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/lexical_cast.hpp>
#include <fmt/xchar.h>

#include <cwchar>
#include <string>
#include <vector>

namespace {

using Text = _XeString<wchar_t>;

constexpr unsigned kFps = 30;

XePosFmt dropFrame()
{
    XePosFmt format(zqposfmt_samples);
    format.setType(zqposfmt_smpte_29_97_drop);
    return format;
}

/// The shortest known way: frames of ten minutes and of the rest, without a search.
XESMPTEVAL directLabel(unsigned frames)
{
    const unsigned tens = frames / 17982;
    const unsigned rest = frames % 17982;
    frames += tens * 18 + (rest >= 2 ? (rest - 2) / 1798 * 2 : 0);
    return {0, frames / 108000, frames / 1800 % 60, frames / kFps % 60, frames % kFps, false};
}

void addLabelFromFrame()
{
    static const XePosFmt kFormat = dropFrame();
    static const long long kFrame = 111594;

    addComparedRow("label_from_frame", "floor",
                   [] { use(directLabel(static_cast<unsigned>(hidden(kFrame)))); });
    addComparedRow("label_from_frame", "framesToSmpte",
                   [] { use(kFormat.framesToSmpte(hidden(kFrame), false, false)); });
}

void addFrameFromLabel()
{
    static const XePosFmt kFormat = dropFrame();
    static const XESMPTEVAL kLabel{0, 1, 2, 3, 16, false};

    addComparedRow("frame_from_label", "floor", [] {
        const XESMPTEVAL& label = hidden(kLabel);
        const unsigned minutes = label.hours * 60 + label.minutes;
        use((minutes * 60 + label.seconds) * kFps + label.frames - (minutes - minutes / 10) * 2);
    });
    addComparedRow("frame_from_label", "framesFromSMPTE",
                   [] { use(kFormat.framesFromSMPTE(hidden(kLabel))); });
}

void addLabelText()
{
    static const XePosFmt kFormat = dropFrame();
    static const XESMPTEVAL kLabel{0, 1, 2, 3, 16, false};
    static const Text kText = L"01:02:03;16";

    addComparedRow("label_to_text", "floor", [] { use(Text(hidden(kText))); });
    addComparedRow("label_to_text", "swprintf", [] {
        wchar_t buffer[40];
        benchmark::DoNotOptimize(buffer);
        const XESMPTEVAL& label = hidden(kLabel);
        use(std::swprintf(buffer, 40, L"%02u:%02u:%02u;%02u", label.hours, label.minutes,
                          label.seconds, label.frames));
    });
    addComparedRow("label_to_text", "fmt", [] {
        const XESMPTEVAL& label = hidden(kLabel);
        use(fmt::format(L"{:02}:{:02}:{:02};{:02}", label.hours, label.minutes, label.seconds,
                        label.frames));
    });
    addComparedRow("label_to_text", "smpteToString",
                   [] { use(kFormat.smpteToString(hidden(kLabel), 0)); });
}

/// Reads four numbers, whatever single characters are between.
void readFields(const Text& text)
{
    unsigned fields[4] = {};
    unsigned at = 0;
    for (const wchar_t c : text) {
        if (const auto digit = static_cast<unsigned>(c - L'0'); digit < 10) {
            fields[at] = fields[at] * 10 + digit;
        } else {
            ++at;
        }
    }
    use(fields);
}

void addLabelFromText()
{
    static const XePosFmt kFormat = dropFrame();
    static const Text kText = L"01:02:03;16";
    static const Text kDigits = L"1020316";

    addComparedRow("label_from_text", "floor", [] { readFields(hidden(kText)); });
    addComparedRow("label_from_text", "swscanf", [] {
        unsigned fields[4] = {};
        use(std::swscanf(hidden(kText).c_str(), L"%u:%u:%u;%u", &fields[0], &fields[1], &fields[2],
                         &fields[3]));
        use(fields);
    });
    addComparedRow("label_from_text", "wcstoul", [] {
        unsigned fields[4] = {};
        const wchar_t* at = hidden(kText).c_str();
        for (unsigned& field : fields) {
            wchar_t* end = nullptr;
            field = static_cast<unsigned>(std::wcstoul(at, &end, 10));
            at = end + 1;
        }
        use(fields);
    });
    addComparedRow("label_from_text", "boost", [] {
        std::vector<std::wstring> pieces;
        boost::algorithm::split(pieces, static_cast<const std::wstring&>(hidden(kText)),
                                boost::algorithm::is_any_of(L":;"));
        for (const std::wstring& piece : pieces) {
            use(boost::lexical_cast<unsigned>(piece));
        }
    });
    addComparedRow("label_from_text", "AsciiToSMPTE", [] {
        XESMPTEVAL label;
        use(AsciiToSMPTE(hidden(kText), &label, kFps, false));
        use(label);
    });
    addComparedRow("label_from_text", "AsciiToSMPTE_digits", [] {
        XESMPTEVAL label;
        use(AsciiToSMPTE(hidden(kDigits), &label, kFps, false));
        use(label);
    });
    addComparedRow("label_from_text", "smpteFromString",
                   [] { use(kFormat.smpteFromString(hidden(kText))); });
}

void addClock()
{
    static const XePosFmt kFormat(zqposfmt_time_ms);
    static const XESMPTEVAL kTime{0, 1, 2, 3, 541, false};
    static const Text kText = L"01:02:03.541";

    addComparedRow("clock_to_text", "swprintf", [] {
        wchar_t buffer[40];
        benchmark::DoNotOptimize(buffer);
        const XESMPTEVAL& time = hidden(kTime);
        use(std::swprintf(buffer, 40, L"%02u:%02u:%02u.%03u", time.hours, time.minutes,
                          time.seconds, time.frames));
    });
    addComparedRow("clock_to_text", "fmt", [] {
        const XESMPTEVAL& time = hidden(kTime);
        use(fmt::format(L"{:02}:{:02}:{:02}.{:03}", time.hours, time.minutes, time.seconds,
                        time.frames));
    });
    addComparedRow("clock_to_text", "hmsfToString",
                   [] { use(kFormat.hmsfToString(hidden(kTime), 0)); });

    addComparedRow("clock_from_text", "floor", [] { readFields(hidden(kText)); });
    addComparedRow("clock_from_text", "swscanf", [] {
        unsigned hours = 0;
        unsigned minutes = 0;
        double seconds = 0;
        use(std::swscanf(hidden(kText).c_str(), L"%u:%u:%lf", &hours, &minutes, &seconds));
        use(seconds);
    });
    addComparedRow("clock_from_text", "wcstod", [] {
        const wchar_t* at = hidden(kText).c_str();
        for (int field = 0; field < 3; ++field) {
            wchar_t* end = nullptr;
            use(std::wcstod(at, &end));
            at = end + 1;
        }
    });
    addComparedRow("clock_from_text", "AsciiToTime", [] {
        XESMPTEVAL time;
        use(AsciiToTime(hidden(kText), &time));
        use(time);
    });
}

[[maybe_unused]] const bool g_added = [] {
    addLabelFromFrame();
    addFrameFromLabel();
    addLabelText();
    addLabelFromText();
    addClock();
    return true;
}();

} // namespace
