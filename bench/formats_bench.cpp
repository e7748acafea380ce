// Conversion and codec kernels, in samples a second, on blocks the size the pipeline uses.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "formats/sample_formats.h"
#include "formats/vox_codec.h"
#include "sound/sound_source.h"

namespace {

// Speech-like levels: loud and soft stretches, so that G.711 and ADPCM meet all their segments.
std::vector<int> Signal() {
    std::vector<int> signal(kMaxBlockFrames);
    for (std::size_t i = 0; i < signal.size(); ++i) {
        const double t = static_cast<double>(i);
        const double envelope = 0.5 + 0.5 * std::sin(t / 900);
        signal[i] = static_cast<int>(480000 * envelope * std::sin(t / 7 + std::sin(t / 31)));
    }
    return signal;
}

void CountSamples(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * kMaxBlockFrames);
}

template <typename Stored>
void In(benchmark::State& state) {
    std::vector<int> samples = Signal();
    std::vector<Stored> stored(samples.size());
    ConvertSamplesOut(samples.data(), stored.data(), kMaxBlockFrames);
    for (auto _ : state) {
        ConvertSamplesIn(stored.data(), samples.data(), kMaxBlockFrames);
        benchmark::ClobberMemory();
    }
    CountSamples(state);
}

template <typename Stored>
void Out(benchmark::State& state) {
    const std::vector<int> samples = Signal();
    std::vector<Stored> stored(samples.size());
    for (auto _ : state) {
        ConvertSamplesOut(samples.data(), stored.data(), kMaxBlockFrames);
        benchmark::ClobberMemory();
    }
    CountSamples(state);
}

void VoxEncode(benchmark::State& state) {
    const std::vector<int> samples = Signal();
    std::vector<std::uint8_t> bytes(samples.size() / 2);
    LVox vox;
    for (auto _ : state) {
        vox.EncodeBytes(samples.data(), bytes.data(), kMaxBlockFrames / 2);
        benchmark::ClobberMemory();
    }
    CountSamples(state);
}

void VoxDecode(benchmark::State& state) {
    std::vector<int> samples = Signal();
    std::vector<std::uint8_t> bytes(samples.size() / 2);
    LVox encoder;
    encoder.EncodeBytes(samples.data(), bytes.data(), kMaxBlockFrames / 2);
    LVox decoder;
    for (auto _ : state) {
        decoder.DecodeBytes(bytes.data(), kMaxBlockFrames / 2, samples.data());
        benchmark::ClobberMemory();
    }
    CountSamples(state);
}

BENCHMARK(In<LSF16>);
BENCHMARK(In<LSFBE16>);
BENCHMARK(In<LSFS8>);
BENCHMARK(In<LSFU8>);
BENCHMARK(In<LSFF32>);
BENCHMARK(In<LSFFRE32>);
BENCHMARK(In<LSFULAW>);
BENCHMARK(In<LSFALAW>);
BENCHMARK(Out<LSF16>);
BENCHMARK(Out<LSFBE16>);
BENCHMARK(Out<LSFS8>);
BENCHMARK(Out<LSFU8>);
BENCHMARK(Out<LSFF32>);
BENCHMARK(Out<LSFFRE32>);
BENCHMARK(Out<LSFULAW>);
BENCHMARK(Out<LSFALAW>);
BENCHMARK(VoxEncode);
BENCHMARK(VoxDecode);

}  // namespace

BENCHMARK_MAIN();
