// Writes the sample recording: make-sample sample.flac
//
// Three phrases of speech-like syllables over a faint noise floor, with about a second of silence
// before, between and after them. Every number comes from this file, so nobody's rights are
// touched.

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kChannels = 2;
constexpr double kSeconds = 6.2;
constexpr double kNoiseLevel = 0.0002; // about -74 dB, well below a threshold of -60 dB
constexpr double kSpeechLevel = 0.18;  // of a stressed syllable before the formants add up
constexpr double kTwoPi = 2 * std::numbers::pi;

/// Two resonances of the mouth make a vowel.
struct Vowel {
    double firstHz;
    double secondHz;
};

constexpr Vowel kA{750, 1200};
constexpr Vowel kE{450, 1900};
constexpr Vowel kI{300, 2300};
constexpr Vowel kO{480, 850};

struct Syllable {
    double start;  // s
    double length; // s
    double pitch;  // Hz at the start; falls by a tenth
    double level;  // 1 is stressed
    double pan;    // -1 left to 1 right
    Vowel vowel;
};

// clang-format off
constexpr Syllable kSyllables[] = {
    { 0.90, 0.16, 132, 0.8, -0.15, kA }, { 1.09, 0.13, 140, 0.6, -0.15, kE }, { 1.26, 0.22, 126, 1.0, -0.10, kO }, { 1.52, 0.26, 112, 0.5, -0.10, kI },
    { 2.62, 0.14, 146, 0.9,  0.10, kO }, { 2.79, 0.12, 150, 0.6,  0.10, kA }, { 2.95, 0.30, 128, 1.0,  0.15, kE },
    { 4.05, 0.15, 138, 0.7,  0.00, kI }, { 4.24, 0.15, 134, 1.0,  0.00, kA }, { 4.43, 0.14, 126, 0.6,  0.00, kE }, { 4.61, 0.42, 108, 0.8, 0.05, kO },
};
// clang-format on

/// Soft start, flat middle, and a tail that dies away over 0.25 s like sound in a small room.
double envelope(const Syllable& syllable, double t)
{
    constexpr double kRise = 0.025;
    constexpr double kDecay = 0.05;
    if (t < 0) {
        return 0;
    }
    const double rise = std::min(t / kRise, 1.0);
    const double fall = t < syllable.length ? 1.0 : std::exp(-(t - syllable.length) / kDecay);
    return rise * rise * (3 - 2 * rise) * fall;
}

double resonance(double hz, double centreHz)
{
    const double distance = (hz - centreHz) / (60 + 0.08 * centreHz);
    return 1 / (1 + distance * distance);
}

double voice(const Syllable& syllable, double t)
{
    const double phase = kTwoPi * syllable.pitch * (t - 0.05 * t * t / (syllable.length + 0.3));
    double sum = 0;
    for (int harmonic = 1; harmonic * syllable.pitch < 4000; ++harmonic) {
        const double hz = harmonic * syllable.pitch;
        const double weight = resonance(hz, syllable.vowel.firstHz) +
                              0.4 * resonance(hz, syllable.vowel.secondHz) + 0.03;
        sum += weight * std::sin(harmonic * phase);
    }
    return sum;
}

/// The same numbers on every machine, between -1 and 1.
class Noise {
public:
    double next()
    {
        m_state = m_state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(m_state >> 33) / (1U << 30) - 1;
    }

private:
    std::uint64_t m_state = 1;
};

void addSyllable(const Syllable& syllable, std::vector<double>& samples)
{
    const double left = std::sqrt((1 - syllable.pan) / 2);
    const double right = std::sqrt((1 + syllable.pan) / 2);
    const auto first = static_cast<std::size_t>(syllable.start * kRate);
    const auto count = static_cast<std::size_t>((syllable.length + 0.5) * kRate);
    for (std::size_t i = 0; i < count && (first + i) * kChannels < samples.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double value =
            kSpeechLevel * syllable.level * envelope(syllable, t) * voice(syllable, t);
        samples[(first + i) * kChannels] += left * value;
        samples[(first + i) * kChannels + 1] += right * value;
    }
}

std::vector<std::int16_t> makeRecording()
{
    Noise noise;
    std::vector<double> samples(static_cast<std::size_t>(kSeconds * kRate) * kChannels);
    for (std::size_t frame = 0; frame * kChannels < samples.size(); ++frame) {
        const double hiss = kNoiseLevel * noise.next();
        std::fill_n(&samples[frame * kChannels], kChannels, hiss);
    }
    for (const Syllable& syllable : kSyllables) {
        addSyllable(syllable, samples);
    }
    std::vector<std::int16_t> words(samples.size());
    std::transform(samples.begin(), samples.end(), words.begin(), [](double sample) {
        return static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0, 1.0) * 32767));
    });
    return words;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make-sample FILE.flac\n", stderr);
        return 2;
    }
    SF_INFO info{};
    info.samplerate = kRate;
    info.channels = kChannels;
    info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    SNDFILE* const file = sf_open(argv[1], SFM_WRITE, &info);
    if (file == nullptr) {
        std::fprintf(stderr, "make-sample: %s\n", sf_strerror(nullptr));
        return 1;
    }
    double smallest = 1.0;
    sf_command(file, SFC_SET_COMPRESSION_LEVEL, &smallest, sizeof smallest);
    const std::vector<std::int16_t> words = makeRecording();
    const auto count = static_cast<sf_count_t>(words.size());
    const bool written = sf_write_short(file, words.data(), count) == count;
    return sf_close(file) == 0 && written ? 0 : 1;
}
