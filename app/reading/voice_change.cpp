#include "app/reading/voice_change.h"

#include <algorithm>
#include <string_view>

#include "speech/text_places.h"

namespace {

// The time is told more often than that.
constexpr int kNearMilliseconds = 400;
// Sentences end in silence; what the next one has begun with is not heard this way.
constexpr int kEarlyMilliseconds = 40;

// Who moves the slider of the speed has stopped; until then the sound is stretched.
constexpr unsigned int kTempoRestMilliseconds = 500;

// A sentence that is too long for one piece goes on between them: the next piece counts.
bool GoesOn(std::string_view text, std::size_t pieceEnd, std::size_t nextSentence) {
    return text.substr(0, nextSentence).find_first_not_of(" \t\r\n", pieceEnd) !=
           std::string_view::npos;
}

}  // namespace

VoiceChange::VoiceChange(Narrator& narrator)
    : narrator_(narrator),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }),
      changes_(narrator.Changes(), [this](LPlayerChange change) {
          if (change == LPlayerChange::kTempo)
              FollowTempo();
      }) {}

bool VoiceChange::Begin(int voice) {
    voice_.reset();
    isForSpeedAlone_ = false;
    sentenceEnd_.Stop();
    return voice != narrator_.Voice() && ReadOnWith(voice);
}

void VoiceChange::BeginAnew() {
    isForSpeedAlone_ = false;
    ReadOnWith(voice_.value_or(narrator_.Voice()));
}

void VoiceChange::FollowTempo() {
    tempoRest_.Start(kTempoRestMilliseconds, [this] {
        const bool waitsForMore = voice_ && !isForSpeedAlone_;
        if (narrator_.WantsOtherSpeed())
            BeginAnew();
        else if (!waitsForMore)
            voice_.reset();
        isForSpeedAlone_ = !waitsForMore;
    });
}

bool VoiceChange::ReadOnWith(int voice) {
    if (!narrator_.CanMove())
        return false;
    if (narrator_.State() == ReadingState::kWaitingForSound)
        narrator_.ReadOn(narrator_.Place(), voice);
    else
        voice_ = voice;
    return true;
}

void VoiceChange::Hear(const ReadingNews& news) {
    if (!voice_ || sentenceEnd_.IsRunning())
        return;
    if (news.state != ReadingState::kPlaying || !news.stretch) {
        if (!IsReading(news.state))
            voice_.reset();
        return;
    }
    const LSoundTime end = narrator_.TimeOf(news.stretch->endFrame);
    const int left = (end.Milliseconds() - news.time.Milliseconds()) * LTempo::kOwnPercent /
                     std::max(narrator_.TempoPercent(), 1);
    if (left <= kNearMilliseconds)
        sentenceEnd_.Start(static_cast<unsigned int>(std::max(left - kEarlyMilliseconds, 0)),
                           [this] { Act(); });
}

// The listener may have paused or moved meanwhile: then the next sentence that is heard counts.
void VoiceChange::Act() {
    const ReadingNews now = narrator_.Now();
    if (!voice_ || now.state != ReadingState::kPlaying || !now.stretch)
        return;
    const LSoundTime end = narrator_.TimeOf(now.stretch->endFrame);
    const bool isAtEnd = end.Milliseconds() - now.time.Milliseconds() <= 2 * kNearMilliseconds;
    const auto next = SentenceBehind(narrator_.Text(), now.stretch->sourceEnd - 1);
    if (!isAtEnd || !next || GoesOn(narrator_.Text(), now.stretch->sourceEnd, *next))
        return;
    const int voice = *voice_;
    voice_.reset();
    narrator_.ReadOn(*next, voice);
}
