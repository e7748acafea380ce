// Independent witnesses for the rate converter: a plain rendering of the arithmetic, and the tables
// of a script.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct FilterTable {
    int phases = 0;
    int step = 0;
    std::vector<int> rows;
};

inline FilterTable FilterTableFromScript(int inputRate, int outputRate) {
    const std::string command = "python3 '" SOUND_TESTS_FOLDER "/filter_table.py' " +
                                std::to_string(inputRate) + ' ' + std::to_string(outputRate);
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::vector<int> values;
    for (int value = 0; fscanf(pipe.get(), "%d", &value) == 1;)
        values.push_back(value);
    return {values.at(0), values.at(1), {values.begin() + 2, values.end()}};
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
