// The player as a window of its own, or as a part of another.
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

// The window that a player belongs to, and the text in it, on which the player may lie where there
// is no room beside. Borrowed.
struct LPlayerNeighbour {
    GtkWidget* window = nullptr;
    GtkWidget* text = nullptr;
};

// Beside the window whose text it plays, which stays usable, or in it.
class LPlayDlgModeless final : public LPlayerBaseDlg {
public:
    using LPlayerBaseDlg::LPlayerBaseDlg;

    // Any of these may close the player, or have it stand elsewhere.
    std::function<void()> left;                  // HasFocus has become false
    std::function<void()> closed;                // by the user; it has stopped
    std::function<bool(unsigned int key)> keys;  // of no meaning to it; true when of use
    std::function<void(bool isInside)> moves;    // the user wants it inside, or outside
    std::function<void()> reshaped;              // it needs another height inside

    // Outside, unless it is on the screen. With the keyboard where the user was led to it: then
    // where it stood last, else beside `neighbour`. Otherwise it leaves the keyboard, and the
    // window that has it, as they are.
    void Show(const LPlayerNeighbour& neighbour, bool takesKeyboard);
    // Inside: in `dock`, an empty box of the neighbour's; the keyboard stays where it is.
    void ShowIn(GtkWidget* dock, const LPlayerNeighbour& neighbour);
    bool IsInside() const { return static_cast<bool>(rows_); }
    // Inside, leaves out what a place of that width has no room for, and the second row by choice.
    void FitInto(int width, bool isLow);
    // The same, and plays what its transport has from the start.
    void Restart(const LPlayerNeighbour& neighbour, bool takesKeyboard);
    void Seek(LSoundTime time) { Transport().MoveTo(time); }
    bool HasFocus() const;  // the user is in it, or is just being led there

    void InitDialog() override;
    void DestroyDialog() override;
    void EnableControls() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    void CmClose() override;

protected:
    void EvChange(LPlayerChange change) override;
    bool HasRoomFor(int control) const override;
    void WidgetAttached(GtkWidget* widget) override;
    void WidgetDetached() override;

private:
    void FindPlace();
    void PlaceBeside(const GdkRectangle& own);
    void KeepPlace() const;
    void Unfold(bool isUnfolded);
    bool EvKeyInside(unsigned int key);
    static void GCActiveChanged(GObject* window, GParamSpec*, gpointer host);
    static void GCFocusMoved(GtkWindow* window, GtkWidget*, gpointer host);

    LPlayerNeighbour neighbour_;  // while open
    bool takesKeyboard_ = false;
    bool awaitsFocus_ = false;
    GObjectRef<GtkWidget> rows_;  // inside
    unsigned int leftOut_ = 0;    // groups of controls that have no room
    bool isLow_ = false;
    bool isUnfolded_ = false;
};
