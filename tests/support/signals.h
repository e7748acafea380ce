// Samples to feed to what is tested, and a look at what comes out.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <random>
#include <vector>

inline std::vector<int> RandomSamples(std::size_t count, int peak, unsigned seed) {
    std::mt19937 engine(seed);
    std::uniform_int_distribution<int> distribution(-peak, peak);
    std::vector<int> samples(count);
    std::generate(samples.begin(), samples.end(), [&] { return distribution(engine); });
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
    std::complex<double> sum;
    for (std::size_t i = 0; i < count; ++i) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(i);
        const double weight = 1 - std::cos(turn / static_cast<double>(count));
        sum += weight * samples[skip + i] * std::polar(1.0, turn * cyclesPerSample);
    }
    return 2 * std::abs(sum) / static_cast<double>(count);  // the mean weight is 1
}
