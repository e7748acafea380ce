// How a reading comes to another place of its text.
#include <algorithm>

#include "app/reading/narrator.h"
#include "speech/text_places.h"

namespace {

// Whoever drags a slider is not followed by an engine for every step.
constexpr unsigned int kPlaceMilliseconds = 100;

}  // namespace

bool Narrator::CanMove() const {
    return IsReading() && info_.Reading() != nullptr;
}

std::optional<SpokenStretch> Narrator::Heard() const {
    if (IsFetching() || info_.Reading() == nullptr)
        return std::nullopt;
    // A time is told in whole milliseconds: that of a sentence's first frame would fall before it.
    return info_.Reading()->Track().StretchAt(info_.Frame(LSoundTime(Time().Milliseconds() + 1)));
}

std::size_t Narrator::Place() const {
    if (info_.Reading() == nullptr)
        return info_.Begin();
    if (IsFetching())
        return wanted_;
    if (const auto heard = Heard())
        return heard->sourceBegin;
    // The sentence that comes next is not spoken yet.
    return SentenceAt(info_.Text(), info_.Reading()->Track().All().sourceEnd);
}

// What was spoken is given up, so that the engine begins at once with what is wanted.
void Narrator::GoTo(std::size_t place) {
    const bool isFetching = IsFetching();
    firstSound_.Stop();
    Halt();
    wanted_ = place;
    isMove_ = true;
    isJumping_ = true;
    SetTime(info_.Times().TimeOf(place));
    if (isFetching) {
        nextPlace_.Start(kPlaceMilliseconds, [this] { BeginSpeech(wanted_); });
        Tell(state_);
    } else {
        BeginSpeech(place);
    }
    isJumping_ = false;
}

// Within what is spoken. Another card takes over where the last one was: that is no jump.
void Narrator::JumpTo(LSoundTime time) {
    isJumping_ = time != Time();
    LPlayerTransport::MoveTo(time);
    isJumping_ = false;
}

void Narrator::Play() {
    if (IsFetching())
        return;
    if (info_.Reading() != nullptr && !IsLoaded() && !info_.Reaches(Time()))
        GoTo(SentenceAt(info_.Text(), info_.Times().PlaceAt(Time())));
    else
        LPlayerTransport::Play();
}

void Narrator::PlayEnd() {
    if (CanMove() && !info_.IsSpokenToTheEnd())
        MoveToEnd();
    else
        LPlayerTransport::PlayEnd();
}

void Narrator::MoveTo(LSoundTime time) {
    time = std::max(time, LSoundTime());
    if (!CanMove() || (!IsFetching() && info_.Reaches(time)))
        JumpTo(time);
    else
        GoTo(SentenceAt(info_.Text(), info_.Times().PlaceAt(time)));
}

// Of a text that is not spoken to its end the last sentence is heard.
void Narrator::MoveToEnd() {
    if (!CanMove() || (!IsFetching() && info_.IsSpokenToTheEnd()))
        LPlayerTransport::MoveToEnd();
    else
        GoTo(SentenceAt(info_.Text(), info_.Text().size()));
}

void Narrator::MoveToSentence(int step) {
    const auto heard = Heard();
    const bool isSpoken = heard && (step >= 0 || heard->firstFrame > 0);
    const bool isAtEnd = !heard && !IsFetching() && (step <= 0 || info_.IsSpokenToTheEnd());
    if (!CanMove() || isSpoken || isAtEnd) {
        LPlayerTransport::MoveToSentence(step);
        return;
    }
    const auto place = step > 0   ? SentenceBehind(info_.Text(), Place())
                       : step < 0 ? SentenceBefore(info_.Text(), Place())
                                  : std::nullopt;
    if (place)
        GoTo(*place);
    else if (!IsFetching())
        LPlayerTransport::MoveToSentence(step);
}

void Narrator::MoveToParagraph(int step) {
    const auto place =
        step > 0 ? ParagraphBehind(info_.Text(), Place()) : ParagraphBefore(info_.Text(), Place());
    if (place)
        MoveToPlace(*place);
}

void Narrator::MoveToHeading(int step) {
    MoveAlong(info_.Headings(), step);
}

void Narrator::MoveToChapter(int step) {
    MoveAlong(info_.Chapters(), step);
}

void Narrator::MoveAlong(const std::vector<std::size_t>& places, int step) {
    const auto behind = std::ranges::upper_bound(places, Place());
    const auto before = std::ranges::lower_bound(places, Place());
    if (step > 0 && behind != places.end())
        MoveToPlace(*behind);
    else if (step < 0 && before != places.begin())
        MoveToPlace(*std::prev(before));
}

void Narrator::MoveToPlace(std::size_t place) {
    if (!CanMove())
        return;
    place = SentenceAt(info_.Text(), place);
    const auto frame = IsFetching() ? std::nullopt : info_.Reading()->Track().FrameOf(place);
    if (frame)
        JumpTo(info_.TimeOf(*frame));
    else
        GoTo(place);
}

void Narrator::ReadOn(std::size_t place, int voice) {
    voice_ = voice;
    if (!isAwaitingText_)
        GoTo(place);
}
