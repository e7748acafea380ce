#include "app/reading/heard_words.h"

#include <algorithm>

namespace {

// The card tells its time four times a second: who hears no more of it stands still.
constexpr int kTrustedMilliseconds = 1000;

}  // namespace

void HeardWords::Hear(const ReadingNews& news) {
    nextWord_.Stop();
    isPlaying_ = news.state == ReadingState::kPlaying && !narrator_.Winding().IsOn();
    if (!isPlaying_ && news.state != ReadingState::kPaused)
        return;
    told_ = news.time;
    toldAt_ = Clock::now();
    Tell();
}

void HeardWords::Tell() {
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    const auto since =
        static_cast<int>(duration_cast<milliseconds>(Clock::now() - toldAt_).count());
    const int tempo = std::max(narrator_.TempoPercent(), 1);
    const int ahead = isPlaying_ ? std::min(since, kTrustedMilliseconds) * tempo / 100 : 0;
    const LSoundTime now(told_.Milliseconds() + ahead);
    const auto word = narrator_.WordAt(now);
    if (!word)
        return;
    const int wait = (word->until.Milliseconds() - now.Milliseconds()) * 100 / tempo;
    if (isPlaying_ && since + wait < kTrustedMilliseconds)
        nextWord_.Start(static_cast<guint>(std::max(wait, 0)) + 1, [this] { Tell(); });
    show_(*word);
}
