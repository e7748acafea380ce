// The command that makes audiobooks of documents and of the text in the window.
#pragma once

#include "app/books/audiobook_dialog.h"
#include "app/commands/command_set.h"
#include "app/commands/command_turn.h"
#include "app/reading/dialogs/voice_choice.h"
#include "app/text/text_pane.h"
#include "gui/main_window/main_window.h"

// GUI thread. What is being made goes on while the window is hidden; it ends with this object, and
// is gone on with by a later one.
class Audiobooks {
public:
    // All outlive this object.
    struct Parts {
        LMainWindow& window;
        CommandTurn& turn;
        TextPane& text;
        VoiceChoice& voices;
        std::function<bool()> awaitText;  // all of the window's; false: the user does not
    };
    explicit Audiobooks(const Parts& parts);
    Audiobooks(const Audiobooks&) = delete;
    Audiobooks& operator=(const Audiobooks&) = delete;

    void AddCommands(CommandSet& commands);

private:
    void CmSaveAsAudiobook();
    void AddText();

    const Parts parts_;
    AudiobookDialog dialog_;
};
