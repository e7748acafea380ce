// Speaking a text of any length: runs of the engine over its pieces, one after the other.
//
// A run that fails is tried again in halves, until the unit to blame stands alone; that unit is
// left out and told of. The engine itself ends units where the pieces end.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/threads/progress.h"
#include "sound/sound_source.h"
#include "speech/engine_reserve.h"
#include "speech/speech_pieces.h"
#include "speech/synthesis.h"

// Gets the sound of each piece, in order, on the thread that runs them.
class SpokenPieceTaker {
public:
    virtual ~SpokenPieceTaker() = default;
    // kSpoken, or why the sound could not be taken, which ends the reading.
    virtual SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece& piece) = 0;
    // False: no further run is started until MoreWanted() is signalled.
    virtual bool IsMoreWanted() { return true; }
    virtual LSignalObjectRef MoreWanted() { return {}; }
};

// A unit that the engine could not speak, as bytes of the user's text.
struct LeftOutUnit {
    std::size_t sourceBegin;
    std::size_t sourceEnd;
};

// One thread, which waits through its progress object (Process below). Destruction ends all engines
// and leaves no file of theirs.
class PieceRuns {
public:
    // The text's bytes and the taker outlive this; folder (with its slash) is where the engine
    // writes.
    PieceRuns(std::string_view text, int voice, std::string folder, ReadingUse use,
              SpokenPieceTaker& taker, SpeakingRules rules = {});
    ~PieceRuns();
    PieceRuns(const PieceRuns&) = delete;
    PieceRuns& operator=(const PieceRuns&) = delete;

    // From which the first piece takes its engine, and which is kept while pieces are spoken.
    // Before the start; outlives this.
    void KeepReserve(EngineReserve& reserve) { reserve_ = &reserve; }

    // Starts as many runs as may be at work. False: the reading has ended, Outcome() tells how.
    bool StartRuns();
    LSignalObjectRef Awaited() const;  // what comes next: a run's end, or that more is wanted
    // How long to wait for that: a listener who has paused may stay away for days.
    unsigned int PatienceMilliseconds() const;
    void Take(LProcessResult waited);  // after that wait

    // kSpoken: to the end, but for what was left out.
    SynthesisOutcome Outcome() const { return outcome_; }
    const std::vector<LeftOutUnit>& LeftOut() const { return leftOut_; }
    // What the user is to be told of these and of what the voice cannot say; empty for nothing.
    std::string LeftOutMessage() const;
    std::string InsteadMessage() const { return rules_.instead.Message(); }  // its part on voices
    double Fraction() const;  // of the text that is spoken, 0 to 1

private:
    struct Run;

    bool PullPiece();
    void CutFrom(std::size_t begin);
    bool GoOnWithAnotherVoice(const SpeechPiece& piece, bool isEngineMissing);
    int EngineSpeed(int voice) const;
    void StartRun(Run& run);
    void TakeSound(Run& run);
    void TryInHalves(std::unique_ptr<Run> failed);
    void TryBySentence(std::unique_ptr<Run> untold);
    void LeaveOut(const SpeechPiece& piece, SynthesisOutcome why);
    void End(SynthesisOutcome outcome);

    std::string_view text_;
    int voice_;
    std::string folder_;
    ReadingUse use_;
    SpokenPieceTaker& taker_;
    EngineReserve* reserve_ = nullptr;
    SpeakingRules rules_;
    std::optional<SpeechPieces> pieces_;
    std::size_t piecesBegin_ = 0;  // byte of the text that they begin at
    std::string earlierMessage_;   // of the pieces before these
    std::set<int> haveSpoken_;     // voices
    std::size_t mostAtOnce_;
    std::deque<std::unique_ptr<Run>> runs_;  // in the order of the text, those at work in front
    bool isAtEndOfText_ = false;
    bool hasSpoken_ = false;
    unsigned char channels_ = 0;  // of the first sound
    bool hasEnded_ = false;
    std::size_t spokenTo_ = 0;  // bytes of the user's text
    int timeOutsInRow_ = 0;
    int leftOutInRow_ = 0;
    std::vector<LeftOutUnit> leftOut_;
    SynthesisOutcome whyNothing_ = SynthesisOutcome::kNothingToSay;  // if nothing was spoken
    SynthesisOutcome outcome_ = SynthesisOutcome::kSpoken;
};

// Speaks the text to its end. Done, stopped by the progress object, or failed (runs.Outcome()).
LProcessResult Process(LProgress& progress, PieceRuns& runs);

// What the user is told of the units left out, in one sentence that quotes the first of them; empty
// when there is none.
std::string LeftOutMessage(std::string_view text, const std::vector<LeftOutUnit>& leftOut);
