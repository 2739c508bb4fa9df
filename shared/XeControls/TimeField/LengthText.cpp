#include "LengthText.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <string_view>
#include <vector>

namespace {

enum class Kind {
    Integer,     // the sample count itself
    Clock,       // hours, minutes, seconds, milliseconds
    WholeClock,  // hours, minutes, seconds
    Seconds,     // decimal number
    Label,       // hours, minutes, seconds, frames
    FrameNumber, // decimal number of frames
    Decimal,     // the sample count as a decimal number
    Measures,    // measure, beat, tick
    Film,        // feet and frames
    Percent,     // of the percent base
};

constexpr double kFilmRate = 24;
constexpr double kMillisecondsPerSecond = 1000;
constexpr double kSecondsPerMinute = 60;
constexpr double kSecondsPerHour = 3600;

// Labels are 32 bits wide; drop-frame labels also count what was dropped.
constexpr double kLastLabel = 4e9;
// Doubles count singly up to here, and hours of milliseconds stay below 32 bits.
constexpr double kLastPoint = 4e15;

constexpr double kLowestFrameRate = 1;
constexpr double kHighestFrameRate = 10000;

constexpr int kDecimalsRead = 15;
constexpr double kLargestFieldRead = 1e18;

constexpr std::int64_t kLowestCount = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighestCount = std::numeric_limits<std::int64_t>::max();

std::int64_t _clamped(double count)
{
    constexpr double kLimit = 0x1p63;
    if (count >= kLimit) {
        return kHighestCount;
    }
    return count <= -kLimit ? kLowestCount : static_cast<std::int64_t>(count);
}

std::int64_t _saturatedSum(std::int64_t a, std::int64_t b)
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        return b < 0 ? kLowestCount : kHighestCount;
    }
    return sum;
}

// The lowest count has no positive counterpart; the highest shows the same text in every format
// that has a grid.
std::int64_t _magnitude(std::int64_t count)
{
    return count >= 0 ? count : -std::max(count, -kHighestCount);
}

bool _isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

std::wstring_view _trimmed(std::wstring_view text)
{
    constexpr std::wstring_view kBlanks = L" \t\n\r\u00a0";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == text.npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool _takeSuffix(std::wstring_view& text, wchar_t suffix)
{
    if (suffix == 0 || text.empty() || text.back() != suffix) {
        return false;
    }
    text = _trimmed(text.substr(0, text.size() - 1));
    return true;
}

bool _takeMinus(std::wstring_view& text)
{
    int sign = 0;
    const std::wstring unsignedText = XePosFmt::prepareString(std::wstring(text), sign);
    text.remove_prefix(text.size() - unsignedText.size());
    return sign < 0;
}

struct Run {
    std::size_t start;
    std::size_t length;
};

std::vector<Run> _digitRuns(std::wstring_view text)
{
    std::vector<Run> runs;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!_isDigit(text[i])) {
            continue;
        }
        if (i == 0 || !_isDigit(text[i - 1])) {
            runs.push_back({i, 0});
        }
        ++runs.back().length;
    }
    return runs;
}

// The run that the selection lies in, or none when it reaches beyond one.
std::size_t _runAt(const std::vector<Run>& runs, std::size_t start, std::size_t length)
{
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (start <= runs[i].start + runs[i].length) {
            const bool isInside = length == 0 || (start >= runs[i].start &&
                                                  start + length <= runs[i].start + runs[i].length);
            return isInside ? i : runs.size();
        }
    }
    return runs.size();
}

// "1,234,567" -> "1234567". Groups are of three digits and one kind of separator; anything else
// that is no digit gives the empty text.
std::wstring _withoutGrouping(std::wstring_view text)
{
    std::wstring digits;
    wchar_t separator = 0;
    std::size_t sinceSeparator = 0;
    for (const wchar_t c : text) {
        if (_isDigit(c)) {
            digits += c;
            ++sinceSeparator;
            continue;
        }
        const bool isGroup = separator == 0 ? sinceSeparator >= 1 && sinceSeparator <= 3
                                            : c == separator && sinceSeparator == 3;
        if (!isGroup || std::wstring_view(L",.' \u00a0").find(c) == std::wstring_view::npos) {
            return {};
        }
        separator = c;
        sinceSeparator = 0;
    }
    return separator != 0 && sinceSeparator != 3 ? std::wstring() : digits;
}

