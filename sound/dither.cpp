#include "sound/dither.h"

#include <algorithm>

namespace {

constexpr int kStepBits = 4;
constexpr int kStep = 1 << kStepBits;
constexpr int kLowest = -kMaxPcm16Peak - kStep;

}  // namespace

void LSRCDither::Read(int* buffer, int frames) {
    inner_->Read(buffer, frames);
    const int samples = frames * channels_;
    int extra = 0;
    for (int i = 0; i < samples; ++i)
        extra |= buffer[i];
    if ((extra & (kStep - 1)) == 0)
        return;
    // The limiter may pass its limit by two.
    constexpr int kShift = 32 - 10;  // 10 bits of each draw, six of them below the sample's own
    for (int i = 0; i < samples; ++i) {
        random_ = random_ * 1664525 + 1013904223;
        const auto first = static_cast<int>(random_ >> kShift);
        random_ = random_ * 1664525 + 1013904223;
        const auto second = static_cast<int>(random_ >> kShift);
        const std::int64_t fine = std::int64_t{buffer[i]} * 64 + first - second + kStep * 32;
        buffer[i] = static_cast<int>(std::clamp<std::int64_t>(
            (fine >> (kStepBits + 6)) << kStepBits, kLowest, kMaxPcm16Peak));
    }
}
