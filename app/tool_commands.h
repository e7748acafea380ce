// The commands that open a window of their own and leave the text as it is: options,
// pronunciations, what this computer lacks, and help.
#pragma once

#include "app/commands/command_set.h"
#include "app/hotkeys/hot_key_commands.h"
#include "app/text/text_pane.h"
#include "app/voices/voice_commands.h"
#include "gui/windows/window.h"

// GUI thread. All are borrowed.
class ToolCommands {
public:
    ToolCommands(LWindow& window, const TextPane& text, HotKeyCommands& hotKeys,
                 VoiceCommands& voices)
        : window_(window), text_(text), hotKeys_(hotKeys), voices_(voices) {}
    ToolCommands(const ToolCommands&) = delete;
    ToolCommands& operator=(const ToolCommands&) = delete;

    void AddCommands(CommandSet& commands);

private:
    void CmOptions();
    void CmSayDifferently();
    void CmCheckComputer();
    void CmMoreVoices();
    void CmHelp() { window_.CmHelp(); }

    LWindow& window_;
    const TextPane& text_;
    HotKeyCommands& hotKeys_;
    VoiceCommands& voices_;
};
