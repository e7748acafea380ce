// Factories that fit a source to what a consumer needs. Each returns the input itself when it is
// not good or nothing needs converting.
#pragma once

#include "sound/sound_source.h"

// 1 to 2 and 2 to 1 channels; any other pair returns the input.
class LSPConvChannels {
public:
    explicit LSPConvChannels(unsigned char channels) : channels_(channels) {}
    LSoundSource OpenSource(const LSoundSource& source) const;

private:
    unsigned char channels_;
};

// Downwards, ratios above 4 go through a stage at twice the target rate, and those from 16 on first
// through one at four times it. Upwards, ratios above 32 go first through one at 16 times the
// source's rate.
class LSPConvertRate {
public:
    explicit LSPConvertRate(int rate) : rate_(rate) {}
    LSoundSource OpenSource(const LSoundSource& source) const;

private:
    int rate_;
};

// Wraps every good source; the limit is capped at 4194303.
class LSPPeakLimit {
public:
    explicit LSPPeakLimit(int limit) : limit_(limit) {}
    LSoundSource OpenSource(const LSoundSource& source) const;

private:
    int limit_;
};

// The same without its compromises (convert_rate_fine.h), for rates of 100 to 1,000,000; else as
// that.
class LSPConvertRateFine {
public:
    explicit LSPConvertRateFine(int rate) : rate_(rate) {}
    LSoundSource OpenSource(const LSoundSource& source) const;

private:
    int rate_;
};

enum class RateQuality { kFine, kFast };

// Replaces the source in place. Channels are reduced before and added after the rate conversion,
// which so works on the fewest.
void LSPConvertSourceRateChannels(int rate, unsigned char channels, LSoundSource& source,
                                  RateQuality quality = RateQuality::kFine);
