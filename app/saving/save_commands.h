// What the user saves of the text in the window: its speech, or the text itself.
#pragma once

#include <functional>

#include "app/commands/command_set.h"
#include "app/commands/command_turn.h"
#include "app/reading/dialogs/voice_choice.h"
#include "app/text/text_sources.h"

// A reading goes on meanwhile. GUI thread.
class SaveCommands {
public:
    struct Parts {
        LMainWindow& window;
        CommandTurn& turn;
        TextPane& text;
        TextSources& sources;
        VoiceChoice& voices;
    };
    explicit SaveCommands(const Parts& parts) : parts_(parts) {}
    SaveCommands(const SaveCommands&) = delete;
    SaveCommands& operator=(const SaveCommands&) = delete;

    void AddCommands(CommandSet& commands);

private:
    void CmSave();
    void CmSaveFromFile();
    void CmSaveFromSelection();
    void CmSaveTextAs();

    const Parts parts_;
};
