#include "sound/source_to_sink.h"

LSoundSource AdaptSourceToSink(const LSoundSource& source, const LSoundSinkBase& sink) {
    LSoundSource adapted = source;
    LSPConvertSourceRateChannels(sink.SampleRate(), sink.Channels(), adapted);
    return LSPPeakLimit(kMaxPcm16Peak).OpenSource(adapted);
}
