// The one who reads: a text becomes speech sentence by sentence and is heard from the first on.
//
// State
//   One at a time (reading_state.h), changed by one function that holds it against the table. Who
//   shows or follows a reading subscribes to News and needs nothing else: each state, time and
//   stretch of the text is told there, in order, to everybody alike.
//
// Threads
//   Everything here happens on the GUI thread, inside the GDK lock. Nothing waits and nothing pumps
//   events: the engine's first sound is a signal watched in the main loop, and the card's progress
//   comes as queued notifications of the player. The engine runs on the reading's producer thread
//   (speech_reading.h), the card on the player's (play_run.h).
//
// Ownership
//   It owns the reading, the player and the texts that wait. Receivers own their subscription,
//   which ends with either. They may stop, start and move a reading from within what they are told,
//   but run no main loop there; and they do not destroy the narrator.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "app/reading/reading_info.h"
#include "app/reading/reading_news.h"
#include "app/reading/reading_queue.h"
#include "foundation/broadcast.h"
#include "foundation/gdk/signal_watch.h"
#include "gui/gui_timer.h"
#include "playback/player_transport.h"
#include "speech/speech_track.h"

class Narrator final : public LPlayerTransport {
public:
    using Subscription = LBroadcast<ReadingNews>::Subscription;

    static constexpr int kVoiceUnknown = -1;

    // soundPath: where the speech is kept while it is read.
    explicit Narrator(std::string soundPath);
    ~Narrator() override;

    LBroadcast<ReadingNews>& News() { return news_; }
    ReadingNews Now() const;
    ReadingState State() const { return state_; }
    bool IsReading() const { return ::IsReading(state_); }
    // What is read, or was and can be heard again: the whole text, whose bytes stretches tell.
    const std::string& Text() const { return info_.Text(); }

    // Ends what is read and reads the text. With an unknown voice it waits for SetVoice.
    void Read(ReadingText text, int voice);
    void Read(std::string text, int voice, std::string title) {
        Read({.text = std::move(text), .title = std::move(title)}, voice);
    }
    // More has come of the text that is read, which was said to grow, and is heard behind it;
    // isAll: nothing else will come. Nothing happens to another text.
    void Grow(std::string_view more, bool isAll);
    bool IsGrowing() const { return info_.IsGrowing(); }
    // Of the readings that begin from now on; otherwise as the user has chosen.
    void SpeakBy(SpeakingRules rules) { info_.SpeakBy(std::move(rules)); }
    // The voice that a waiting reading takes; kVoiceUnknown ends it: there is none.
    void SetVoice(int voice);
    int Voice() const { return voice_; }
    // The engine would speak at another speed by now than it did for what is read.
    bool WantsOtherSpeed() const;
    // Stop is the user's, and sets the queue aside as well; what was spoken can be heard again.
    // Then there is no text either: the engine is ended, and what the user set is kept.
    void Forget();

    // Anywhere in the text, whether it is spoken yet or not: what is not begins there anew. While
    // nothing is read, times only say where Play begins, and the others do nothing. Who is paused
    // hears the new place at once.
    void Play() override;
    void PlayEnd() override;
    void MoveTo(LSoundTime time) override;
    void MoveToEnd() override;
    void MoveToSentence(int step) override;
    void MoveToParagraph(int step);  // 1 or -1: the next one, or the start of this or the last
    void MoveToHeading(int step);    // likewise, where the text has headings
    void MoveToChapter(int step);
    void MoveToPlace(std::size_t place);  // the sentence at that byte of the text
    // From there on by that voice, which also reads what is still to come of the text.
    void ReadOn(std::size_t place, int voice);
    bool CanMove() const;  // there is a text whose places can be heard
    const std::vector<std::size_t>& Headings() const { return info_.Headings(); }
    LSoundTime TimeAt(std::size_t place) const { return info_.TimeAt(place); }
    std::optional<WordInTime> WordAt(LSoundTime time) const { return info_.WordAt(time); }
    bool IsTimeKnown(std::size_t place) const { return info_.IsSpokenTo(place); }
    const std::vector<std::size_t>& Chapters() const { return info_.Chapters(); }
    std::size_t Place() const;  // of the sentence that is heard, or will be

    // The texts that wait begin one after the other, whenever nothing is being read; a stop and
    // trouble set them aside.
    void Queue(QueuedText text);
    ReadingQueue& Waiting() { return queue_; }
    void ContinueQueueSoon();  // after a text that said kNotNow
    void NextItem() override;  // with those that were set aside

private:
    void EvChange(LPlayerChange change) override;
    void Enter(ReadingState state);
    void End(ReadingEnd why, std::string note);
    void Tell(ReadingState before);
    bool IsFetching() const {
        return firstSound_.IsWaiting() || nextPlace_.IsRunning() || isAwaitingText_;
    }
    std::optional<SpokenStretch> Heard() const;
    std::size_t ChapterAt(std::size_t place) const;
    void MoveAlong(const std::vector<std::size_t>& places, int step);
    void BeginSpeech(std::size_t place);
    int SpeedWanted() const;
    void GoTo(std::size_t place);
    void JumpTo(LSoundTime time);
    void EvFirstSound();
    void EvPlayedOut();
    void AwaitMore();
    void ReadMore();
    void EvStopped();
    void EndAll();
    void WatchForSilence();
    bool IsRunningDry() const;
    std::string LeftOut() const;
    bool IsBlankPage() const;
    bool TakeEngineFailure();
    void ContinueQueue();

    const std::string soundPath_;
    ReadingInfo info_;
    LBroadcast<ReadingNews> news_;
    ReadingState state_ = ReadingState::kIdle;
    ReadingEnd end_ = ReadingEnd::kNone;
    std::string note_;
    int voice_ = kVoiceUnknown;
    std::size_t wanted_ = 0;       // place whose sound is being fetched
    bool isMove_ = false;          // and another was heard before
    bool isAwaitingText_ = false;  // all that has come of it was heard
    bool isMoreText_ = false;      // what is spoken has come since then
    std::string leftOut_;          // before that
    bool isJumping_ = false;       // what is told now comes of a jump
    bool isFailureTold_ = false;   // the engine's, of this reading
    ReadingQueue queue_;
    LSignalWatch firstSound_;
    LGuiTimer nextPlace_;  // while places follow each other fast
    LGuiTimer silence_;
    LGuiTimer nextText_;
};