std::optional<std::int64_t> _parseInteger(std::wstring_view text)
{
    const bool isNegative = _takeMinus(text);
    const std::wstring digits = _withoutGrouping(text);
    if (digits.empty()) {
        return std::nullopt;
    }
    // Counted downwards, since the lowest count has no positive counterpart.
    std::int64_t count = 0;
    for (const wchar_t c : digits) {
        if (__builtin_mul_overflow(count, 10, &count) ||
            __builtin_sub_overflow(count, c - L'0', &count)) {
            return isNegative ? kLowestCount : kHighestCount;
        }
    }
    return isNegative ? count : -std::max(count, -kHighestCount);
}

} // namespace

// What a type is made of.
struct LengthText::Traits {
    _zqposfmt_format type;
    Kind kind;
    unsigned framesPerFoot;       // of Film
    bool hasFixedRate;            // a frame rate that setFrameRate() leaves alone
    double defaultRate;           // where the type has no rate of its own, 0: does not need one
    std::wstring_view separators; // between the fields of its text
    std::size_t fieldCount;       // fields of the text, 0: not read field by field
    bool hasDecimals;             // in the last field
    wchar_t suffix;               // may follow the text
};

// The numbers of a typed text.
struct LengthText::Fields {
    struct Field {
        double mantissa = 0; // all digits, the decimal point left out
        double divisor = 1;  // power of ten that the decimal point stands for

        double times(double scale) const { return mantissa * scale / divisor; }
    };

    std::vector<Field> values; // in the order of the text
    bool hasSuffix = false;

    // The field `i` from the right, 0 where the text has no such field.
    double fromRight(std::size_t i) const
    {
        return i < values.size() ? values[values.size() - 1 - i].times(1) : 0;
    }
    double fromLeft(std::size_t i, double missing) const
    {
        return i < values.size() ? values[i].times(1) : missing;
    }

    static std::optional<Fields> read(std::wstring_view text, const Traits& traits);

private:
    bool take(wchar_t c, const Traits& traits);
    static std::optional<Fields> readPairs(std::wstring_view digits, std::size_t fieldCount);

    bool m_isInDecimals = false;
    int m_decimals = 0;
};

// Takes one character of the text; false for one that does not belong.
bool LengthText::Fields::take(wchar_t c, const Traits& traits)
{
    Field& field = values.back();
    if (_isDigit(c)) {
        if (m_isInDecimals && ++m_decimals > kDecimalsRead) {
            return true;
        }
        field.mantissa = std::min(field.mantissa * 10 + (c - L'0'), kLargestFieldRead);
        field.divisor *= m_isInDecimals ? 10 : 1;
        return true;
    }
    if (m_isInDecimals) {
        return false;
    }
    if (traits.hasDecimals && (c == L'.' || c == L',')) {
        m_isInDecimals = true;
        return true;
    }
    values.emplace_back();
    return traits.separators.find(c) != traits.separators.npos &&
           values.size() <= traits.fieldCount;
}

// Digits without a separator, two to a field from the right: "304" is 3 and 4.
std::optional<LengthText::Fields> LengthText::Fields::readPairs(std::wstring_view digits,
                                                                std::size_t fieldCount)
{
    if (digits.size() > 2 * fieldCount) {
        return std::nullopt;
    }
    Fields fields;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i == 0 || (digits.size() - i) % 2 == 0) {
            fields.values.emplace_back();
        }
        fields.values.back().mantissa = fields.values.back().mantissa * 10 + (digits[i] - L'0');
    }
    return fields;
}

std::optional<LengthText::Fields> LengthText::Fields::read(std::wstring_view text,
                                                           const Traits& traits)
{
    const bool hasSuffix = _takeSuffix(text, traits.suffix);
    if (std::none_of(text.begin(), text.end(), _isDigit)) {
        return std::nullopt;
    }
    if (traits.kind == Kind::Label && std::all_of(text.begin(), text.end(), _isDigit)) {
        std::optional<Fields> fields = readPairs(text, traits.fieldCount);
        if (fields) {
            fields->hasSuffix = hasSuffix;
        }
        return fields;
    }
    Fields fields;
    fields.hasSuffix = hasSuffix;
    fields.values.emplace_back();
    for (const wchar_t c : text) {
        if (!fields.take(c, traits)) {
            return std::nullopt;
        }
    }
    return fields;
}

