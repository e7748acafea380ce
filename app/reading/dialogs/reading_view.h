// What the user sees of a reading beside its text: the player, the box while it waits, boxes about
// trouble, and the status bar.
#pragma once

#include <functional>
#include <string>

#include "app/reading/dialogs/reading_player.h"
#include "app/reading/dialogs/reading_status.h"
#include "app/reading/dialogs/reading_troubles.h"
#include "app/reading/dialogs/reading_wait_box.h"
#include "gui/main_window/main_window.h"

// GUI thread.
class ReadingView {
public:
    struct Ways {
        std::function<bool(unsigned int key)> keys;         // those that the player does not know
        std::function<void()> reshaped;                     // the player needs another place
        std::function<void()> noVoice;                      // tells that, and what to do
        std::function<void(GtkWidget* parent)> cannotPlay;  // after the box about it
        std::function<std::string()> statusMore;            // behind the place in the status bar
    };
    // Both are borrowed.
    ReadingView(LMainWindow& window, Narrator& narrator, Ways ways);
    ReadingView(const ReadingView&) = delete;
    ReadingView& operator=(const ReadingView&) = delete;

    ReadingPlayer& Player() { return player_; }
    void ShowStatus() const;  // in place of what was said there meanwhile

private:
    LMainWindow& window_;
    Narrator& narrator_;
    ReadingPlayer player_;
    ReadingWaitBox waitBox_;
    ReadingTroubles troubles_;
    ReadingStatus status_;
};
