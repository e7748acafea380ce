#include "app/reading/narrator.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "foundation/log/log.h"
#include "speech/speech_engines.h"

namespace {

constexpr unsigned int kSilenceCheckMilliseconds = 500;

}  // namespace

std::string ChapterOf(const ReadingNews& news) {
    if (news.chapter == 0)
        return "";
    return "Chapter " + std::to_string(news.chapter) + " of " + std::to_string(news.chapters);
}

Narrator::Narrator(std::string soundPath)
    : LPlayerTransport(info_),
      soundPath_(std::move(soundPath)),
      info_([this] { return !queue_.IsEmpty(); }) {}

Narrator::~Narrator() {
    queue_.Clear();
    Forget();
}

ReadingNews Narrator::Now() const {
    ReadingNews news;
    news.state = news.before = state_;
    news.end = end_;
    news.trouble = Trouble();
    news.route = RouteText();
    news.title = info_.ItemText();
    news.isJump = isJumping_;
    if (const SpeechReading* reading = info_.Reading()) {
        news.time = Time();
        news.length = info_.EstimatedLength();
        news.isLengthKnown = info_.IsSpokenToTheEnd() && info_.Begin() == 0;
        news.isMove = isMove_ && state_ == ReadingState::kWaitingForSound;
        news.isForText = isAwaitingText_ && state_ == ReadingState::kWaitingForSound;
        if (IsLoaded())
            news.stretch = reading->Track().StretchAt(info_.Frame(Time()));
    }
    news.chapters = info_.Chapters().size();
    if (news.chapters > 0)
        news.chapter = ChapterAt(news.stretch ? news.stretch->sourceBegin : Place());
    return news;
}

// From 1 on.
std::size_t Narrator::ChapterAt(std::size_t place) const {
    const std::vector<std::size_t>& chapters = info_.Chapters();
    return static_cast<std::size_t>(std::ranges::upper_bound(chapters, place) - chapters.begin());
}

void Narrator::Tell(ReadingState before) {
    ReadingNews news = Now();
    news.before = before;
    if (before != state_ && state_ == ReadingState::kEnded)
        news.note = note_;
    news_.Tell(std::move(news));
}

void Narrator::Enter(ReadingState state) {
    if (state == state_)
        return;
    const bool mayFollow = MayFollow(state_, state);
    if (!mayFollow)
        LOGERRORF("A reading cannot go from %s to %s", NameOf(state_), NameOf(state));
    assert(mayFollow);
    const ReadingState before = std::exchange(state_, state);
    if (state != ReadingState::kPlaying)
        silence_.Stop();
    if (state != ReadingState::kEnded)
        end_ = ReadingEnd::kNone;
    Tell(before);
}

void Narrator::End(ReadingEnd why, std::string note) {
    firstSound_.Stop();
    nextPlace_.Stop();
    isAwaitingText_ = false;
    end_ = why;
    note_ = std::move(note);
    // The next text would meet the same trouble, and its box would hide this one's.
    if (why != ReadingEnd::kToItsEnd && why != ReadingEnd::kStopped)
        queue_.SetAside();
    Enter(ReadingState::kEnded);
    ContinueQueueSoon();
}

// A receiver may have begun another meanwhile.
void Narrator::EndAll() {
    while (IsReading()) {
        Halt();
        End(ReadingEnd::kStopped, LeftOut());
    }
}

void Narrator::Read(ReadingText text, int voice) {
    EndAll();
    nextText_.Stop();
    info_.SetText(std::move(text));
    isMove_ = false;
    isFailureTold_ = false;
    leftOut_.clear();
    voice_ = voice;
    if (voice == kVoiceUnknown)
        Enter(ReadingState::kWaitingForVoice);
    else
        BeginSpeech(info_.Begin());
}

void Narrator::SetVoice(int voice) {
    if (state_ != ReadingState::kWaitingForVoice)
        return;
    voice_ = voice;
    if (voice == kVoiceUnknown)
        End(ReadingEnd::kNoVoice, "");
    else
        BeginSpeech(info_.Begin());
}

void Narrator::BeginSpeech(std::size_t place) {
    firstSound_.Stop();
    isAwaitingText_ = false;
    isMoreText_ = false;
    wanted_ = place;
    info_.Speak(place, voice_, SpeedWanted(), soundPath_);
    firstSound_.Start(info_.Reading()->FirstSound(), [this] { EvFirstSound(); });
    if (state_ == ReadingState::kWaitingForSound)
        Tell(state_);
    else
        Enter(ReadingState::kWaitingForSound);
}

// Of the engine: what is missing to the tempo is made of its sound.
int Narrator::SpeedWanted() const {
    const auto voice = VoiceAt(voice_);
    return SpeedOfEngine(voice, TempoOf(SettingsKeyOf(voice)));
}

bool Narrator::WantsOtherSpeed() const {
    return CanMove() && info_.SpokenSpeed() != SpeedWanted();
}

void Narrator::EvFirstSound() {
    Prepare();
    TakeItem();
    if (info_.Reading()->HasSound()) {
        LPlayerTransport::Play();
        return;
    }
    if (IsBlankPage()) {
        AwaitMore();
        return;
    }
    const std::string message = info_.Reading()->Message();
    End(TakeEngineFailure() ? ReadingEnd::kEngineFailed : ReadingEnd::kToItsEnd, message);
    if (!IsReading())
        Forget();  // there is nothing to hear again
}

void Narrator::Forget() {
    EndAll();
    info_.Forget();
    KeepSettings();
    Enter(ReadingState::kIdle);
}

