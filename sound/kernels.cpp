#include "sound/kernels.h"

#include <algorithm>
#include <atomic>

#include "sound/kernels_generic.h"
#include "sound/kernels_x86.h"

namespace {

// Sums of the products of either half, without any bias.
int Finish(std::int64_t first, std::int64_t second, int rounding, int outputShift) {
    const std::int64_t sum = (first >> 1) + (second >> 1) + rounding;
    return static_cast<int>(std::clamp<std::int64_t>(sum, INT32_MIN, INT32_MAX)) >> outputShift;
}

template <typename Sample, typename Coefficient>
std::int64_t SumProducts(const Sample* samples, const Coefficient* coefficients, int count) {
    std::int64_t sum = 0;
    for (int i = 0; i < count; ++i)
        sum += std::int64_t{samples[i]} * coefficients[i];
    return sum;
}

void PortableResample(const LNarrowSpan& span) {
    WindowStep step{span.phase};
    for (int frame = 0; frame < span.frames; ++frame, step.Advance(span)) {
        const std::int16_t* const window = span.history + step.offset;
        const std::int16_t* const row = span.rows + step.phase * kPackedRowSize;
        const std::int64_t first =
            SumProducts(window, row, kFirstHalfTaps) + std::int64_t{2} * BiasOf(window).first;
        const std::int64_t second =
            SumProducts(window + kFirstHalfTaps - 1, row + kFirstHalfTaps, kFirstHalfTaps) +
            std::int64_t{2} * BiasOf(window).second;
        span.out[frame * span.outStride] = Finish(first, second, span.rounding, span.outputShift);
    }
}

constexpr LSoundKernels kPortableKernels = {"portable",    GenericPeak,         PortableResample,
                                            GenericNarrow, GenericMonoToStereo, GenericStereoToLeft,
                                            GenericGain};

const LSoundKernels* Find(LKernelChoice choice) {
    switch (choice) {
        case LKernelChoice::kPortable:
            return &kPortableKernels;
#if defined(__x86_64__)
        case LKernelChoice::kSse2:
            return &kSse2Kernels;
        case LKernelChoice::kAvx2:
            return __builtin_cpu_supports("avx2") ? &kAvx2Kernels : nullptr;
        case LKernelChoice::kBest:
            return __builtin_cpu_supports("avx2") ? &kAvx2Kernels : &kSse2Kernels;
#else
        case LKernelChoice::kBest:
            return &kPortableKernels;
#endif
        default:
            return nullptr;
    }
}

std::atomic<const LSoundKernels*> currentKernels{nullptr};

}  // namespace

const LSoundKernels& SoundKernels() {
    const LSoundKernels* kernels = currentKernels.load(std::memory_order_acquire);
    if (kernels == nullptr) {
        kernels = Find(LKernelChoice::kBest);
        currentKernels.store(kernels, std::memory_order_release);
    }
    return *kernels;
}

bool SelectSoundKernels(LKernelChoice choice) {
    const LSoundKernels* const kernels = Find(choice);
    if (kernels != nullptr)
        currentKernels.store(kernels, std::memory_order_release);
    return kernels != nullptr;
}

void ResampleWide(const LWideSpan& span) {
    WindowStep step{span.phase};
    for (int frame = 0; frame < span.frames; ++frame, step.Advance(span)) {
        const std::int32_t* const window = span.history + step.offset;
        const std::int32_t* const row = span.rows + step.phase * kFilterTaps;
        const std::int64_t first = SumProducts(window, row, kFirstHalfTaps);
        const std::int64_t second = SumProducts(window + kFirstHalfTaps, row + kFirstHalfTaps,
                                                kFilterTaps - kFirstHalfTaps);
        span.out[frame * span.outStride] = Finish(first, second, span.rounding, span.outputShift);
    }
}