const LengthText::Traits& LengthText::_traits() const
{
    constexpr std::wstring_view kLabel = L".:;,-";
    constexpr std::wstring_view kColon = L":";
    constexpr std::wstring_view kPlus = L"+";
    constexpr std::wstring_view kNone;
    // clang-format off
    static constexpr Traits kTraits[] = {
        // type                        kind               foot fixed  default rate  sep    fields dec.   suffix
        { zqposfmt_samples,            Kind::Integer,      0, false,  0,            kNone,  0,    false, 0    },
        { zqposfmt_time_ms,            Kind::Clock,        0, true,   0,            kColon, 3,    true,  0    },
        { zqposfmt_seconds,            Kind::Seconds,      0, false,  0,            kNone,  1,    true,  0    },
        { zqposfmt_time_frames,        Kind::Label,        0, false, 75,            kLabel, 4,    false, L'*' },
        { zqposfmt_frames,             Kind::FrameNumber,  0, false, 75,            kNone,  1,    true,  0    },
        { zqposfmt_measures,           Kind::Measures,     0, false,  0,            kLabel, 3,    false, 0    },
        { zqposfmt_smpte_29_97,        Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_smpte_30,           Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_smpte_29_97_drop,   Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_smpte_25,           Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_smpte_24,           Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_count,              Kind::Integer,      0, false,  0,            kNone,  0,    false, 0    },
        { zqposfmt_count_2,            Kind::Integer,      0, false,  0,            kNone,  0,    false, 0    },
        { zqposfmt_measures_2,         Kind::Measures,     0, false,  0,            kLabel, 3,    false, 0    },
        { zqposfmt_decimal,            Kind::Decimal,      0, false,  0,            kNone,  1,    true,  0    },
        { zqposfmt_feet_frames_35mm,   Kind::Film,        16, false,  0,            kPlus,  2,    false, 0    },
        { zqposfmt_feet_frames_16mm,   Kind::Film,        40, false,  0,            kPlus,  2,    false, 0    },
        { zqposfmt_frames_75,          Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_smpte_23_976,       Kind::Label,        0, true,   0,            kLabel, 4,    false, L'*' },
        { zqposfmt_time,               Kind::WholeClock,   0, true,   0,            kColon, 3,    true,  0    },
        { zqposfmt_percent,            Kind::Percent,      0, false,  0,            kNone,  1,    true,  L'%' },
        { zqposfmt_smpte_half_step,    Kind::Label,        0, false, 60,            kLabel, 4,    false, L'*' },
        { zqposfmt_smpte_half_step_drop, Kind::Label,      0, false, 60000 / 1001., kLabel, 4,    false, L'*' },
    };
    // clang-format on
    static_assert(std::size(kTraits) == zqposfmt_smpte_half_step_drop + 1);
    static_assert([] {
        for (std::size_t i = 0; i < std::size(kTraits); ++i) {
            if (kTraits[i].type != i) {
                return false;
            }
        }
        return true;
    }());
    const bool isPlain = m_format.eFormat >= std::size(kTraits) ||
                         (m_format.eFormat == zqposfmt_percent && m_format.ccPercentBase <= 0);
    return kTraits[isPlain ? zqposfmt_samples : m_format.eFormat];
}

LengthText::LengthText() : m_format(zqposfmt_samples)
{
    m_format.dwSampleRate = 44100;
    m_format.dTempo = 120;
    m_format.dwTimeSignature = 0x00040004;
    m_format.cTicksPerBeat = 4;
}

void LengthText::setType(_zqposfmt_format type)
{
    m_format.setType(type);
    const double defaultRate = _traits().defaultRate;
    if (defaultRate > 0 && m_format.dFrameRate < kLowestFrameRate) {
        m_format.dFrameRate = defaultRate;
    }
}

void LengthText::setSampleRate(double rate)
{
    if (std::isfinite(rate) && rate > 0) {
        m_sampleRate = rate;
    }
}

void LengthText::setFormatSampleRate(double rate)
{
    if (rate >= 1 && rate <= std::numeric_limits<std::uint32_t>::max()) {
        m_format.dwSampleRate = static_cast<std::uint32_t>(std::lround(rate));
    }
}

void LengthText::setFrameRate(double rate)
{
    if (!_traits().hasFixedRate && rate >= kLowestFrameRate && rate <= kHighestFrameRate) {
        m_format.dFrameRate = rate;
    }
}

