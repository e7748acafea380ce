// The player, in the main window or beside it, there while it is of use.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "app/reading/narrator.h"
#include "gui/signal_owner.h"
#include "playback/dialogs/play_dialog.h"

// A receiver of the narrator's news: the player comes with the first sound. It goes with the end,
// unless the user is in it, to hear a sentence again for example, or there was trouble: another
// sound card can be chosen there.
//
// It stands in the window, below the text, unless the user took it out of there, the window is not
// on the screen, or the user works in another program. It never takes the keyboard of itself: the
// window has its keys, and a screen reader would talk over the first sentence. GUI thread.
class ReadingPlayer {
public:
    struct Listener {
        std::function<bool(unsigned int key)> keys;  // unknown to the player; true when of use
        std::function<void()> reshaped;              // it needs another place in the window
    };
    ReadingPlayer(Narrator& narrator, Listener listener);
    ~ReadingPlayer();
    ReadingPlayer(const ReadingPlayer&) = delete;
    ReadingPlayer& operator=(const ReadingPlayer&) = delete;

    GtkWidget* CreateDock();  // once, floating: its place in the window, which owns it
    bool IsDocked() const { return player_.IsInside(); }
    // The docked player into a place of that width, in one row where the window is low.
    void FitInto(int width, bool isLow) { player_.FitInto(width, isLow); }
    // Keys of the window, which are the player's while it is docked and has the keyboard.
    bool EvKeyDown(unsigned int key);
    bool EvKeyUp(unsigned int key);

    void Expect(const LPlayerNeighbour& neighbour);  // of the next reading
    // The window that a box about the reading belongs to.
    GtkWidget* BoxParent() const;
    void Close();

private:
    void Hear(const ReadingNews& news);
    bool BelongsInWindow() const;
    void Show(bool takesKeyboard);
    void MoveSoon(bool takesKeyboard);
    void LeaveSoon();
    static void GCActiveChanged(GObject* window, GParamSpec*, gpointer self);
    static gboolean GCStateChanged(GtkWidget* window, GdkEvent*, gpointer self);
    static void GCHidden(GtkWidget* window, gpointer self);

    Narrator& narrator_;
    const Listener listener_;
    LPlayerNeighbour neighbour_;
    GtkWidget* dock_ = nullptr;     // the window's
    bool isFromElsewhere_ = false;  // who reads works in another program
    LPlayDlgModeless player_;
    LGuiTimer leaving_;
    LGuiTimer moving_;
    LSignalOwner window_;
    Narrator::Subscription news_;
};
