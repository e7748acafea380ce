// Reads the text of the window aloud: all of it, what is selected, or from a place on.
#pragma once

#include <functional>
#include <string>

#include "app/commands/command_set.h"
#include "app/commands/command_turn.h"
#include "app/reading/dialogs/reading_player.h"
#include "app/reading/dialogs/voice_choice.h"
#include "app/reading/narrator.h"
#include "app/text/text_pane.h"
#include "gui/gui_timer.h"
#include "gui/main_window/main_window.h"

// A receiver of the narrator's news: the large button is down while it reads, and says what it
// would read. GUI thread; all parts outlive this object.
class ReadAloud {
public:
    struct Parts {
        LMainWindow& window;
        TextPane& text;
        Narrator& narrator;
        VoiceChoice& voices;
        ReadingPlayer& player;
        CommandSet& commands;
        const CommandTurn& turn;
        std::function<bool()> isComing;  // more of the window's text
    };
    explicit ReadAloud(const Parts& parts);
    ReadAloud(const ReadAloud&) = delete;
    ReadAloud& operator=(const ReadAloud&) = delete;

    void AddCommands();

    // What is selected, else from the cursor where that was placed, else from the beginning.
    void CmRead();
    void ReadFromPlace(const GtkTextIter& place);
    void ReadAt(std::size_t byte);             // of all of the text
    bool IsWhole() const { return isWhole_; }  // what is read, was read last: not a selection
    // In the text that is being read, goes on with the sentence there; false: nothing is read.
    bool GoOnAt(const GtkTextIter& place);
    void ShowStart();  // what CmRead would read may have changed

private:
    void Hear(const ReadingNews& news);
    void ShowState();
    ReadFrom StartOfButton() const;
    void CmStopOrGoOn();
    void CmReadFromHere();
    void Begin(TextToRead what, bool isWhole);

    const Parts parts_;
    bool isWhole_ = false;
    ReadFrom shownStart_ = ReadFrom::kBeginning;
    LGuiTimer naming_;
    Narrator::Subscription news_;
};