void LengthText::setTempo(double tempo)
{
    if (std::isfinite(tempo) && tempo > 0) {
        m_format.dTempo = tempo;
    }
}

void LengthText::setTimeSignature(std::uint32_t signature)
{
    if (signature >> 16 != 0) {
        m_format.dwTimeSignature = signature;
    }
}

void LengthText::setTicksPerBeat(std::uint32_t ticks)
{
    if (ticks != 0) {
        m_format.cTicksPerBeat = ticks;
    }
}

void LengthText::setPercentBase(std::int64_t samples) { m_format.ccPercentBase = samples; }

std::int64_t LengthText::increment() const
{
    return std::max<std::int64_t>(1, m_format.getIncrement());
}

unsigned LengthText::_wholeFrameRate() const
{
    return static_cast<unsigned>(std::lround(m_format.frameRate()));
}

// Half-step labels show every second frame when there are more of them than video has pictures.
bool LengthText::_countsFields() const
{
    const bool isHalfStep = m_format.eFormat == zqposfmt_smpte_half_step ||
                            m_format.eFormat == zqposfmt_smpte_half_step_drop;
    return isHalfStep && _wholeFrameRate() > 30;
}

unsigned LengthText::_beatsPerMeasure() const { return m_format.dwTimeSignature >> 16; }

double LengthText::_pointsPerSecond() const
{
    switch (_traits().kind) {
    case Kind::Clock:
    case Kind::Seconds:
        return kMillisecondsPerSecond;
    case Kind::WholeClock:
        return 1;
    case Kind::Label:
        return m_format.frameRate();
    case Kind::FrameNumber:
        return m_format.frameRate() * 1000;
    case Kind::Measures:
        return m_format.dTempo / kSecondsPerMinute * m_format.cTicksPerBeat;
    case Kind::Film:
        return kFilmRate;
    case Kind::Percent:
        return m_sampleRate * 100 / static_cast<double>(m_format.ccPercentBase);
    case Kind::Decimal:
    case Kind::Integer:
        break;
    }
    return m_sampleRate;
}

double LengthText::_lastPoint() const
{
    switch (_traits().kind) {
    case Kind::Label:
        return kLastLabel;
    case Kind::WholeClock:
        return kLastLabel * kSecondsPerHour;
    case Kind::Measures:
        return std::min(kLastPoint, kLastLabel * _beatsPerMeasure() * m_format.cTicksPerBeat);
    default:
        return kLastPoint;
    }
}

// Frames begin on the first sample that is not before them (a thousandth of a sample is forgiven),
// points of the finer grids on the nearest.
std::int64_t LengthText::_positionOf(double point) const
{
    const Kind kind = _traits().kind;
    const bool roundsUp = kind == Kind::Label || kind == Kind::WholeClock || kind == Kind::Film ||
                          kind == Kind::Percent;
    return _clamped(m_sampleRate * point / _pointsPerSecond() + (roundsUp ? 0.999 : 0.5));
}

// Decimal numbers show the nearest point, as any rounded number does: the samples of a whole
// millisecond are often a fraction of a sample short of it. So does a grid finer than the samples.
bool LengthText::_showsNearest() const
{
    const Kind kind = _traits().kind;
    return kind == Kind::Clock || kind == Kind::Seconds || kind == Kind::FrameNumber ||
           _pointsPerSecond() > m_sampleRate;
}

// The point that is shown for `samples`, which is 0 or more: the nearest, or the last one whose
// sample is not after them.
double LengthText::_pointOf(std::int64_t samples) const
{
    const double last = _lastPoint();
    const double exact = static_cast<double>(samples) * (_pointsPerSecond() / m_sampleRate);
    if (exact >= last) {
        return last;
    }
    if (_showsNearest()) {
        return std::round(exact);
    }
    double point = std::floor(exact);
    while (point < last && _positionOf(point + 1) <= samples) {
        ++point;
    }
    while (point > 0 && _positionOf(point) > samples) {
        --point;
    }
    return point;
}

_XeString<wchar_t> LengthText::_renderMeasures(double point) const
{
    const auto ticks = static_cast<std::uint64_t>(point);
    const std::uint64_t beats = ticks / m_format.cTicksPerBeat;
    const unsigned first = m_isLength ? 0 : 1;
    XESMPTEVAL label;
    label.hours = static_cast<std::uint32_t>(beats / _beatsPerMeasure()) + first;
    label.minutes = static_cast<std::uint32_t>(beats % _beatsPerMeasure()) + first;
    label.seconds = static_cast<std::uint32_t>(ticks % m_format.cTicksPerBeat);
    return m_format.smpteToString(label, 0);
}

