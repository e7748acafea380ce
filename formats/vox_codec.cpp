#include "formats/vox_codec.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr int kSteps = 49;
constexpr int kCodes = 16;
constexpr unsigned kSignBit = 8;
constexpr int kThreshold = 33;  // a code's magnitude grows by one every 33/16 of a step
constexpr int kMaxMagnitude = 7;
constexpr int kReciprocalShift = 36;

// One row a step index, so that a sample costs one look-up each way and no multiplication.
struct VoxRow {
    std::array<int, kCodes> change;         // what a code adds to the predictor
    std::array<std::uint8_t, kCodes> next;  // and the step index after it
};

constexpr std::array<VoxRow, kSteps> MakeRows() {
    std::array<VoxRow, kSteps> rows{};
    for (int index = 0; index < kSteps; ++index) {
        for (int code = 0; code < kCodes; ++code) {
            const auto i = static_cast<std::size_t>(index);
            const auto c = static_cast<std::size_t>(code);
            rows[i].change[c] = LVox::StepTable[i] * LVox::CodeTable[c];
            const int next = index + LVox::StepAdjustTable[c];
            rows[i].next[c] = static_cast<std::uint8_t>(std::clamp(next, 0, kSteps - 1));
        }
    }
    return rows;
}
constexpr std::array<VoxRow, kSteps> kRows = MakeRows();

// Dividing by the step is multiplying by its reciprocal: exact for the distances below 2^20 that
// are asked for.
struct Divider {
    int limit;                 // distance from which the magnitude is at its largest
    std::uint32_t reciprocal;  // of 33 steps
    int step;
};

constexpr std::array<Divider, kSteps> MakeDividers() {
    std::array<Divider, kSteps> dividers{};
    for (std::size_t i = 0; i < kSteps; ++i) {
        const auto divisor = static_cast<std::uint64_t>(kThreshold * LVox::StepTable[i]);
        dividers[i].limit = kMaxMagnitude * kThreshold * LVox::StepTable[i];
        dividers[i].reciprocal =
            static_cast<std::uint32_t>(((1ULL << kReciprocalShift) + divisor - 1) / divisor);
        dividers[i].step = LVox::StepTable[i];
    }
    return dividers;
}
constexpr std::array<Divider, kSteps> kDividers = MakeDividers();
static_assert(kMaxMagnitude * kThreshold * 1552 < 1 << 20);

struct State {
    int index;
    int predicted;
};

inline void Leak(State& state) {
    state.predicted -= state.predicted >> 6;
}

inline int DecodeStep(State& state, unsigned code) {
    const VoxRow& row = kRows[static_cast<std::size_t>(state.index)];
    Leak(state);
    state.predicted += row.change[code];
    state.index = row.next[code];
    return state.predicted;
}

inline unsigned EncodeStep(State& state, int sample) {
    const auto index = static_cast<std::size_t>(state.index);
    const Divider& divider = kDividers[index];
    Leak(state);
    const std::int64_t difference = static_cast<std::int64_t>(sample) - state.predicted;
    const std::int64_t distance = difference < 0 ? -difference : difference;
    const auto near = static_cast<std::uint64_t>(std::min<std::int64_t>(distance, divider.limit));
    const auto magnitude = static_cast<unsigned>((near * divider.reciprocal) >> kReciprocalShift);
    // Less than one step below the predictor counts as no difference, which has no sign.
    const unsigned sign = difference <= -divider.step ? kSignBit : 0;
    const unsigned code = sign | magnitude;
    state.predicted += kRows[index].change[code];
    state.index = kRows[index].next[code];
    return code;
}

}  // namespace

int LVox::DecodeCode(unsigned code) {
    State state{stepIndex_, predicted_};
    const int sample = DecodeStep(state, code & (kCodes - 1));
    stepIndex_ = state.index;
    predicted_ = state.predicted;
    return sample;
}

unsigned LVox::EncodeSample(int sample) {
    State state{stepIndex_, predicted_};
    const unsigned code = EncodeStep(state, sample);
    stepIndex_ = state.index;
    predicted_ = state.predicted;
    return code;
}

void LVox::DecodeBytes(const std::uint8_t* bytes, int count, int* samples) {
    State state{stepIndex_, predicted_};
    for (int i = 0; i < count; ++i) {
        const unsigned byte = bytes[i];
        samples[2 * i] = DecodeStep(state, byte >> 4);
        samples[2 * i + 1] = DecodeStep(state, byte & 15);
    }
    stepIndex_ = state.index;
    predicted_ = state.predicted;
}

void LVox::EncodeBytes(const int* samples, std::uint8_t* bytes, int count) {
    State state{stepIndex_, predicted_};
    for (int i = 0; i < count; ++i) {
        const unsigned high = EncodeStep(state, samples[2 * i]);
        const unsigned low = EncodeStep(state, samples[2 * i + 1]);
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    stepIndex_ = state.index;
    predicted_ = state.predicted;
}
