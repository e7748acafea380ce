#include "sound/source_to_sink.h"

LSoundSource AdaptSourceToSink(const LSoundSource& source, const LSoundSinkBase& sink) {
    LSoundSource adapted = source;
    LSPConvertSourceRateChannels(sink.SampleRate(), sink.Channels(), adapted);
    // What cannot pass the limit needs no limiter, and a 16-bit file is then copied bit for bit: a
    // limiter would turn the whole stretch around a -32768 down by a hair.
    if (adapted->PeakMagnitude() <= kMaxPcm16Peak)
        return adapted;
    return LSPPeakLimit(kMaxPcm16Peak).OpenSource(adapted);
}