_XeString<wchar_t> LengthText::_renderPoint(double point) const
{
    const auto count = static_cast<long long>(point);
    const Traits& traits = _traits();
    switch (traits.kind) {
    case Kind::Clock:
        return m_format.hmsfToString(m_format.framesToSmpte(count, true, false), 0);
    case Kind::WholeClock:
        return m_format.hmsfToString(m_format.framesToSmpte(count * 1000, true, false), 0);
    case Kind::Label:
        return m_format.smpteToString(m_format.framesToSmpte(count, true, false), 0);
    case Kind::Seconds:
    case Kind::FrameNumber:
        return m_format.metricToString(point / 1000, 0);
    case Kind::Decimal:
        return m_format.metricToString(point, 0);
    case Kind::Measures:
        return _renderMeasures(point);
    case Kind::Film:
        return m_format.feetAndFramesToString(
            {count / traits.framesPerFoot, count % traits.framesPerFoot}, 0);
    case Kind::Percent:
    case Kind::Integer:
        break;
    }
    return m_format.samplesToString(count, 0);
}

_XeString<wchar_t> LengthText::render(std::int64_t samples) const
{
    if (_traits().kind == Kind::Integer) {
        return XePosFmt(zqposfmt_samples).samplesToString(samples, 0);
    }
    const _XeString<wchar_t> text = _renderPoint(_pointOf(_magnitude(samples)));
    return samples < 0 ? _XeString<wchar_t>(L"-" + text) : text;
}

// Fields may be larger than a clock shows, and hours do not wrap: a length of 25 hours is one.
double LengthText::_labelPoint(const Fields& fields) const
{
    const double shown = _countsFields() ? _wholeFrameRate() / 2 : _wholeFrameRate();
    const double frames = fields.fromRight(0);
    const double seconds = fields.fromRight(1) + std::floor(frames / shown) +
                           fields.fromRight(2) * kSecondsPerMinute +
                           fields.fromRight(3) * kSecondsPerHour;
    if ((seconds + 1) * _wholeFrameRate() > kLastLabel) {
        return kLastLabel;
    }
    double frame = std::fmod(frames, shown);
    double halfFrame = fields.hasSuffix ? 0.5 : 0;
    if (_countsFields()) {
        frame = frame * 2 + (fields.hasSuffix ? 1 : 0);
        halfFrame = 0;
    }
    return static_cast<double>(m_format.framesFromSMPTE(_label(seconds, frame))) + halfFrame;
}

XESMPTEVAL LengthText::_label(double seconds, double frames)
{
    const auto wholeSeconds = static_cast<std::uint64_t>(seconds);
    XESMPTEVAL label;
    label.hours = static_cast<std::uint32_t>(wholeSeconds / 3600);
    label.minutes = static_cast<std::uint32_t>(wholeSeconds / 60 % 60);
    label.seconds = static_cast<std::uint32_t>(wholeSeconds % 60);
    label.frames = static_cast<std::uint32_t>(frames);
    return label;
}

double LengthText::_pointFrom(const Fields& fields) const
{
    const Traits& traits = _traits();
    const double first = m_isLength ? 0 : 1;
    switch (traits.kind) {
    case Kind::Clock:
        return fields.values.back().times(1000) +
               (fields.fromRight(1) * kSecondsPerMinute + fields.fromRight(2) * kSecondsPerHour) *
                   kMillisecondsPerSecond;
    case Kind::WholeClock:
        return fields.fromRight(0) + fields.fromRight(1) * kSecondsPerMinute +
               fields.fromRight(2) * kSecondsPerHour;
    case Kind::Label:
        return _labelPoint(fields);
    case Kind::Seconds:
    case Kind::FrameNumber:
        return fields.values.back().times(1000);
    case Kind::Measures:
        return ((fields.fromLeft(0, first) - first) * _beatsPerMeasure() +
                (fields.fromLeft(1, first) - first)) *
                   m_format.cTicksPerBeat +
               fields.fromLeft(2, 0);
    case Kind::Film:
        return fields.fromRight(1) * traits.framesPerFoot + fields.fromRight(0);
    case Kind::Decimal:
    case Kind::Percent:
    case Kind::Integer:
        break;
    }
    return fields.fromRight(0);
}

