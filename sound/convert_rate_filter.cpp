#include "sound/convert_rate_filter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

namespace {

constexpr int kMaxPhases = 255;
constexpr double kGoodRatioError = 0.001;
constexpr int kCentreTap = 31;
constexpr std::uintptr_t kRowAlignment = 64;

struct FilterShape {
    double angle;   // pi times the cut-off
    double centre;  // coefficient at distance 0
    double beta;    // of the Kaiser window
    double scale;   // centre over the window's value there
};

FilterShape ChooseShape(int inputRate, int outputRate, bool wideBand) {
    if (inputRate < outputRate)
        return {3.0630528372500483, 63897.6, 2.12, 25749.40128619654};
    const double ratio = static_cast<double>(outputRate) / static_cast<double>(inputRate);
    const double cutOff = ratio - (wideBand ? 0.09375 : 0.046875);
    const double centre = 65536.0 * cutOff;
    return {std::numbers::pi * cutOff, centre, 4.538, centre / 18.072136678571777};
}

// Seven terms of the modified Bessel function of order 0; the table depends on their number.
double BesselI0(double argument) {
    const double square = argument * argument;
    double term = 1.0;
    double sum = 1.0;
    for (int k = 1; k <= 6; ++k) {
        term *= square / (4.0 * k * k);
        sum += term;
    }
    return sum;
}

std::int32_t Round(double value) {
    return static_cast<std::int32_t>(std::round(value));
}

std::int32_t FilterCoefficient(const FilterShape& shape, double distance) {
    const double angle = shape.angle * distance;
    if (distance == 0.0 || angle == 0.0)
        return Round(shape.centre);
    const double sinc = std::sin(angle) / angle;
    const double window = BesselI0(shape.beta * std::sqrt(1.0 - distance * distance / 1024.0));
    return Round(shape.scale * sinc * window);
}

bool FitsPacked(std::int32_t value) {
    return value >= std::numeric_limits<std::int16_t>::min() &&
           value <= std::numeric_limits<std::int16_t>::max();
}

}  // namespace

LConvertRateBase::LConvertRateBase(int inputRate, int outputRate, bool wideBand) {
    ChoosePhases(static_cast<double>(inputRate) / static_cast<double>(outputRate));
    Design(inputRate, outputRate, wideBand);
    Pack();
}

void LConvertRateBase::ChoosePhases(double ratio) {
    double smallestError = std::numeric_limits<double>::infinity();
    for (int phases = 1; phases <= kMaxPhases; ++phases) {
        // The numerator is cut to 16 bits here, though not in the step below.
        const auto numerator = static_cast<std::uint16_t>(std::llround(ratio * phases));
        const double error = std::abs(ratio - static_cast<double>(numerator) / phases);
        if (error >= smallestError)
            continue;
        smallestError = error;
        phases_ = phases;
        if (error < kGoodRatioError)
            break;
    }
    const double step = std::round(ratio * phases_);
    step_ = static_cast<std::int32_t>(
        std::clamp(step, 1.0, double{std::numeric_limits<std::int32_t>::max()}));
}

void LConvertRateBase::Design(int inputRate, int outputRate, bool wideBand) {
    const FilterShape shape = ChooseShape(inputRate, outputRate, wideBand);
    coefficients_.reserve(static_cast<std::size_t>(phases_ * kFilterTaps));
    for (int phase = 0; phase < phases_; ++phase) {
        const double fraction = static_cast<double>(phase) / phases_;
        for (int tap = 0; tap < kFilterTaps; ++tap)
            coefficients_.push_back(FilterCoefficient(shape, tap - kCentreTap - fraction));
    }
}

void LConvertRateBase::Pack() {
    const auto size = static_cast<std::size_t>(phases_ * kPackedRowSize);
    packedStorage_.assign(size + kRowAlignment / sizeof(std::int16_t), 0);
    const auto address = reinterpret_cast<std::uintptr_t>(packedStorage_.data());
    std::int16_t* const rows =
        packedStorage_.data() + (kRowAlignment - address % kRowAlignment) / sizeof(std::int16_t);
    for (int phase = 0; phase < phases_; ++phase) {
        std::int16_t* row = rows + phase * kPackedRowSize;
        for (int tap = 0; tap < kFilterTaps; ++tap) {
            if (tap == kFirstHalfTaps)
                *row++ = 0;
            const bool isBiased = tap == kFirstHalfTaps - 1 || tap == kFirstHalfTaps;
            const std::int32_t value = Coefficient(phase, tap) - (isBiased ? kPackedBias : 0);
            if (!FitsPacked(value))
                return;
            *row++ = static_cast<std::int16_t>(value);
        }
    }
    packed_ = rows;
}
