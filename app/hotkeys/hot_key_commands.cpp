#include "app/hotkeys/hot_key_commands.h"

#include "app/commands/command_numbers.h"
#include "app/hotkeys/hot_key_store.h"

void HotKeyCommands::Begin() {
    keys_.Init();
    keys_.Start();
}

void HotKeyCommands::OfferSoon() {
    offer_.AskSoon(window_, [this] { keys_.Start(); });
}

void HotKeyCommands::EvHotKey(int storedCommand) {
    // By the stored number. What is being read goes on while a dialog is up, and obeys.
    static constexpr int kCommands[kHotKeyCommands] = {kUpdateFromSelection,
                                                       kReadSelectionOrPause,
                                                       kSaveFromSelection,
                                                       kPlayOrPause,
                                                       kStopReading,
                                                       kPreviousSentence,
                                                       kNextSentence,
                                                       kFaster,
                                                       kSlower};
    if (turn_.IsTaken() && storedCommand <= kHotKeySave)
        CommandTurn::PresentDialog();
    else if (storedCommand >= 0 && storedCommand < kHotKeyCommands)
        window_.WMCommand(kCommands[storedCommand]);
}
