// Pumps a source into a sink, telling a progress object how far it got.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "foundation/process_result.h"
#include "foundation/progress.h"
#include "sound/convert.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"

struct LPRSourceToSink {
    const char* title = "";  // the first label; borrowed
    LSoundSource source;
    LSoundSink sink;  // finishing it is the caller's business
};

// The source in the sink's rate and channels, limited to what 16 bits hold. Its channels still
// differ from the sink's when one of them has more than two.
LSoundSource AdaptSourceToSink(const LSoundSource& source, const LSoundSinkBase& sink);

// Runs on the calling thread. Done: every frame was handed to the sink. Stopped: the progress
// object asked for it; the sink keeps what it got. Failed: source or sink is not usable and nothing
// was written, or the sink can write no more. Whether the output is whole is known once it is
// finished (see LSoundSinkBase::Finish). A source that is still being produced is followed to its
// end; the fraction stands still meanwhile, since nobody knows the whole.
template <LProgress P>
LProcessResult Process(P& progress, LPRSourceToSink& request) {
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
    source = AdaptSourceToSink(source, *sink);
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
