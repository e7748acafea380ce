// Sample rate conversion without compromise, by libsoxr: the ratio is exact, what it adds lies 120
// dB below full scale, and all up to 0.95 of half the lower rate passes.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "sound/sound_source.h"

struct soxr;

// Position and end are in output frames. The stream does not depend on how it is read, and is the
// same from a sought frame on. While the inner source streams, the end stays so far behind that no
// frame is made from data that has not arrived. While it winds back, the end stays ahead of the
// position until what is held has been heard.
class LSRCConvertRateFine final : public LSoundProcessBase {
public:
    // Both rates are among those that CanConvert; a system without memory makes kInvalidFormat.
    LSRCConvertRateFine(const LSoundSource& inner, int rate);
    static bool CanConvert(int inputRate, int outputRate);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override;
    int GetEndSample() const override;
    void Seek(int frame) override;
    int OriginFrame(int frame) const override;

private:
    struct SoxrDeleter {
        void operator()(soxr* converter) const;
    };
    using Converter = std::unique_ptr<soxr, SoxrDeleter>;

    Converter Open() const;
    int MeasureLag() const;
    int RefillFrames() const;
    void Refill();
    std::int64_t HeldFrames() const;  // made and not read
    bool IsWindingBack() const { return blockEnd_ < blockStart_; }
    int Scale(std::int64_t inputFrames) const;

    std::int64_t inputRate_;  // both without their common factors
    std::int64_t outputRate_;
    Converter converter_;
    int lag_ = 0;                  // input frames that it may hold back; of streaming sources
    std::vector<int> input_;       // one block of the inner source
    std::vector<int> made_;        // output frames, those from nextMade_ on not read yet
    std::size_t nextMade_ = 0;     // samples
    std::int64_t toDrop_ = 0;      // output frames in front of the one sought
    std::int64_t silence_ = 0;     // output frames of a lead-in, heard before anything else
    std::int64_t fed_ = 0;         // input frames since the start or the last seek
    std::int64_t taken_ = 0;       // output frames, those dropped included
    std::int64_t blockStart_ = 0;  // positions of the inner source around the last refill
    std::int64_t blockEnd_ = 0;
    int blockFrames_ = 0;
};
