// A text as a sound source: it can be read as soon as its first sentence is spoken.
#pragma once

#include <optional>
#include <string>

#include "foundation/files/text_buffer.h"
#include "foundation/processes/process_result.h"
#include "foundation/threads/thread.h"
#include "sound/sound_source.h"
#include "speech/speech_reading.h"
#include "speech/synthesis.h"

// Construction blocks until the first piece is there, 60 s at most. Without a sound (no engine,
// nothing to say, nowhere to write) it reads as silence of length 0 with status 0; Outcome() tells
// why. The rest is spoken on the source's own thread (nice 10), which never touches the inner
// source, never far ahead of what is read.
class LTTSSoundSource final : private LThread, public LSoundSourceBase {
public:
    // text is copied.
    LTTSSoundSource(const char* text, int voice);
    ~LTTSSoundSource() override;  // asks the thread to stop, joins it and deletes the WAV file

    void Read(int* buffer, int frames) override { inner_->Read(buffer, frames); }
    int GetPositionSample() const override { return inner_->GetPositionSample(); }
    int GetEndSample() const override { return inner_->GetEndSample(); }
    void Seek(int frame) override { inner_->Seek(frame); }
    bool IsStreaming() const override { return inner_->IsStreaming(); }
    void WaitForStreamingData(int milliseconds) override {
        inner_->WaitForStreamingData(milliseconds);
    }

    // How the whole went, once IsStreaming() is false; until then kSpoken.
    SynthesisOutcome Outcome() const;

private:
    void ThreadFunction() override;
    bool ChoosePath();
    void OpenInner();

    LTTS request_;  // its done signal tells that all is spoken
    std::optional<SpeechReading> reading_;
    LSoundSource inner_;
    char path_[kTextBufferSize] = "";
};

LSoundSource OpenTTSSoundSource(const char* text, int voice);
