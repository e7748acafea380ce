// Kernels of the sound pipeline. Rates are frames of output a second; whole programs beside their
// peers are measured elsewhere.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

#include "sound/convert.h"
#include "sound/kernels.h"
#include "sound/level.h"
#include "sound/source_to_sink.h"
#include "sound/speed.h"

namespace {

// Endless noise at a given peak.
class NoiseSource final : public LSoundSourceBase {
public:
    NoiseSource(int rate, unsigned char channels, int peak)
        : LSoundSourceBase(rate, channels, peak), noise_(std::size_t{kMaxBlockFrames} * channels) {
        std::mt19937 engine(1);
        std::uniform_int_distribution<int> distribution(-peak, peak);
        for (int& sample : noise_)
            sample = distribution(engine);
    }
    void Read(int* buffer, int frames) override {
        std::copy_n(noise_.begin(), frames * Channels(), buffer);
        position_ += frames;
    }
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override { return 1 << 30; }
    void Seek(int frame) override { position_ = frame; }

private:
    std::vector<int> noise_;
    int position_ = 0;
};

void ReadBlocks(benchmark::State& state, const LSoundSource& source) {
    std::vector<int> block(std::size_t{kMaxBlockFrames} * source->Channels());
    for (auto turn : state) {
        source->Read(block.data(), kMaxBlockFrames);
        benchmark::DoNotOptimize(block.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kMaxBlockFrames);
}

void Resample(benchmark::State& state) {
    const auto kernel = static_cast<LKernelChoice>(state.range(3));
    if (!SelectSoundKernels(kernel)) {
        state.SkipWithError("not on this processor");
        return;
    }
    state.SetLabel(SoundKernels().name);
    const auto channels = static_cast<unsigned char>(state.range(2));
    const LSoundSource source(
        new NoiseSource(static_cast<int>(state.range(0)), channels, kMaxPcm16Peak));
    ReadBlocks(state, LSPConvertRate(static_cast<int>(state.range(1))).OpenSource(source));
    SelectSoundKernels(LKernelChoice::kBest);
}
BENCHMARK(Resample)->ArgNames({"from", "to", "channels", "kernel"})->Apply([](auto* bench) {
    for (const int kernel : {1, 2, 3}) {
        bench->Args({16000, 44100, 1, kernel});
        bench->Args({48000, 44100, 2, kernel});
        bench->Args({44100, 22050, 2, kernel});
        bench->Args({48000, 8000, 2, kernel});
    }
});

void Limit(benchmark::State& state) {
    const int peak = state.range(0) != 0 ? 2 * kMaxPcm16Peak : kMaxPcm16Peak;
    state.SetLabel(state.range(0) != 0 ? "reducing" : "unity");
    ReadBlocks(
        state,
        LSPPeakLimit(kMaxPcm16Peak).OpenSource(LSoundSource(new NoiseSource(48000, 2, peak))));
}
BENCHMARK(Limit)->Arg(0)->Arg(1);

void Channels(benchmark::State& state) {
    const auto from = static_cast<unsigned char>(state.range(0));
    const auto to = static_cast<unsigned char>(3 - from);
    ReadBlocks(state, LSPConvChannels(to).OpenSource(
                          LSoundSource(new NoiseSource(48000, from, kMaxPcm16Peak))));
}
BENCHMARK(Channels)->Arg(1)->Arg(2);

void Speed(benchmark::State& state) {
    const double factor = static_cast<double>(state.range(0)) / 10;
    LSoundSource source = LSPSpeed(factor, factor, LSoundTime(0))
                              .OpenSource(LSoundSource(new NoiseSource(44100, 2, kMaxPcm16Peak)));
    source->Seek(1 << 29);
    ReadBlocks(state, source);
}
BENCHMARK(Speed)->Arg(15)->Arg(70)->Arg(-30);

void Measure(benchmark::State& state) {
    NoiseSource noise(48000, 2, kMaxPcm16Peak);
    std::vector<int> block(std::size_t{2} * kMaxBlockFrames);
    noise.Read(block.data(), kMaxBlockFrames);
    for (auto turn : state) {
        benchmark::DoNotOptimize(state.range(0) != 0
                                     ? GetBufferMeanSquare(block.data(), kMaxBlockFrames, 2)
                                     : GetBufferPeak(block.data(), kMaxBlockFrames, 2));
    }
    state.SetLabel(state.range(0) != 0 ? "mean square" : "peak");
    state.SetItemsProcessed(state.iterations() * kMaxBlockFrames);
}
BENCHMARK(Measure)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
