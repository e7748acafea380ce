#include "speech/piece_runs.h"

#include <glib.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <thread>

#include "foundation/log/log.h"
#include "foundation/whole_characters.h"
#include "sound/saved_tempo.h"
#include "speech/paused_sound.h"
#include "speech/speech_engines.h"
#include "speech/voice_manner.h"
#include "speech/voices.h"

namespace {

// Two runs halve the time of a save on two cores; more would each hold 330 MB for little.
constexpr unsigned int kMostRunsWhenSaving = 2;
// An engine that fails so often without a word in between will not speak the rest either.
constexpr int kMaxTimeOutsInRow = 6;
constexpr int kMaxLeftOutInRow = 8;
constexpr int kSilentInRow = 2;
constexpr std::size_t kMaxQuote = 60;  // bytes

// The stretch on one line, cut at a blank or a character.
std::string Quote(std::string_view stretch) {
    bool isCut = stretch.size() > kMaxQuote;
    if (isCut) {
        const std::size_t end = stretch.rfind(' ', kMaxQuote);
        const bool isWithinWord = end == std::string_view::npos || end < kMaxQuote / 2;
        stretch = isWithinWord ? WholeCharacters(stretch, kMaxQuote) : stretch.substr(0, end);
    }
    std::string quote = "\"";
    for (const char character : stretch)
        quote += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
    return quote + (isCut ? "...\"" : "\"");
}

std::string Joined(const std::string& one, const std::string& other) {
    return one.empty() || other.empty() ? one + other : one + " " + other;
}

LSoundSource SoundInManner(const LSoundSource& sound, int voice, const VoiceManner& manner) {
    return EngineOf(VoiceAt(voice)).takesManner ? sound : InManner(sound, manner);
}

SpokenTimes TimesIn(const EngineRun& engine, const SpeechPiece& piece, std::string_view text) {
    const LSoundSource& sound = engine.run.Sound();
    return SpokenTimesIn(engine.run.ToldTimes(), piece.units, text, sound->GetEndSample(),
                         sound->SampleRate())
        .value_or(SpokenTimes());
}

}  // namespace

struct PieceRuns::Run {
    SpeechPiece piece;
    std::unique_ptr<EngineRun> engine;  // once it was started
    std::chrono::steady_clock::time_point start;
    bool isSecondTry = false;  // of one unit
};

PieceRuns::PieceRuns(std::string_view text, int voice, std::string folder, ReadingUse use,
                     SpokenPieceTaker& taker, SpeakingRules rules)
    : text_(text),
      voice_(voice),
      folder_(std::move(folder)),
      use_(use),
      taker_(taker),
      rules_(std::move(rules)),
      mostAtOnce_(use == ReadingUse::kListening
                      ? 1
                      : std::clamp(std::thread::hardware_concurrency(), 1U, kMostRunsWhenSaving)) {}

PieceRuns::~PieceRuns() = default;

bool PieceRuns::StartRuns() {
    if (!pieces_) {
        TTSGetNumSpeakers();  // asks when nobody has
        CutFrom(0);
    }
    while (!hasEnded_ && runs_.size() < mostAtOnce_ && taker_.IsMoreWanted() && PullPiece()) {
    }
    for (std::size_t i = 0; !hasEnded_ && i < std::min(mostAtOnce_, runs_.size()); ++i)
        if (!runs_[i]->engine)
            StartRun(*runs_[i]);
    if (!hasEnded_ && runs_.empty() && isAtEndOfText_)
        End(hasSpoken_ ? SynthesisOutcome::kSpoken : whyNothing_);
    return !hasEnded_;
}

void PieceRuns::CutFrom(std::size_t begin) {
    SpeakingRules rules = rules_;
    rules.marks = MarksFrom(rules_.marks, begin);
    rules.headings = HeadingsFrom(rules_.headings, begin);
    piecesBegin_ = begin;
    pieces_.emplace(text_.substr(begin), voice_, use_, std::move(rules));
    isAtEndOfText_ = false;
}

bool PieceRuns::PullPiece() {
    auto run = std::make_unique<Run>();
    isAtEndOfText_ = isAtEndOfText_ || !pieces_->Next(run->piece);
    for (TextUnit& unit : run->piece.units) {
        unit.sourceBegin += piecesBegin_;
        unit.sourceEnd += piecesBegin_;
    }
    if (!isAtEndOfText_)
        runs_.push_back(std::move(run));
    return !isAtEndOfText_;
}

