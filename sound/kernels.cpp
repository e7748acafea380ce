#include "sound/kernels.h"

#include <atomic>

#include "sound/kernels_generic.h"
#include "sound/kernels_x86.h"

namespace {

int Finish(std::uint32_t first, std::uint32_t second, std::int64_t halvedBias, int rounding,
           int outputShift) {
    const std::int64_t halves = std::int64_t{static_cast<std::int32_t>(first) >> 1} +
                                (static_cast<std::int32_t>(second) >> 1);
    const auto sum = static_cast<std::uint32_t>(halves + halvedBias + rounding);
    return static_cast<std::int32_t>(sum) >> outputShift;
}

template <typename Sample, typename Coefficient>
std::uint32_t SumProducts(const Sample* samples, const Coefficient* coefficients, int count) {
    std::uint32_t sum = 0;
    for (int i = 0; i < count; ++i)
        sum += static_cast<std::uint32_t>(std::int32_t{samples[i]}) *
               static_cast<std::uint32_t>(std::int32_t{coefficients[i]});
    return sum;
}

void PortableResample(const LNarrowSpan& span) {
    WindowStep step{span.phase};
    for (int frame = 0; frame < span.frames; ++frame, step.Advance(span)) {
        const std::int16_t* const window = span.history + step.offset;
        const std::int16_t* const row = span.rows + step.phase * kPackedRowSize;
        const std::uint32_t first = SumProducts(window, row, kFirstHalfTaps);
        const std::uint32_t second =
            SumProducts(window + kFirstHalfTaps - 1, row + kFirstHalfTaps, kFirstHalfTaps);
        span.out[frame * span.outStride] =
            Finish(first, second, HalvedBias(window), span.rounding, span.outputShift);
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
        const std::int64_t last = window[kFirstHalfTaps - 1];
        const std::int64_t next = window[kFirstHalfTaps];
        const std::uint32_t first = SumProducts(window, row, kFirstHalfTaps) -
                                    static_cast<std::uint32_t>(last * kPackedBias);
        const std::uint32_t second = SumProducts(window + kFirstHalfTaps, row + kFirstHalfTaps,
                                                 kFilterTaps - kFirstHalfTaps) -
                                     static_cast<std::uint32_t>(next * kPackedBias);
        span.out[frame * span.outStride] = Finish(first, second, (last + next) * (kPackedBias / 2),
                                                  span.rounding, span.outputShift);
    }
}
