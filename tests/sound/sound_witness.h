// Independent witnesses for the converters: a plain rendering of the arithmetic, and the tables of
// a script.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <vector>

// What a command prints.
inline std::string RunCommand(const std::string& command) {
    std::string output;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::array<char, 65536> part;
    while (pipe != nullptr) {
        const std::size_t size = fread(part.data(), 1, part.size(), pipe.get());
        if (size == 0)
            break;
        output.append(part.data(), size);
    }
    return output;
}

struct FilterTable {
    int phases = 0;
    int step = 0;
    std::vector<int> rows;
};

inline FilterTable FilterTableFromScript(int inputRate, int outputRate, bool wideBand) {
    const auto script = std::filesystem::path(SOUND_TESTS_FOLDER) / "filter_table.py";
    std::ostringstream command;
    command << "python3 '" << script.string() << "' " << inputRate << ' ' << outputRate << ' '
            << (wideBand ? 1 : 0);
    std::istringstream output(RunCommand(command.str()));
    FilterTable table;
    output >> table.phases >> table.step;
    for (int value = 0; output >> value;)
        table.rows.push_back(value);
    return table;
}

// One channel through the filter, frame by frame, on a history of the full size.
class ReferenceResampler {
public:
    ReferenceResampler(FilterTable table, std::vector<int> input)
        : table_(std::move(table)), input_(std::move(input)), history_(32768 + 63) {}

    int Next() {
        while (read_ + 63 > write_)
            Refill();
        std::array<std::int64_t, 2> sums{};
        for (std::size_t k = 0; k < 63; ++k)
            sums[k / 32] += std::int64_t{history_[static_cast<std::size_t>(read_) + k]} *
                            table_.rows[static_cast<std::size_t>(phase_) * 63 + k];
        const std::int64_t both = std::clamp<std::int64_t>(
            (sums[0] >> 1) + (sums[1] >> 1) + (1 << (15 - shift_)) / 2, INT32_MIN, INT32_MAX);
        phase_ += table_.step;
        read_ += phase_ / table_.phases;
        phase_ %= table_.phases;
        return static_cast<int>(both) >> (15 - shift_);
    }

private:
    void Refill() {
        if (write_ > 32511) {
            std::copy(history_.begin() + write_ - 63, history_.begin() + write_, history_.begin());
            read_ -= write_ - 63;
            write_ = 63;
        }
        const int frames = std::min(8192, 32768 - write_);
        const int first = std::max(write_ - 63, 0);
        for (int i = first; i < write_; ++i)
            At(i) <<= shift_;
        for (int i = 0; i < frames; ++i, ++next_)
            At(write_ + i) = next_ < input_.size() ? input_[next_] : 0;
        write_ += frames;
        int peak = 0;
        for (int i = first; i < write_; ++i)
            peak = std::max(peak, std::abs(At(i)));
        for (shift_ = 0; (peak >> shift_) > 32767;)
            ++shift_;
        for (int i = first; i < write_ && shift_ > 0; ++i)
            At(i) = (At(i) + (1 << (shift_ - 1))) >> shift_;
    }
    int& At(int index) { return history_[static_cast<std::size_t>(index)]; }

    FilterTable table_;
    std::vector<int> input_;
    std::vector<int> history_;
    std::size_t next_ = 0;
    int write_ = 32;
    int read_ = 0;
    int phase_ = 0;
    int shift_ = 0;
};

inline std::vector<int> RandomSamples(std::size_t count, int peak, unsigned seed) {
    std::mt19937 engine(seed);
    std::uniform_int_distribution<int> distribution(-peak, peak);
    std::vector<int> samples(count);
    for (int& sample : samples)
        sample = distribution(engine);
    return samples;
}

inline std::vector<int> Tone(double hertz, int rate, int frames, double amplitude) {
    std::vector<int> samples(static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i)
        samples[static_cast<std::size_t>(i)] = static_cast<int>(
            std::lround(amplitude * std::sin(2 * std::numbers::pi * hertz * i / rate)));
    return samples;
}

// Amplitude of one frequency, in cycles per sample, under a Hann window; the ends are left out.
inline double AmplitudeAt(const std::vector<int>& samples, double cyclesPerSample) {
    const std::size_t skip = samples.size() / 8;
    const std::size_t count = samples.size() - 2 * skip;
    double real = 0;
    double imaginary = 0;
    double weights = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double place = static_cast<double>(i) / static_cast<double>(count);
        const double weight = 1 - std::cos(2 * std::numbers::pi * place);
        const double angle = 2 * std::numbers::pi * cyclesPerSample * static_cast<double>(i);
        real += weight * samples[skip + i] * std::cos(angle);
        imaginary += weight * samples[skip + i] * std::sin(angle);
        weights += weight;
    }
    return 2 * std::hypot(real, imaginary) / weights;
}
