// One run of the speech engine: a text becomes a WAV file.
//
// Threads: the caller waits (its progress object decides how); a detached worker runs and reaps the
// engine (engine_process.h). A waiter that gives up has the engine killed with all that it started,
// and an engine dies with this program. Each run writes to a file of its own beside the output
// path, which is renamed onto it only when the run succeeded: the output is always whole.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/processes/process_result.h"
#include "foundation/threads/progress.h"
#include "foundation/threads/signal_object.h"
#include "sound/sound_source.h"
#include "speech/engine_process.h"
#include "speech/speech_engines.h"
#include "speech/voice_manner.h"
#include "speech/voice_table.h"

constexpr unsigned int kSynthesisTimeoutMilliseconds = 20000;

enum class SynthesisOutcome {
    kSpoken,
    kStopped,  // by the user
    kTimedOut,
    kNothingToSay,  // the text holds nothing that can be said; the engine was not started
    kEngineMissing,
    kCannotStart,    // the system has no room for another process or thread
    kNoSound,        // the engine ended without a single sample
    kIncomplete,     // the engine ended before all that it announced was there
    kCannotWrite,    // the text or the sound could not be written
    kTooLong,        // the rest is more than a sound file can hold
    kOtherChannels,  // the sound has another number of channels, which cannot join the rest
};

// One plain sentence for the user; empty for kSpoken and kStopped. With the voice it names what
// that one lacks.
std::string SynthesisMessage(SynthesisOutcome outcome, const Voice& voice = {});

// A request. The texts are borrowed and outlive the run.
struct LTTS {
    const char* text = "";
    const char* outputPath = "";
    int voice = 0;                        // index into the voice table (voice_table.h), clamped
    unsigned char flag = 1;               // always 1
    int speed = 100;                      // SpeedOfEngine's
    std::optional<VoiceManner> manner{};  // else as it is kept with the voice
    LSignalObject done{};                 // signalled when the run has ended, well or not
    LProcessResult result = kProcessFailed;
    SynthesisOutcome outcome = SynthesisOutcome::kNoSound;
};

// The steps around the wait, on the waiter's thread: Start, wait for Finished(), Finish.
class SynthesisRun {
public:
    explicit SynthesisRun(LTTS& request);
    ~SynthesisRun();  // a run that was not finished is ended
    SynthesisRun(const SynthesisRun&) = delete;
    SynthesisRun& operator=(const SynthesisRun&) = delete;

    // False: the engine was not started and the request's outcome says why; Finish is still due.
    bool Start();
    // The same for a text that the voice can take as it stands, instead of the request's. The sound
    // is not delivered to the request's output path, which only says in what folder to work.
    bool StartPrepared(std::string_view text);
    // Before that: starts an engine that loads its voice and waits for the text, for two minutes
    // from the last KeepWaiting on. One that does not wait any more is started anew with the text.
    bool StartWaiting();
    bool IsWaiting() const;
    void KeepWaiting() { process_->KeepWaiting(); }  // while it was waiting
    LSignalObjectRef Finished() const;               // after a good Start only
    // Judges the run, stores result and outcome in the request, signals it done and removes the
    // temporary files.
    LProcessResult Finish(LProcessResult waited);
    // Of a prepared text, once finished and kSpoken; its file has no name any more. To be dropped
    // on the waiter's thread.
    const LSoundSource& Sound() const { return sound_; }
    // What the engine told of its words' times then (spoken_times.h); empty for nothing.
    const std::string& ToldTimes() const { return toldTimes_; }

private:
    bool WriteText(std::string_view text);
    bool ChooseCommand(std::string& command, bool isToWait);
    bool StartEngine(std::string_view text, bool isToWait = false);
    SynthesisOutcome Judge();
    void ReadTimes();
    bool Deliver() const;
    void End();

    LTTS& request_;
    const Voice voice_;
    const SpeechEngine engine_;
    std::string textPath_;      // empty when there is no such file
    std::string soundPath_;     // likewise
    std::string timesPath_;     // likewise
    std::size_t textSize_ = 0;  // of a prepared text
    std::string toldTimes_;
    std::shared_ptr<EngineProcess> process_;
    bool isDelivered_ = true;
    LSoundSource sound_;
};

// Speaks request.text into request.outputPath. Done, stopped by the progress object, or failed
// (request.outcome).
LProcessResult Process(LProgress& progress, LTTS& request);
