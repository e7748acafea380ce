// The commands that choose who reads.
#pragma once

#include <functional>

#include "app/commands/command_set.h"
#include "app/reading/dialogs/voice_choice.h"
#include "app/reading/voice_change.h"

// GUI thread.
class VoiceCommands {
public:
    // All of them outlive this object; tell is the status bar's, for news.
    VoiceCommands(LWindow& window, VoiceChoice& voices, Narrator& narrator, CommandSet& commands,
                  std::function<void(const char*)> tell);

    void AddCommands();

private:
    void EvListChanged();
    void CmChoose();

    LWindow& window_;
    VoiceChoice& voices_;
    CommandSet& commands_;
    const std::function<void(const char*)> tell_;
    VoiceChange change_;
};