void Narrator::EvChange(LPlayerChange change) {
    switch (change) {
        case LPlayerChange::kPlays:
            Enter(ReadingState::kPlaying);
            WatchForSilence();
            break;
        case LPlayerChange::kPaused:
            Enter(ReadingState::kPaused);
            break;
        case LPlayerChange::kTime:
            if (!IsLoaded())
                break;
            if (state_ == ReadingState::kWaitingForSound && !Winding().IsOn())
                Enter(ReadingState::kPlaying);
            else
                Tell(state_);
            WatchForSilence();
            break;
        case LPlayerChange::kRoute:
            Tell(state_);
            break;
        case LPlayerChange::kStopped:
            EvStopped();
            break;
        case LPlayerChange::kEnded:
            EvPlayedOut();
            break;
        case LPlayerChange::kItem:
        case LPlayerChange::kLevels:
        case LPlayerChange::kTempo:
        case LPlayerChange::kVolume:
            break;
    }
}

void Narrator::EvStopped() {
    queue_.SetAside();
    if (!IsReading())
        return;
    const bool hadSound = state_ != ReadingState::kWaitingForVoice && (isMove_ || !IsFetching());
    End(ReadingEnd::kStopped, LeftOut());
    if (!hadSound && !IsReading())
        Forget();
}

void Narrator::EvPlayedOut() {
    if (!IsReading())
        return;
    if (Trouble() != PlayTrouble::kNone)
        End(ReadingEnd::kCardFailed, "");
    else if (TakeEngineFailure())
        End(ReadingEnd::kEngineFailed, info_.Reading()->Message());
    else if (info_.IsGrowing() || info_.HasGrown())
        AwaitMore();
    else
        End(ReadingEnd::kToItsEnd, LeftOut());
}

void Narrator::Grow(std::string_view more, bool isAll) {
    if (!info_.IsGrowing())
        return;
    info_.Grow(more, isAll);
    if (isAwaitingText_)
        ReadMore();
}

// From the main loop: the player is still in the middle of its end.
void Narrator::AwaitMore() {
    leftOut_ = LeftOut();
    wanted_ = info_.SpokenSize();
    isAwaitingText_ = true;
    isMove_ = true;  // what was heard can be heard again
    SetTime(info_.Times().TimeOf(wanted_));
    Enter(ReadingState::kWaitingForSound);
    if (isAwaitingText_)
        nextPlace_.Start(0, [this] { ReadMore(); });
}

void Narrator::ReadMore() {
    if (!isAwaitingText_)
        return;
    if (info_.HasGrown()) {
        Halt();
        SetTime(info_.Times().TimeOf(wanted_));
        BeginSpeech(wanted_);
        isMoreText_ = true;
    } else if (!info_.IsGrowing()) {
        End(ReadingEnd::kToItsEnd, LeftOut());
    }
}

// What the engine left out, once it has spoken as far as it got.
std::string Narrator::LeftOut() const {
    const SpeechReading* reading = info_.Reading();
    if (reading == nullptr || !reading->Ended().IsSignaled() || IsBlankPage())
        return leftOut_;
    const std::string message = reading->Message();
    if (leftOut_.find(message) != std::string::npos)
        return leftOut_;
    return leftOut_.empty() ? message : leftOut_ + " " + message;
}

// Of a text that has grown; of a text that is nothing else, that is trouble.
bool Narrator::IsBlankPage() const {
    return isMoreText_ && info_.Reading()->Outcome() == SynthesisOutcome::kNothingToSay;
}

// Whether it failed, which is told once: who hears the beginning again knows.
bool Narrator::TakeEngineFailure() {
    const SpeechReading& reading = *info_.Reading();
    const bool hasFailed = reading.Ended().IsSignaled() &&
                           reading.Outcome() != SynthesisOutcome::kSpoken &&
                           reading.Outcome() != SynthesisOutcome::kStopped;
    return hasFailed && !std::exchange(isFailureTold_, true);
}

// Whoever is told no new time although the sound has not ended hears nothing. Only while there may
// be such a silence: nothing wakes up for a reading that is paused.
void Narrator::WatchForSilence() {
    if (state_ != ReadingState::kPlaying)
        return;
    silence_.Start(kSilenceCheckMilliseconds, [this] {
        if (IsRunningDry())
            Enter(ReadingState::kWaitingForSound);
        else
            WatchForSilence();
    });
}

bool Narrator::IsRunningDry() const {
    const SpeechTrack& track = info_.Reading()->Track();
    const int tempo = std::max(TempoPercent(), 100);
    const LSoundTime reach(static_cast<int>(kSilenceCheckMilliseconds) * tempo / 100);
    return !track.IsComplete() && !Winding().IsOn() &&
           info_.Frame(Time()) + info_.Frame(reach) >= track.Frames();
}

void Narrator::Queue(QueuedText text) {
    queue_.Add(std::move(text));
    ContinueQueueSoon();
}

void Narrator::NextItem() {
    if (queue_.IsEmpty())
        return;
    queue_.TakeUp();
    EndAll();
    ContinueQueueSoon();
}

// From the main loop: the player is still in the middle of ending a reading.
void Narrator::ContinueQueueSoon() {
    if (queue_.MayBegin())
        nextText_.Start(0, [this] { ContinueQueue(); });
}

void Narrator::ContinueQueue() {
    if (IsReading() || !queue_.MayBegin())
        return;
    QueuedText next = queue_.TakeFirst();
    switch (next.begin()) {
        case QueuedText::Begun::kYes:
            break;
        case QueuedText::Begun::kFailed:
            ContinueQueueSoon();
            break;
        case QueuedText::Begun::kNotNow:
            queue_.PutBack(std::move(next));
            break;
    }
}
