// The GSM 06.10 codec a frame (20 ms) at a time: plain kernels beside those for this processor.
// bench/programs.py sets the whole programs beside another codec.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "formats/gsm_decoder.h"
#include "formats/gsm_encoder.h"

namespace {

constexpr int kFrames = 500;

// A buzz with a gliding pitch: it keeps the search for the lag as busy as speech does.
std::vector<int> Buzz() {
    std::vector<int> samples(kFrames * gsm::kFrameSamples);
    double phase = 0;
    for (std::size_t i = 0; i < samples.size(); i++) {
        phase += 0.1 + 0.03 * std::sin(static_cast<double>(i) / 5000);
        samples[i] = static_cast<int>(150000 * std::sin(phase) + 60000 * std::sin(7 * phase));
    }
    return samples;
}

std::vector<unsigned char> Coded() {
    const std::vector<int> samples = Buzz();
    std::vector<unsigned char> coded(kFrames * kGsmNormalBytes);
    LGSMEncoder encoder;
    for (std::size_t i = 0; i < kFrames; i++)
        encoder.EncodeNormal(&samples[i * gsm::kFrameSamples], &coded[i * kGsmNormalBytes]);
    return coded;
}

void Encode(benchmark::State& state, const LGSMKernels& kernels) {
    const std::vector<int> samples = Buzz();
    LGSMEncoder encoder(kernels);
    unsigned char coded[kGsmNormalBytes];
    std::size_t frame = 0;
    for (auto _ : state) {
        encoder.EncodeNormal(&samples[frame * gsm::kFrameSamples], coded);
        benchmark::DoNotOptimize(coded);
        frame = (frame + 1) % kFrames;
    }
}

void Decode(benchmark::State& state, const LGSMKernels& kernels) {
    const std::vector<unsigned char> coded = Coded();
    LGSMDecoder decoder(kernels);
    int samples[gsm::kFrameSamples];
    std::size_t frame = 0;
    for (auto _ : state) {
        decoder.DecodeFrameNormal(&coded[frame * kGsmNormalBytes], samples);
        benchmark::DoNotOptimize(samples);
        frame = (frame + 1) % kFrames;
    }
}

BENCHMARK_CAPTURE(Encode, plain, GsmPlainKernels());
BENCHMARK_CAPTURE(Encode, fast, GsmFastKernels());
BENCHMARK_CAPTURE(Decode, plain, GsmPlainKernels());
BENCHMARK_CAPTURE(Decode, fast, GsmFastKernels());

}  // namespace

BENCHMARK_MAIN();