// An engine or a voice may be removed while it reads. What it has not spoken is cut anew, since
// each voice takes its text in its own way.
bool PieceRuns::GoOnWithAnotherVoice(const SpeechPiece& piece, bool isEngineMissing) {
    if (!rules_.instead.Replace(piece.voice, isEngineMissing))
        return false;
    const std::size_t begin =
        leftOutInRow_ == 0
            ? piece.SourceBegin()
            : leftOut_[leftOut_.size() - static_cast<std::size_t>(leftOutInRow_)].sourceBegin;
    leftOut_.resize(leftOut_.size() - static_cast<std::size_t>(leftOutInRow_));
    leftOutInRow_ = 0;
    runs_.clear();
    earlierMessage_ = Joined(earlierMessage_, pieces_->Message());
    CutFrom(begin);
    return true;
}

int PieceRuns::EngineSpeed(int voice) const {
    return SpeedOfEngine(VoiceAt(voice), rules_.SpeedOf(voice));
}

void PieceRuns::StartRun(Run& run) {
    run.start = std::chrono::steady_clock::now();
    if (reserve_ && !hasSpoken_)
        run.engine = reserve_->Take(run.piece.voice, folder_);
    if (!run.engine)
        run.engine =
            std::make_unique<EngineRun>(run.piece.voice, folder_, EngineSpeed(run.piece.voice),
                                        rules_.MannerAt(run.piece.voice));
    if (!run.engine->run.StartPrepared(run.piece.Text())) {
        run.engine->run.Finish(kProcessFailed);
        End(run.engine->request.outcome);
    }
}

LSignalObjectRef PieceRuns::Awaited() const {
    return runs_.empty() ? taker_.MoreWanted() : runs_.front()->engine->run.Finished();
}

unsigned int PieceRuns::PatienceMilliseconds() const {
    return runs_.empty() ? std::numeric_limits<unsigned int>::max() : kSynthesisTimeoutMilliseconds;
}

void PieceRuns::Take(LProcessResult waited) {
    if (waited == kProcessStopped) {
        End(SynthesisOutcome::kStopped);
        return;
    }
    if (runs_.empty())
        return;  // it was for the listener
    std::unique_ptr<Run> run = std::move(runs_.front());
    runs_.pop_front();
    run->engine->run.Finish(waited);
    switch (run->engine->request.outcome) {
        case SynthesisOutcome::kSpoken:
            run->piece.times = TimesIn(*run->engine, run->piece, text_);
            if (use_ == ReadingUse::kSavingSentences && run->piece.times.unitFrames.empty() &&
                run->piece.HoldsSentences())
                TryBySentence(std::move(run));
            else
                TakeSound(*run);
            return;
        case SynthesisOutcome::kTimedOut:
        case SynthesisOutcome::kNoSound:
        case SynthesisOutcome::kIncomplete:
            TryInHalves(std::move(run));
            return;
        case SynthesisOutcome::kEngineMissing:
            if (GoOnWithAnotherVoice(run->piece, true))
                return;
            [[fallthrough]];
        default:
            End(run->engine->request.outcome);
    }
}

void PieceRuns::TakeSound(Run& run) {
    timeOutsInRow_ = 0;
    leftOutInRow_ = 0;
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - run.start;
    pieces_->RunTook(took.count());
    const int speed = rules_.SpeedOf(run.piece.voice);
    const LSoundSource spoken =
        SoundInManner(run.engine->run.Sound(), run.piece.voice, rules_.MannerAt(run.piece.voice));
    const LSoundSource atSpeed =
        EngineSpeed(run.piece.voice) == speed ? spoken : AtTempo(spoken, speed);
    const LSoundSource sound = WithPause(atSpeed, run.piece.pauseMilliseconds * 100 / speed);
    run.piece.times.Stretch(spoken->GetEndSample(), atSpeed->GetEndSample());
    if (!hasSpoken_)
        channels_ = sound->Channels();
    // Only mono and stereo become each other.
    if (sound->Channels() != channels_ && std::max(sound->Channels(), channels_) > 2) {
        LeaveOut(run.piece, SynthesisOutcome::kOtherChannels);
        return;
    }
    const SynthesisOutcome taken = taker_.TakePiece(sound, run.piece);
    if (taken != SynthesisOutcome::kSpoken) {
        End(taken);
        return;
    }
    hasSpoken_ = true;
    haveSpoken_.insert(run.piece.voice);
    spokenTo_ = run.piece.SourceEnd();
    if (reserve_)
        reserve_->Keep(run.piece.voice, folder_);
}

