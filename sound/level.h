// Levels: whole decibels, a set of them per channel, and the routines that measure and scale blocks
// of samples.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>

// Whole decibels; -127 is silence.
class LDB {
public:
    static constexpr int kSilence = -127;
    static constexpr int kHighest = 127;
    static constexpr int kUnityFactor = 16777216;  // 0 dB in both tables: 24 fraction bits

    constexpr LDB() = default;
    constexpr explicit LDB(int decibels)
        : value_(static_cast<std::int8_t>(std::clamp(decibels, kSilence, kHighest))) {}

    constexpr int Value() const { return value_; }
    constexpr bool operator==(const LDB&) const = default;
    constexpr auto operator<=>(const LDB&) const = default;

    // Digits make the magnitude, the first "-" the sign, a second "-" silence; all else is ignored.
    // Clamped. Null reads as 0.
    void SetText(const char* text);

    // Factors of every decibel value, saturated at 2^31 - 1; silence has factor 0.
    class LDBTablesClass {
    public:
        LDBTablesClass();
        int Amplitude(LDB level) const { return amplitude_[Index(level)]; }
        int Power(LDB level) const { return power_[Index(level)]; }

    private:
        static constexpr int kFirst = -128;
        static std::size_t Index(LDB level) {
            return static_cast<std::size_t>(level.Value() - kFirst);
        }
        std::array<std::int32_t, 256> amplitude_;
        std::array<std::int32_t, 256> power_;
    };
    static const LDBTablesClass tab;  // built before main; not for other static initialisers

private:
    std::int8_t value_ = 0;
};
static_assert(sizeof(LDB) == 1);

// One level per channel. Copies carry the count and exactly that many levels.
class LDBMC {
public:
    LDBMC() = default;
    explicit LDBMC(std::uint8_t channels, LDB level = LDB(LDB::kSilence)) : channels_(channels) {
        std::fill_n(levels_.begin(), channels, level);
    }
    LDBMC(const LDBMC& other) { *this = other; }
    LDBMC& operator=(const LDBMC& other) {
        channels_ = other.channels_;
        if (this != &other)
            std::copy_n(other.levels_.begin(), channels_, levels_.begin());
        return *this;
    }

    std::uint8_t Channels() const { return channels_; }
    LDB operator[](int channel) const { return levels_[static_cast<std::size_t>(channel)]; }
    LDB& operator[](int channel) { return levels_[static_cast<std::size_t>(channel)]; }

private:
    std::uint8_t channels_ = 0;
    std::array<LDB, 255> levels_{};
};

// Buffer routines: integers only, no allocation. A negative count is an empty buffer; `channel` is
// below `channels`.

// Largest sample or negated sample, 0 for an empty buffer. -2^31 counts as 2^31 - 1.
int GetBufferPeak(const int* buffer, int frames, std::uint8_t channels);
int GetBufferPeakChan(int channel, const int* buffer, int frames, std::uint8_t channels);

// Mean of (sample >> 5) squared; the low 13 bits of the sum are dropped before dividing (meters
// depend on that floor). Saturates at 2^31 - 1.
int GetBufferMeanSquare(const int* buffer, int frames, std::uint8_t channels);
int GetBufferMeanSquareChan(int channel, const int* buffer, int frames, std::uint8_t channels);

// What a meter shows for a mean square: -127 for 0, else 10 log10(m / 8388626) rounded half away
// from zero.
LDB GetMeterLevel(int meanSquare);
// Meter level of every channel of a block.
LDBMC GetBufferLevels(const int* buffer, int frames, std::uint8_t channels);

// Clips count samples to what 16 bits can hold, -524288 to 524272.
void LSoundPeakLimit(int* buffer, int count);

// sample * gain / 512 in wrapping 32-bit arithmetic.
void GainAudioBufferQuick(int gain, int* buffer, int count);
void GainAudioBufferQuickChan(int channel, int gain, int* buffer, int frames,
                              std::uint8_t channels);
