// The saturating 16- and 32-bit operations in which GSM 06.10 states its arithmetic. A 16-bit word
// is a fraction with 15 bits after the point.
#pragma once

#include <bit>
#include <cstdint>

namespace gsm {

constexpr int kFrameSamples = 160;    // 20 ms at 8000 Hz
constexpr int kSubFrameSamples = 40;  // 5 ms
constexpr int kMinLag = 40;
constexpr int kMaxLag = 120;
constexpr int kOrder = 8;  // reflection coefficients
constexpr int kPulses = 13;

constexpr std::int16_t Saturate(std::int32_t value) {
    return static_cast<std::int16_t>(value < -32768 ? -32768 : value > 32767 ? 32767 : value);
}
constexpr std::int16_t Add(int a, int b) {
    return Saturate(a + b);
}
constexpr std::int16_t Sub(int a, int b) {
    return Saturate(a - b);
}
constexpr std::int16_t Abs(int a) {
    return Saturate(a < 0 ? -a : a);
}
// Fraction products, cut and rounded; both saturate only for -1 times -1.
constexpr std::int16_t Mult(int a, int b) {
    return Saturate((a * b) >> 15);
}
constexpr std::int16_t MultR(int a, int b) {
    return Saturate((a * b + 16384) >> 15);
}

// Left shifts that bring a value other than 0 to 2^30 or more (or to -2^30 or less).
constexpr int Norm(std::int32_t value) {
    return std::countl_zero(static_cast<std::uint32_t>(value < 0 ? ~value : value)) - 1;
}

// The fraction numerator / denominator for 0 <= numerator <= denominator.
constexpr std::int16_t Div(int numerator, int denominator) {
    if (numerator == 0)
        return 0;
    return Saturate((numerator << 15) / denominator);
}

}  // namespace gsm