// Without times it is only known when a sentence is heard that is spoken alone.
void PieceRuns::TryBySentence(std::unique_ptr<Run> untold) {
    pieces_->ToldNoTimes(untold->piece.voice);
    std::vector<std::unique_ptr<Run>> runs;
    for (SpeechPiece rest = std::move(untold->piece); !rest.units.empty();) {
        auto run = std::make_unique<Run>();
        SpeechPiece others = rest.TakeOtherSentences();
        run->piece = std::move(rest);
        rest = std::move(others);
        runs.push_back(std::move(run));
    }
    runs_.insert(runs_.begin(), std::make_move_iterator(runs.begin()),
                 std::make_move_iterator(runs.end()));
}

void PieceRuns::TryInHalves(std::unique_ptr<Run> failed) {
    const SynthesisOutcome why = failed->engine->request.outcome;
    if (why == SynthesisOutcome::kTimedOut) {
        pieces_->LimitTo(failed->piece.Size() / 2);  // a slow voice, or a slow machine
        if (++timeOutsInRow_ >= kMaxTimeOutsInRow) {
            End(why);
            return;
        }
    }
    if (failed->piece.units.size() < 2 && failed->isSecondTry) {
        LeaveOut(failed->piece, why);
        return;
    }
    if (failed->piece.units.size() < 2) {
        // It need not be the text's fault: memory, a killed process, a busy machine.
        auto again = std::make_unique<Run>();
        again->piece = std::move(failed->piece);
        again->isSecondTry = true;
        runs_.push_front(std::move(again));
        return;
    }
    auto second = std::make_unique<Run>();
    second->piece = failed->piece.TakeSecondHalf();
    auto first = std::make_unique<Run>();
    first->piece = std::move(failed->piece);
    runs_.push_front(std::move(second));
    runs_.push_front(std::move(first));
}

void PieceRuns::LeaveOut(const SpeechPiece& piece, SynthesisOutcome why) {
    leftOut_.push_back({piece.SourceBegin(), piece.SourceEnd()});
    spokenTo_ = piece.SourceEnd();
    whyNothing_ = why;
    LOGWARNF("Speech: left out bytes %zu to %zu of the text: %s", piece.SourceBegin(),
             piece.SourceEnd(), SynthesisMessage(why, VoiceAt(piece.voice)).c_str());
    ++leftOutInRow_;
    // A voice that has never spoken may have been removed: it need not fail as often.
    const bool hasSpoken = haveSpoken_.contains(piece.voice);
    if (runs_.empty() && !isAtEndOfText_)
        PullPiece();  // nobody has looked yet whether more follows
    const bool isGone = leftOutInRow_ >= (hasSpoken ? kMaxLeftOutInRow : kSilentInRow) ||
                        (!hasSpoken && isAtEndOfText_);
    if (why == SynthesisOutcome::kNoSound && isGone && GoOnWithAnotherVoice(piece, false))
        return;
    if (leftOutInRow_ >= kMaxLeftOutInRow)
        End(why);
}

void PieceRuns::End(SynthesisOutcome outcome) {
    outcome_ = outcome;
    hasEnded_ = true;
    runs_.clear();
}

double PieceRuns::Fraction() const {
    return text_.empty() ? 1.0 : static_cast<double>(spokenTo_) / static_cast<double>(text_.size());
}

std::string PieceRuns::LeftOutMessage() const {
    const std::string unsayable =
        pieces_ ? Joined(earlierMessage_, pieces_->Message()) : earlierMessage_;
    return Joined(rules_.instead.Message(), Joined(::LeftOutMessage(text_, leftOut_), unsayable));
}

std::string LeftOutMessage(std::string_view text, const std::vector<LeftOutUnit>& leftOut) {
    if (leftOut.empty())
        return {};
    const LeftOutUnit& first = leftOut.front();
    const std::string quote =
        Quote(text.substr(first.sourceBegin, first.sourceEnd - first.sourceBegin));
    if (leftOut.size() == 1)
        return "The speech engine could not speak " + quote + ", which was left out.";
    return "The speech engine could not speak " + std::to_string(leftOut.size()) +
           " passages, which were left out; the first is " + quote + ".";
}

LProcessResult Process(LProgress& progress, PieceRuns& runs) {
    while (runs.StartRuns()) {
        runs.Take(progress.ProcessWaitSignal(runs.Awaited(), runs.PatienceMilliseconds()));
        progress.SetFraction(runs.Fraction());
    }
    if (runs.Outcome() == SynthesisOutcome::kSpoken)
        return kProcessDone;
    return runs.Outcome() == SynthesisOutcome::kStopped ? kProcessStopped : kProcessFailed;
}
