// Speech on its way into a file: copied by a thread of its own, since an encoder that hangs and a
// disk that stands still hold up whoever writes to them.
#pragma once

#include <atomic>

#include "foundation/threads/progress.h"
#include "foundation/threads/thread.h"
#include "sound/source_to_sink.h"

// Source and sink are the thread's until Process has returned.
class SpeechCopy final : public LThread {
public:
    SpeechCopy(const LSoundSource& source, const LSoundSink& sink)
        : request_{"Saving File", source, sink} {}
    ~SpeechCopy() override { End(); }

    LSignalObjectRef Done() const { return done_.Ref(); }
    double Fraction() const { return fraction_; }
    // Waits for the thread; one that a hanging encoder holds up takes the encoder with it. Its
    // result: done means that the sink is finished and its output whole.
    LProcessResult End();
    int Error() const { return error_; }  // errno of what went wrong, 0 when unknown; after End

private:
    void ThreadFunction() override;

    LPRSourceToSink request_;
    std::atomic<double> fraction_ = 0;
    LSignalObject done_;
    LProcessResult result_ = kProcessFailed;
    int error_ = 0;
};

LProcessResult Process(LProgress& progress, SpeechCopy& copy);
