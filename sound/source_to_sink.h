// Pumps a source into a sink, telling a progress object how far it got.
#pragma once

#include "foundation/processes/process_result.h"
#include "foundation/threads/progress.h"
#include "sound/convert.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"

struct LPRSourceToSink {
    const char* title = "";  // the first label; borrowed
    LSoundSource source;
    LSoundSink sink;  // finishing it is the caller's business
    RateQuality quality = RateQuality::kFine;
};

// The source in the sink's rate and channels, limited to what 16 bits hold. Its channels still
// differ from the sink's when one of them has more than two. For a sink that keeps 16 bits, what
// holds more is dithered.
LSoundSource AdaptSourceToSink(const LSoundSource& source, const LSoundSinkBase& sink,
                               RateQuality quality = RateQuality::kFine);

// Runs on the calling thread. Done: every frame was handed to the sink. Stopped: the progress
// object asked for it; the sink keeps what it got. Failed: source or sink is not usable and nothing
// was written, or the sink can write no more. Whether the output is whole is known once it is
// finished (see LSoundSinkBase::Finish). A source that is still being produced is followed to its
// end; the fraction stands still meanwhile, since nobody knows the whole.
LProcessResult Process(LProgress& progress, LPRSourceToSink& request);
