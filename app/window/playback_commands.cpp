#include "app/window/playback_commands.h"

#include <gdk/gdkkeysyms.h>

#include <string>
#include <utility>

#include "app/commands/command_numbers.h"

PlaybackCommands::PlaybackCommands(Narrator& narrator, CommandSet& commands, Listener listener)
    : narrator_(narrator),
      commands_(commands),
      listener_(std::move(listener)),
      sleep_(narrator, commands, listener_.tell),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

struct PlaybackCommands::Rows {
    // Ctrl with an arrow moves by words and paragraphs of the text box while nothing is read.
    static constexpr CommandRow<PlaybackCommands> kAll[] = {
        {{.number = kPlayOrPause, .label = "&Play", .keys = {GDK_F9}, .needs = kNeedsTextOrSound},
         &PlaybackCommands::CmPlayOrPause},
        {{.number = kStopReading,
          .label = "&Stop",
          .keys = {GDK_Escape},
          .needs = kNeedsReading,
          .sharesKeys = true},
         &PlaybackCommands::CmStop},
        {{.number = kPreviousSentence,
          .label = "Pre&vious Sentence",
          .keys = {kKeyControl | GDK_Left},
          .needs = kNeedsPlaces,
          .sharesKeys = true},
         &PlaybackCommands::CmPreviousSentence},
        {{.number = kRepeatSentence,
          .label = "&Repeat Sentence",
          .keys = {kKeyControl | GDK_R},
          .needs = kNeedsSound},
         &PlaybackCommands::CmRepeatSentence},
        {{.number = kNextSentence,
          .label = "&Next Sentence",
          .keys = {kKeyControl | GDK_Right},
          .needs = kNeedsPlaces,
          .sharesKeys = true},
         &PlaybackCommands::CmNextSentence},
        {{.number = kPreviousParagraph,
          .label = "Previous P&aragraph",
          .keys = {kKeyControl | GDK_Up},
          .needs = kNeedsPlaces,
          .sharesKeys = true},
         &PlaybackCommands::CmPreviousParagraph},
        {{.number = kNextParagraph,
          .label = "Next Para&graph",
          .keys = {kKeyControl | GDK_Down},
          .needs = kNeedsPlaces,
          .sharesKeys = true},
         &PlaybackCommands::CmNextParagraph},
        {{.number = kPreviousHeading,
          .label = "Previous &Heading",
          .keys = {kKeyControl | GDK_Page_Up},
          .needs = kNeedsPlaces | kNeedsHeadings,
          .sharesKeys = true},
         &PlaybackCommands::CmPreviousHeading},
        {{.number = kNextHeading,
          .label = "Next H&eading",
          .keys = {kKeyControl | GDK_Page_Down},
          .needs = kNeedsPlaces | kNeedsHeadings,
          .sharesKeys = true},
         &PlaybackCommands::CmNextHeading},
        {{.number = kPreviousChapter,
          .label = "Previous &Chapter",
          .keys = {kKeyControl | kKeyShift | GDK_Page_Up},
          .needs = kNeedsPlaces | kNeedsChapters},
         &PlaybackCommands::CmPreviousChapter},
        {{.number = kNextChapter,
          .label = "Next Chap&ter",
          .keys = {kKeyControl | kKeyShift | GDK_Page_Down},
          .needs = kNeedsPlaces | kNeedsChapters},
         &PlaybackCommands::CmNextChapter},
        {{.number = kFaster,
          .label = "&Faster",
          .keys = {kKeyAlt | GDK_Page_Up},
          .needs = kNeedsReading},
         &PlaybackCommands::CmFaster},
        {{.number = kSlower,
          .label = "Slo&wer",
          .keys = {kKeyAlt | GDK_Page_Down},
          .needs = kNeedsReading},
         &PlaybackCommands::CmSlower},
    };
};

void PlaybackCommands::AddCommands() {
    commands_.Add(*this, Rows::kAll);
    sleep_.AddCommands();
}

bool PlaybackCommands::CanBeHeard() const {
    return narrator_.State() == ReadingState::kPlaying ||
           narrator_.State() == ReadingState::kPaused;
}

CommandNeeds PlaybackCommands::Available(bool hasText) const {
    const bool isReading = narrator_.IsReading();
    return (isReading ? kNeedsReading : 0) | (CanBeHeard() ? kNeedsSound : 0) |
           (CanBeHeard() || (hasText && !isReading) ? kNeedsTextOrSound : 0) |
           (hasText || isReading ? kNeedsTextOrReading : 0) |
           (narrator_.CanMove() ? kNeedsPlaces : 0) |
           (narrator_.Headings().empty() ? 0 : kNeedsHeadings) |
           (narrator_.Chapters().empty() ? 0 : kNeedsChapters);
}

void PlaybackCommands::CmPlayOrPause() {
    if (narrator_.IsReading())
        narrator_.TogglePause();
    else
        listener_.read();
}

void PlaybackCommands::ChangeSpeed(int percent) {
    narrator_.SetTempo(narrator_.TempoPercent() + percent);
    const std::string speed = std::to_string(narrator_.TempoPercent());
    listener_.tell(("Reading speed: " + speed + " %").c_str());
}

void PlaybackCommands::Hear(const ReadingNews& news) {
    if (!news.IsNew())
        return;
    const bool isHeard = IsReading(news.state) && news.state != ReadingState::kPaused;
    commands_.Rename(kPlayOrPause, isHeard ? "&Pause" : "&Play");
    listener_.changed();
}
