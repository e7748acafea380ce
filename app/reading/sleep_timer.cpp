#include "app/reading/sleep_timer.h"

#include <algorithm>
#include <utility>

namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;

constexpr milliseconds kFade{10000};
// A chapter is left that much before its end: times come a quarter of a second apart.
constexpr milliseconds kLastMoment{500};
constexpr milliseconds kNearEnd{2000};
constexpr milliseconds kUnsure{250};

constexpr int MinutesOf(SleepAt when) {
    switch (when) {
        case SleepAt::kIn15:
            return 15;
        case SleepAt::kIn30:
            return 30;
        case SleepAt::kIn60:
            return 60;
        case SleepAt::kNever:
        case SleepAt::kEndOfChapter:
            break;
    }
    return 0;
}

}  // namespace

SleepTimer::SleepTimer(Narrator& narrator, Listener listener, Clock clock)
    : narrator_(narrator),
      listener_(std::move(listener)),
      clock_(std::move(clock)),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

SleepTimer::Milliseconds SleepTimer::Now() {
    return std::chrono::duration_cast<milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

void SleepTimer::Choose(SleepAt when) {
    Set(when);
    end_ = clock_() + minutes(MinutesOf(when));
    // Who slept at the end of a chapter wants to hear the next one.
    passed_ = 0;
    if (LeftTo(EndOfChapter()) < kNearEnd)
        passed_ = EndOfChapter();
    const bool isLast = EndOfChapter() == narrator_.Text().size();
    const std::string told = when == SleepAt::kNever ? "off"
                             : when == SleepAt::kEndOfChapter
                                 ? (isLast ? "at the end of the text" : "at the end of the chapter")
                                 : "in " + std::to_string(MinutesOf(when)) + " minutes";
    listener_.tell(("Sleep timer: " + told).c_str());
    Look();
}

void SleepTimer::ChooseNext() {
    Choose(static_cast<SleepAt>((static_cast<std::size_t>(chosen_) + 1) % kSleepChoices));
}

void SleepTimer::Set(SleepAt when) {
    next_.Stop();
    isNearEnd_ = false;
    narrator_.Fade().Back();
    if (std::exchange(chosen_, when) != when)
        listener_.changed();
}

std::string SleepTimer::Status() const {
    if (chosen_ == SleepAt::kNever)
        return "";
    if (chosen_ == SleepAt::kEndOfChapter)
        return "sleeps at the end of the chapter";
    const auto left = std::chrono::ceil<minutes>(std::max(end_ - clock_(), milliseconds(1)));
    return "sleeps in " + std::to_string(left.count()) + " min";
}

// From the main loop: who hears the same news is still to be told of them.
void SleepTimer::Hear(const ReadingNews& news) {
    if (news.HasBegun())
        passed_ = 0;
    if (news.isJump)
        isNearEnd_ = false;  // who leaves a chapter has not heard its end
    const bool isOver = news.IsNew() && !IsReading(news.state);
    if (isOver && chosen_ == SleepAt::kEndOfChapter) {
        if (isNearEnd_)
            narrator_.Waiting().SetAside();  // it ended before it was looked at
        Set(SleepAt::kNever);
    } else if (chosen_ != SleepAt::kNever) {
        next_.Start(0, [this] { Look(); });
    }
}

std::size_t SleepTimer::EndOfChapter() const {
    const auto& chapters =
        narrator_.Chapters().empty() ? narrator_.Headings() : narrator_.Chapters();
    const auto next = std::ranges::upper_bound(chapters, std::max(narrator_.Place(), passed_));
    return next == chapters.end() ? narrator_.Text().size() : *next;
}

// Nothing: that cannot be said while nothing is heard.
std::optional<SleepTimer::Milliseconds> SleepTimer::Left() const {
    if (chosen_ != SleepAt::kEndOfChapter)
        return end_ - clock_();
    // The end of a text that still comes is not where it ends by now.
    const bool isToCome = narrator_.IsGrowing() && EndOfChapter() == narrator_.Text().size();
    if (narrator_.State() != ReadingState::kPlaying || isToCome)
        return std::nullopt;
    const Milliseconds left = LeftTo(EndOfChapter()) - kLastMoment;
    // What is spoken later may last longer than it was thought to.
    return narrator_.IsTimeKnown(EndOfChapter()) ? left : std::max(left, kUnsure);
}

SleepTimer::Milliseconds SleepTimer::LeftTo(std::size_t place) const {
    const int sound = narrator_.TimeAt(place).Milliseconds() - narrator_.Time().Milliseconds();
    return milliseconds(sound) * 100 / narrator_.TempoPercent();
}

void SleepTimer::Look() {
    const auto left = Left();
    if (chosen_ == SleepAt::kNever || !left)
        return;
    // On a busy machine the last moment may pass unseen.
    const bool isBehindChapter = isNearEnd_ && EndOfChapter() > endOfChapter_;
    endOfChapter_ = EndOfChapter();
    isNearEnd_ = chosen_ == SleepAt::kEndOfChapter && *left < kNearEnd;
    if (*left <= milliseconds(0) || isBehindChapter) {
        Sleep();
        return;
    }
    if (*left > kFade)
        narrator_.Fade().Back();
    else if (!narrator_.Fade().IsOut())
        narrator_.Fade().Out(static_cast<int>(left->count()));
    const milliseconds wait = *left > kFade ? *left - kFade : *left;
    next_.Start(static_cast<unsigned int>(wait.count()), [this] { Look(); });
}

// What is still waiting for its sound is paused once it is heard.
void SleepTimer::Sleep() {
    const ReadingState state = narrator_.State();
    if (state == ReadingState::kWaitingForVoice || state == ReadingState::kWaitingForSound)
        return;
    if (state == ReadingState::kPlaying) {
        narrator_.Pause();
        listener_.tell("The sleep timer has paused the reading (F9 goes on)");
    }
    Set(SleepAt::kNever);
}
