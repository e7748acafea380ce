// The player as a window of its own.
#pragma once

#include <functional>

#include "playback/dialogs/player_panel.h"

// Modal: plays at once, and stops when it is closed.
class LPlayDlg : public LPlayerBaseDlg {
public:
    using LPlayerBaseDlg::LPlayerBaseDlg;

    // Blocks until the user closes the panel, or until nothing can be heard (Trouble()).
    void Open(GtkWidget* parent);

protected:
    void EvChange(LPlayerChange change) override;
};

// The window that a player stands beside, and the text in it, on which the player may lie where
// there is no room beside. Borrowed.
struct LPlayerNeighbour {
    GtkWidget* window = nullptr;
    GtkWidget* text = nullptr;
};

// Beside the window whose text it plays, which stays usable.
class LPlayDlgModeless final : public LPlayerBaseDlg {
public:
    using LPlayerBaseDlg::LPlayerBaseDlg;

    // Any of these may close the player.
    std::function<void()> left;                  // HasFocus has become false
    std::function<void()> closed;                // by the user; it has stopped
    std::function<bool(unsigned int key)> keys;  // of no meaning to it; true when of use

    // Beside `neighbour` (none or hidden: wherever the window manager puts it), unless it is on the
    // screen. It takes the keyboard only from a `neighbour` that had it, so that a user who works
    // in another program goes on there; closing gives it back.
    void Show(const LPlayerNeighbour& neighbour, bool takesKeyboard);
    // The same, and plays what its transport has from the start.
    void Restart(const LPlayerNeighbour& neighbour, bool takesKeyboard);
    void Seek(LSoundTime time) { Transport().MoveTo(time); }
    bool HasFocus() const;  // the user is in it, or is just being led there

    void InitDialog() override;
    void DestroyDialog() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    void CmClose() override;

private:
    void PlaceBeside();
    static void GCActiveChanged(GObject* window, GParamSpec*, gpointer host);

    LPlayerNeighbour neighbour_;  // while open
    bool givesFocusBack_ = false;
    bool awaitsFocus_ = false;
};
