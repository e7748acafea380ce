#include "app/reading/dialogs/reading_status.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace {

// Who drags a slider, or begins another reading, makes only the last of it worth a word.
constexpr unsigned int kSayMilliseconds = 100;

std::string TextOf(LSoundTime time) {
    char text[kSoundTimeTextSize];
    time._GetText0(text);
    return text;
}

std::string PlaceOf(const ReadingNews& news) {
    const std::string chapter = ChapterOf(news);
    return TextOf(news.time) + (news.isLengthKnown ? " of " : " of about ") + TextOf(news.length) +
           (chapter.empty() ? "" : ", " + chapter);
}

std::string PercentOf(const ReadingNews& news) {
    const std::int64_t length = std::max(news.length.Milliseconds(), 1);
    const std::int64_t percent = news.time.Milliseconds() * std::int64_t{100} / length;
    return std::to_string(std::min(percent, std::int64_t{100})) + " %";
}

}  // namespace

std::string StatusOf(const ReadingNews& news) {
    switch (news.state) {
        case ReadingState::kWaitingForVoice:
            return "Waiting for the speech engine (Esc stops)";
        case ReadingState::kWaitingForSound:
            if (news.isForText)
                return "Waiting for the next page (Esc stops)";
            return news.isMove ? "Going to " + PlaceOf(news) + " (Esc stops)"
                               : "Waiting for the first sentence (Esc stops)";
        case ReadingState::kPlaying:
            return "Reading aloud: " + PlaceOf(news) + " (Esc stops)";
        case ReadingState::kPaused:
            return "Paused at " + PlaceOf(news);
        case ReadingState::kIdle:
        case ReadingState::kEnded:
            break;
    }
    return "";
}

ReadingStatus::ReadingStatus(Narrator& narrator, Line line, const char* atRest)
    : narrator_(narrator),
      line_(std::move(line)),
      atRest_(atRest),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

// The bar tells state and place anyway, and may have been told something else meanwhile.
void ReadingStatus::SaySoon(const std::string& words) {
    saying_.Start(kSayMilliseconds, [this, words] { line_.say(words.c_str()); });
}

void ReadingStatus::Hear(const ReadingNews& news) {
    if (news.HasBegun()) {
        isWaitTold_ = false;
        saying_.Stop();
    }
    if (news.state == ReadingState::kIdle)
        return;  // what was said of the end still stands
    if (news.state == ReadingState::kEnded) {
        if (news.IsNew())
            HearEnd(news);
        return;
    }
    const bool fallsBehind = news.IsNew() && !news.isMove &&
                             news.state == ReadingState::kWaitingForSound &&
                             news.before == ReadingState::kPlaying;
    if (fallsBehind) {
        constexpr const char* kNote =
            "Waiting for the voice, which is slower than speech (Esc stops)";
        (isWaitTold_ ? line_.show : line_.tell)(kNote);
        isWaitTold_ = true;
        return;
    }
    if (std::exchange(route_, news.route) != news.route && !news.route.empty()) {
        line_.tell(news.route.c_str());
        return;
    }
    line_.show(WithMore(StatusOf(news)).c_str());
    if (news.IsNew() && news.state == ReadingState::kPaused)
        SaySoon("Paused");
    else if (news.isJump && !news.HasBegun())
        SaySoon(PercentOf(news));
}

std::string ReadingStatus::WithMore(std::string status) const {
    const std::string more = line_.more();
    return more.empty() ? status : std::move(status) + "; " + more;
}

void ReadingStatus::HearEnd(const ReadingNews& news) {
    saying_.Stop();
    const bool hasBox = news.end == ReadingEnd::kEngineFailed;
    if (!news.note.empty() && !hasBox) {
        line_.tell(news.note.c_str());
        return;
    }
    line_.show(atRest_);
    const bool goesOn = narrator_.Waiting().MayBegin();  // with the next text
    if (news.end == ReadingEnd::kStopped && !goesOn)
        SaySoon("Stopped");
    else if (news.end == ReadingEnd::kToItsEnd && !goesOn)
        SaySoon("End of the text");
}
