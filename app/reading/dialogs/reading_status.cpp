#include "app/reading/dialogs/reading_status.h"

#include <utility>

namespace {

std::string TextOf(LSoundTime time) {
    char text[kSoundTimeTextSize];
    time._GetText0(text);
    return text;
}

std::string PlaceOf(const ReadingNews& news) {
    return TextOf(news.time) + (news.isLengthKnown ? " of " : " of about ") + TextOf(news.length);
}

}  // namespace

std::string StatusOf(const ReadingNews& news) {
    switch (news.state) {
        case ReadingState::kWaitingForVoice:
            return "Waiting for the speech engine (Esc stops)";
        case ReadingState::kWaitingForSound:
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
    : line_(std::move(line)),
      atRest_(atRest),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

void ReadingStatus::Hear(const ReadingNews& news) {
    if (news.HasBegun())
        isWaitTold_ = false;
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
    } else if (std::exchange(route_, news.route) != news.route && !news.route.empty()) {
        line_.tell(news.route.c_str());
    } else {
        const bool isPause = news.IsNew() && news.state == ReadingState::kPaused;
        (isPause ? line_.tell : line_.show)(WithMore(StatusOf(news)).c_str());
    }
}

std::string ReadingStatus::WithMore(std::string status) const {
    const std::string more = line_.more();
    return more.empty() ? status : std::move(status) + "; " + more;
}

void ReadingStatus::HearEnd(const ReadingNews& news) const {
    const bool hasBox = news.end == ReadingEnd::kEngineFailed;
    if (news.note.empty() || hasBox)
        line_.show(atRest_);
    else
        line_.tell(news.note.c_str());
}