std::optional<std::int64_t> LengthText::parse(const _XeString<wchar_t>& text) const
{
    std::wstring_view rest = _trimmed(text);
    if (_traits().kind == Kind::Integer) {
        return _parseInteger(rest);
    }
    const bool isNegative = _takeMinus(rest);
    if (rest.starts_with(L'-')) { // one sign, though it also separates fields
        return std::nullopt;
    }
    const std::optional<Fields> fields = Fields::read(rest, _traits());
    if (!fields) {
        return std::nullopt;
    }
    const std::int64_t samples = _positionOf(std::clamp(_pointFrom(*fields), 0.0, _lastPoint()));
    return isNegative ? -samples : samples;
}

double LengthText::_partWeight(std::size_t part) const
{
    const double fps = _wholeFrameRate();
    const double ticks = m_format.cTicksPerBeat;
    const double label[] = {_countsFields() ? 2.0 : 1.0, fps, fps * 60, fps * 3600};
    const double clock[] = {1, 1000, 60000, 3600000};
    const double wholeClock[] = {1, 60, 3600};
    const double measures[] = {1, ticks, ticks * _beatsPerMeasure()};
    const double film[] = {1, static_cast<double>(_traits().framesPerFoot)};
    switch (_traits().kind) {
    case Kind::Label:
        return label[part];
    case Kind::Clock:
        return clock[part];
    case Kind::WholeClock:
        return wholeClock[part];
    case Kind::Measures:
        return measures[part];
    case Kind::Film:
        return film[part];
    default:
        return 0;
    }
}

// Hours, minutes and seconds of a label step as numbers, so that ;02 stays ;02 wherever it can.
double LengthText::_stepLabel(double point, double delta) const
{
    const XESMPTEVAL label = m_format.framesToSmpte(static_cast<long long>(point), true, false);
    const double fps = _wholeFrameRate();
    const double frames =
        _countsFields() ? label.frames * 2.0 + (label.field ? 1 : 0) : label.frames;
    const double shown =
        (label.hours * kSecondsPerHour + label.minutes * kSecondsPerMinute + label.seconds) * fps +
        frames;
    const double wanted = std::clamp(shown + delta, 0.0, kLastLabel);
    const double seconds = std::floor(wanted / fps);
    return static_cast<double>(m_format.framesFromSMPTE(_label(seconds, wanted - seconds * fps)));
}

double LengthText::_stepPart(double point, std::size_t part, int direction) const
{
    const double delta = _partWeight(part) * direction;
    const bool isAboveFrames = _traits().kind == Kind::Label && part > 0;
    return isAboveFrames ? _stepLabel(point, delta) : point + delta;
}

double LengthText::_stepNaturally(double point, int direction) const
{
    const double points =
        static_cast<double>(increment()) * _pointsPerSecond() / m_format.dwSampleRate;
    return point + std::max(1.0, std::round(points)) * direction;
}

std::int64_t LengthText::_step(std::int64_t samples, std::optional<std::size_t> part,
                               int direction) const
{
    if (_traits().kind == Kind::Integer) {
        const std::int64_t sum = _saturatedSum(samples, direction);
        return samples >= 0 ? std::max<std::int64_t>(sum, 0) : sum;
    }
    const int away = samples < 0 ? -direction : direction;
    const double point = _pointOf(_magnitude(samples));
    const double stepped = part ? _stepPart(point, *part, away) : _stepNaturally(point, away);
    const std::int64_t position = _positionOf(std::clamp(stepped, 0.0, _lastPoint()));
    return samples < 0 ? -position : position;
}

LengthText::Step LengthText::step(std::int64_t samples, const _XeString<wchar_t>& text,
                                  std::size_t start, std::size_t length, int direction) const
{
    const std::vector<Run> runs = _digitRuns(text);
    const std::size_t run = _runAt(runs, start, length);
    const bool hasParts = _partWeight(0) != 0 && _digitRuns(render(samples)).size() == runs.size();
    std::optional<std::size_t> part;
    if (hasParts && run < runs.size()) {
        part = runs.size() - 1 - run;
    }
    const std::int64_t stepped = _step(samples, part, direction);
    const _XeString<wchar_t> shown = render(stepped);
    if (!part) {
        return {stepped, 0, shown.size()};
    }
    const Run selected = _digitRuns(shown)[run];
    return {stepped, selected.start, selected.length};
}
