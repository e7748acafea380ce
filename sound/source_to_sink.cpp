#include "sound/source_to_sink.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "sound/dither.h"

LSoundSource AdaptSourceToSink(const LSoundSource& source, const LSoundSinkBase& sink,
                               RateQuality quality) {
    LSoundSource adapted = source;
    LSPConvertSourceRateChannels(sink.SampleRate(), sink.Channels(), adapted, quality);
    // What cannot pass the limit needs no limiter, and a 16-bit file is then copied bit for bit: a
    // limiter would turn the whole stretch around a -32768 down by a hair.
    if (adapted->PeakMagnitude() > kMaxPcm16Peak)
        adapted = LSPPeakLimit(kMaxPcm16Peak).OpenSource(adapted);
    if (sink.KeepsSixteenBits() && adapted->Status() == SoundStatus::kGood)
        adapted = LSoundSource(new LSRCDither(adapted));
    return adapted;
}

LProcessResult Process(LProgress& progress, LPRSourceToSink& request) {
    if (progress.IsShown()) {
        progress.SetFirstLabel(request.title);
        progress.SetSecondLabel("Please wait...");
        progress.SetFraction(0.0);
    }
    LSoundSource source = request.source;
    const LSoundSink sink = request.sink;
    // Only bit 0 of a sink's status says that it cannot be written.
    if (source->Status() != SoundStatus::kGood || (sink->Status() & 1) != 0)
        return kProcessFailed;
    source = AdaptSourceToSink(source, *sink, request.quality);
    if (source->Status() != SoundStatus::kGood || source->SampleRate() != sink->SampleRate() ||
        source->Channels() != sink->Channels())
        return kProcessFailed;

    constexpr int kWaitMilliseconds = 100;
    const auto left = [&source] {
        return std::int64_t{source->GetEndSample()} - source->GetPositionSample();
    };
    std::int64_t remaining = left();
    bool isGrowing = source->IsStreaming();
    const double step = isGrowing ? 0 : kMaxBlockFrames / static_cast<double>(remaining);
    double fraction = 0.0;
    std::vector<int> block(static_cast<std::size_t>(kMaxBlockFrames) * source->Channels());
    while (remaining > 0 || isGrowing) {
        if (progress.IsToStop())
            return kProcessStopped;
        if (isGrowing) {
            isGrowing = source->IsStreaming();
            remaining = left();
        }
        if (remaining < 1) {
            if (isGrowing)
                source->WaitForStreamingData(kWaitMilliseconds);
            continue;
        }
        const int frames = static_cast<int>(std::min<std::int64_t>(remaining, kMaxBlockFrames));
        source->Read(block.data(), frames);
        sink->Write(block.data(), frames);
        if (sink->WriteError() != 0)
            return kProcessFailed;
        if (progress.IsShown())
            progress.SetFraction(fraction);
        remaining -= frames;
        fraction += step;
    }
    return kProcessDone;
}
