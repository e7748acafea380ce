// The commands that choose who reads.
#pragma once

#include <functional>

#include "app/commands/command_set.h"
#include "app/reading/dialogs/voice_choice.h"
#include "app/reading/voice_change.h"
#include "gui/main_window/main_window.h"

// GUI thread.
class VoiceCommands {
public:
    // All of them outlive this object; tell is the status bar's, for news.
    VoiceCommands(LMainWindow& window, VoiceChoice& voices, Narrator& narrator,
                  CommandSet& commands, std::function<void(const char*)> tell);

    void AddCommands();
    void CreateIndicator();  // in the status bar, once it is there
    // Takes what is chosen in the dialog; a reading goes on as its voice is to speak now.
    void TakeFrom(const std::function<void()>& dialog);

private:
    void Take(bool hasOtherManners);
    void TakeSettings();
    void EvListChanged();
    void CmChoose();
    void CmByLanguage();
    void Hear(const ReadingNews& news);
    static void GCOtherPressed(GtkWidget* button, gpointer self);

    LMainWindow& window_;
    VoiceChoice& voices_;
    Narrator& narrator_;
    CommandSet& commands_;
    const std::function<void(const char*)> tell_;
    VoiceChange change_;
    GtkWidget* other_ = nullptr;  // who reads, while that is not the chosen voice
    int otherVoice_ = -1;
    Narrator::Subscription news_;
};
