// The commands that a reading is controlled by from the window, its menus and the tray; those of
// its sleep timer too.
#pragma once

#include <functional>

#include "app/commands/command_set.h"
#include "app/reading/narrator.h"
#include "app/window/sleep_commands.h"

// GUI thread. A receiver of the narrator's news.
class PlaybackCommands {
public:
    struct Listener {
        std::function<void()> read;  // begin with the text in the window
        std::function<void(const char*)> tell;
        std::function<void()> changed;  // Available() is another one
    };
    // The narrator outlives this object, the commands too.
    PlaybackCommands(Narrator& narrator, CommandSet& commands, Listener listener);
    PlaybackCommands(const PlaybackCommands&) = delete;
    PlaybackCommands& operator=(const PlaybackCommands&) = delete;

    void AddCommands();
    CommandNeeds Available(bool hasText) const;
    std::string Status() const { return sleep_.Status(); }  // of the sleep timer

private:
    struct Rows;  // of its commands

    void Hear(const ReadingNews& news);
    void CmPlayOrPause();
    void CmStop() { narrator_.Stop(); }
    void CmPreviousSentence() { narrator_.MoveToSentence(-1); }
    void CmRepeatSentence() { narrator_.MoveToSentence(0); }
    void CmNextSentence() { narrator_.MoveToSentence(1); }
    void CmPreviousParagraph() { narrator_.MoveToParagraph(-1); }
    void CmNextParagraph() { narrator_.MoveToParagraph(1); }
    void CmPreviousHeading() { narrator_.MoveToHeading(-1); }
    void CmNextHeading() { narrator_.MoveToHeading(1); }
    void CmPreviousChapter() { narrator_.MoveToChapter(-1); }
    void CmNextChapter() { narrator_.MoveToChapter(1); }
    void CmFaster() { ChangeSpeed(kSpeedStep); }
    void CmSlower() { ChangeSpeed(-kSpeedStep); }
    void ChangeSpeed(int percent);
    bool CanBeHeard() const;

    static constexpr int kSpeedStep = 10;  // percent, as in the player

    Narrator& narrator_;
    CommandSet& commands_;
    const Listener listener_;
    SleepCommands sleep_;
    Narrator::Subscription news_;
};
