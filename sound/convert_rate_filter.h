// The filter bank of the sample rate converter (convert_rate.h): `phases` rows of 63 coefficients,
// each row summing to about 65536. The converter advances step / phases input frames for each
// output frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "sound/kernels.h"

class LConvertRateBase {
public:
    // Rates are at least 1. wideBand widens the transition for the first of two stages.
    LConvertRateBase(int inputRate, int outputRate, bool wideBand);

    int Phases() const { return phases_; }  // 1 to 255
    int Step() const { return step_; }      // at least 1
    std::int32_t Coefficient(int phase, int tap) const {
        return coefficients_[static_cast<std::size_t>(phase * kFilterTaps + tap)];
    }

protected:
    const std::int32_t* Rows() const { return coefficients_.data(); }
    // Aligned for the kernels; null when a coefficient does not fit.
    const std::int16_t* PackedRows() const { return packed_; }

private:
    void ChoosePhases(double ratio);
    void Design(int inputRate, int outputRate, bool wideBand);
    void Pack();

    std::int32_t phases_ = 1;
    std::int32_t step_ = 1;
    std::vector<std::int32_t> coefficients_;
    std::vector<std::int16_t> packedStorage_;
    const std::int16_t* packed_ = nullptr;
};
