// A reading: a text of any length becomes sound piece by piece, and can be heard from its first
// sentence on.
//
// Threads: the owner (the GUI thread in a window) constructs, starts, stops, destroys and waits. A
// producer thread speaks the pieces into one WAV file and, for a listener, keeps no further ahead
// than some seconds. The sources that OpenSource gives belong to whoever reads them, a player's
// thread for example, and may outlive the reading: they then end where the sound ends. What is said
// to be safe from any thread is.
#pragma once

#include <sys/stat.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "foundation/threads/progress.h"
#include "foundation/threads/thread.h"
#include "sound/sound_source.h"
#include "speech/piece_runs.h"
#include "speech/speech_pieces.h"
#include "speech/speech_track.h"
#include "speech/synthesis.h"

class SpeechReading {
public:
    // Text (UTF-8) is the user's; stretches are told as bytes of it. path is the WAV file to write,
    // the engine's own files stand beside it. A file with something in it is replaced, never
    // written over: who still reads that keeps it.
    SpeechReading(std::string text, int voice, std::string path, ReadingUse use);
    // From the byte `begin` on; what stands before it is known, and not spoken.
    SpeechReading(std::shared_ptr<const std::string> text, std::size_t begin, int voice,
                  std::string path, ReadingUse use);
    ~SpeechReading();  // stops; the file stays
    SpeechReading(const SpeechReading&) = delete;
    SpeechReading& operator=(const SpeechReading&) = delete;

    void SpeakBy(SpeakingRules rules) { rules_ = std::move(rules); }   // before the start
    void KeepReserve(EngineReserve& reserve) { reserve_ = &reserve; }  // likewise; outlives this
    void Start();                                                      // once; returns at once
    // Ends production and its engines, at once. What has been spoken stays in the file, which is
    // whole then; a source goes on to that end.
    void Stop();
    // Instead of Start: produces on the calling thread until the end or until it is asked to stop.
    void Produce(const LThread& thread);

    LSignalObjectRef FirstSound() const { return firstSound_.Ref(); }  // or ended without any
    LSignalObjectRef Ended() const { return ended_.Ref(); }            // no more will come

    // Once there is sound (any thread): it streams until the last piece is in the file. Where it
    // runs dry it waits in silence and goes on where it stopped. Without sound, or when the file
    // was removed or replaced, a placeholder that is not good.
    LSoundSource OpenSource() const;

    // Any thread.
    ReadingUse Use() const { return use_; }
    const SpeechTrack& Track() const { return *track_; }
    bool HasSound() const { return track_->Frames() > 0; }
    double Fraction() const;  // of the text that is spoken, 0 to 1

    // Once ended: kSpoken (but for what was left out), or why the rest is missing; then what the
    // user is to be told of it in one sentence, empty when nothing is or it was stopped.
    SynthesisOutcome Outcome() const;
    std::string Message() const;

private:
    class Producer;
    class FileTaker;

    void End(SynthesisOutcome outcome, const std::string& leftOut);
    bool IsOurs(const struct stat& status) const;

    const std::shared_ptr<const std::string> text_;
    const std::size_t begin_;  // within the text
    const int voice_;
    const std::string path_;
    const ReadingUse use_;
    SpeakingRules rules_;
    EngineReserve* reserve_ = nullptr;
    const std::shared_ptr<SpeechTrack> track_;
    LSignalObject firstSound_;
    LSignalObject ended_;

    mutable std::mutex mutex_;  // guards what follows
    double fraction_ = 0;
    SynthesisOutcome outcome_ = SynthesisOutcome::kStopped;
    std::string leftOut_;           // what the user is to be told of that
    std::pair<dev_t, ino_t> file_;  // somebody else may put another in its place

    std::unique_ptr<Producer> producer_;
};

// Waits, for as long as it takes, until the first sound is there (listening) or all of it (saving).
// Done, also with some of it left out; stopped by the progress object, which stops the reading; or
// failed: no sound, or when saving not all of it (reading.Outcome()).
LProcessResult Process(LProgress& progress, SpeechReading& reading);
