#include "sound/convert.h"

#include <algorithm>

#include "sound/convert_channels.h"
#include "sound/convert_rate.h"
#include "sound/convert_rate_fine.h"
#include "sound/peak_limit.h"

LSoundSource LSPConvChannels::OpenSource(const LSoundSource& source) const {
    if (source->Status() != SoundStatus::kGood)
        return source;
    if (source->Channels() == 2 && channels_ == 1)
        return LSoundSource(new LSRCConvStereoMono(source));
    if (source->Channels() == 1 && channels_ == 2)
        return LSoundSource(new LSRCConvMonoStereo(source));
    return source;
}

LSoundSource LSPConvertRate::OpenSource(const LSoundSource& source) const {
    if (source->Status() != SoundStatus::kGood || source->SampleRate() == rate_)
        return source;
    // So far down, the wide-band stage's cut-off would fall to nothing or below it.
    if (rate_ > 0 && source->SampleRate() / 16 >= rate_)
        return OpenSource(LSPConvertRate(rate_ * 4).OpenSource(source));
    if (rate_ > 0 && source->SampleRate() / 4 > rate_) {
        const LSoundSource between(new LSRCConvertRate(source, rate_ * 2, true));
        return LSoundSource(new LSRCConvertRate(between, rate_, false));
    }
    // So far up, a filter has too few phases for the ratio; 16 is met exactly.
    if (rate_ / 32 > source->SampleRate())
        return OpenSource(LSPConvertRate(source->SampleRate() * 16).OpenSource(source));
    return LSoundSource(new LSRCConvertRate(source, rate_, false));
}

LSoundSource LSPConvertRateFine::OpenSource(const LSoundSource& source) const {
    if (source->Status() != SoundStatus::kGood || source->SampleRate() == rate_)
        return source;
    if (LSRCConvertRateFine::CanConvert(source->SampleRate(), rate_))
        return LSoundSource(new LSRCConvertRateFine(source, rate_));
    return LSPConvertRate(rate_).OpenSource(source);
}

LSoundSource LSPPeakLimit::OpenSource(const LSoundSource& source) const {
    if (source->Status() != SoundStatus::kGood)
        return source;
    return LSoundSource(new LSRCPeakLimit(source, std::min(limit_, LSRCPeakLimit::kHighestLimit)));
}

void LSPConvertSourceRateChannels(int rate, unsigned char channels, LSoundSource& source,
                                  RateQuality quality) {
    if (source->Channels() > channels)
        source = LSPConvChannels(channels).OpenSource(source);
    if (source->SampleRate() != rate)
        source = quality == RateQuality::kFine ? LSPConvertRateFine(rate).OpenSource(source)
                                               : LSPConvertRate(rate).OpenSource(source);
    if (source->Channels() != channels)
        source = LSPConvChannels(channels).OpenSource(source);
}
