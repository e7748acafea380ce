// The player beside the main window, there while it is of use.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "app/reading/narrator.h"
#include "playback/dialogs/play_dialog.h"

// A receiver of the narrator's news: the player comes with the first sound. It goes with the end,
// unless the user is in it, to hear a sentence again for example, or there was trouble: another
// sound card can be chosen there. GUI thread.
class ReadingPlayer {
public:
    // keys: what the player does not know; true when it was of use.
    ReadingPlayer(Narrator& narrator, std::function<bool(unsigned int key)> keys);
    ~ReadingPlayer() { Close(); }
    ReadingPlayer(const ReadingPlayer&) = delete;
    ReadingPlayer& operator=(const ReadingPlayer&) = delete;

    // For the next reading: where the player stands, and whether it gets the keyboard.
    void Expect(const LPlayerNeighbour& neighbour, bool takesKeyboard);
    // The window that a box about the reading belongs to.
    GtkWidget* BoxParent() const;
    void Close();

private:
    void Hear(const ReadingNews& news);
    void LeaveSoon();

    Narrator& narrator_;
    LPlayerNeighbour neighbour_;
    bool takesKeyboard_ = false;
    LPlayDlgModeless player_;
    LGuiTimer leaving_;
    Narrator::Subscription news_;
};
