#include "sound/level.h"

#include <cmath>
#include <cstddef>
#include <limits>

#include "sound/kernels.h"

namespace {

constexpr int kLowestPcm16 = -524288;
constexpr int kHighestPcm16 = 524272;
constexpr double kMeterReference = 8388626.0;
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();

std::int32_t Factor(double decibels, double divisor) {
    const double factor = std::floor(std::pow(10.0, decibels / divisor) * 16777216.0 + 0.5);
    return factor > kMaxInt ? kMaxInt : static_cast<std::int32_t>(factor);
}

int PeakOf(int highest, int lowest) {
    const std::int64_t peak = std::max<std::int64_t>(highest, -std::int64_t{lowest});
    return static_cast<int>(std::min<std::int64_t>(peak, kMaxInt));
}

int WrappingGain(int gain, int sample) {
    const auto product = static_cast<std::uint32_t>(gain) * static_cast<std::uint32_t>(sample);
    return static_cast<std::int32_t>(product) >> 9;
}

// Mean square of count samples that lie step apart. The sum is kept as its low 13 bits and the
// rest.
int MeanSquare(const int* buffer, std::int64_t count, int step) {
    if (count < 1)
        return 0;
    std::int64_t low = 0;
    std::int64_t high = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t scaled = buffer[i * step] >> 5;
        const std::int64_t square = scaled * scaled;
        low += square & 8191;
        high += square >> 13;
    }
    const std::int64_t total = (low >> 13) + high;
    const std::int64_t mean = total / count * 8192 + total % count * 8192 / count;
    return static_cast<int>(std::min<std::int64_t>(mean, kMaxInt));
}

}  // namespace

const LDB::LDBTablesClass LDB::tab;

LDB::LDBTablesClass::LDBTablesClass() {
    for (int decibels = kFirst; decibels <= kHighest; ++decibels) {
        const auto index = static_cast<std::size_t>(decibels - kFirst);
        const bool isSilence = decibels <= kSilence;
        amplitude_[index] = isSilence ? 0 : Factor(decibels, 20.0);
        power_[index] = isSilence ? 0 : Factor(decibels, 10.0);
    }
}

void LDB::SetText(const char* text) {
    int magnitude = 0;
    bool isNegative = false;
    for (; text != nullptr && *text != '\0'; ++text) {
        if (*text >= '0' && *text <= '9') {
            magnitude = std::min(magnitude * 10 + (*text - '0'), 1000000);
        } else if (*text == '-') {
            if (isNegative)
                magnitude = 127;
            isNegative = true;
        }
    }
    *this = LDB(isNegative ? -magnitude : magnitude);
}

int GetBufferPeak(const int* buffer, int frames, std::uint8_t channels) {
    if (frames < 1)
        return 0;
    return SoundKernels().peak(buffer, static_cast<std::size_t>(frames) * channels);
}

int GetBufferPeakChan(int channel, const int* buffer, int frames, std::uint8_t channels) {
    int highest = 0;
    int lowest = 0;
    for (std::ptrdiff_t i = 0; i < frames; ++i) {
        const int sample = buffer[i * channels + channel];
        highest = std::max(highest, sample);
        lowest = std::min(lowest, sample);
    }
    return PeakOf(highest, lowest);
}

int GetBufferMeanSquare(const int* buffer, int frames, std::uint8_t channels) {
    return MeanSquare(buffer, std::int64_t{frames} * channels, 1);
}

int GetBufferMeanSquareChan(int channel, const int* buffer, int frames, std::uint8_t channels) {
    return MeanSquare(buffer + channel, frames, channels);
}

LDB GetMeterLevel(int meanSquare) {
    if (meanSquare <= 0)
        return LDB(LDB::kSilence);
    const double decibels = 10.0 * std::log10(meanSquare / kMeterReference);
    return LDB(static_cast<int>(decibels + (meanSquare >= kMeterReference ? 0.5 : -0.5)));
}

LDBMC GetBufferLevels(const int* buffer, int frames, std::uint8_t channels) {
    LDBMC levels(channels);
    for (int channel = 0; channel < channels; ++channel)
        levels[channel] = GetMeterLevel(GetBufferMeanSquareChan(channel, buffer, frames, channels));
    return levels;
}

void LSoundPeakLimit(int* buffer, int count) {
    for (int i = 0; i < count; ++i)
        buffer[i] = std::clamp(buffer[i], kLowestPcm16, kHighestPcm16);
}

void GainAudioBufferQuick(int gain, int* buffer, int count) {
    for (int i = 0; i < count; ++i)
        buffer[i] = WrappingGain(gain, buffer[i]);
}

void GainAudioBufferQuickChan(int channel, int gain, int* buffer, int frames,
                              std::uint8_t channels) {
    for (std::ptrdiff_t i = 0; i < frames; ++i) {
        int& sample = buffer[i * channels + channel];
        sample = WrappingGain(gain, sample);
    }
}
