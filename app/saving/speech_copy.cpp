#include "app/saving/speech_copy.h"

#include "formats/pipe16_sink.h"

namespace {

// More than a block takes that is under way.
constexpr unsigned int kLastBlockMilliseconds = 1000;

// What the work sees of the dialog.
class CopyProgress final : public LSilentProgress {
public:
    CopyProgress(const LThread& thread, std::atomic<double>& fraction)
        : thread_(thread), fraction_(fraction) {}
    bool IsShown() const override { return true; }
    void SetFraction(double fraction) override { fraction_ = fraction; }
    bool IsToStop() override { return thread_.IsStopping(); }

private:
    const LThread& thread_;
    std::atomic<double>& fraction_;
};

}  // namespace

void SpeechCopy::ThreadFunction() {
    CopyProgress progress(*this, fraction_);
    result_ = Process(progress, request_);
    error_ = request_.sink->Finish();
    if (error_ != 0 && result_ == kProcessDone)
        result_ = kProcessFailed;
    done_.Signal();
}

LProcessResult SpeechCopy::End() {
    auto* encoder = dynamic_cast<LPipe16Sink*>(request_.sink.Get());
    if (encoder != nullptr && IsRunning() && !Done().WaitSignal(kLastBlockMilliseconds))
        encoder->Interrupt();
    Join();
    return result_;
}

LProcessResult Process(LProgress& progress, SpeechCopy& copy) {
    constexpr unsigned int kStepMilliseconds = 150;
    progress.SetFirstLabel("Saving File");
    progress.SetSecondLabel("Please wait...");
    copy.Start(0);
    LProcessResult waited = kProcessFailed;
    while (waited == kProcessFailed) {
        waited = progress.ProcessWaitSignal(copy.Done(), kStepMilliseconds);
        progress.SetFraction(copy.Fraction());
    }
    if (waited == kProcessStopped)
        copy.StopThreadSoon();
    const LProcessResult result = copy.End();
    return waited == kProcessStopped ? waited : result;
}
