// The player as a window of its own: opens, plays at once, and stops when it is closed.
#pragma once

#include "playback/dialogs/player_panel.h"

// Modal.
class LPlayDlg : public LPlayerBaseDlg {
public:
    using LPlayerBaseDlg::LPlayerBaseDlg;

    // Blocks until the user closes the panel, or until nothing can be heard (Trouble()).
    void Open(GtkWidget* parent);

protected:
    void StartPlaying();  // also before the panel is on the screen

private:
    void EvEnded() override;
};

// What the owner of a modeless player follows it by. Any of these may close the player. GUI thread.
class LPlayDlgListener {
public:
    virtual ~LPlayDlgListener() = default;
    virtual void EvPlayerStarted() = 0;  // again too: after a pause, a seek, a wind
    virtual void EvPlayerPaused() = 0;
    virtual void EvPlayerTime(LSoundTime time) = 0;
    virtual void EvPlayerStopped() = 0;  // by the user; EvPlayerEnded follows
    // Nothing is loaded any more: stopped by the user, at the end, or in trouble.
    virtual void EvPlayerEnded(PlayTrouble trouble) = 0;
    virtual void EvPlayerLeft() = 0;                          // HasFocus has become false
    virtual void EvPlayerRoute(const std::string& text) = 0;  // what keeps it from its card, or ""
    virtual void EvPlayerClosed() = 0;
    virtual void EvNextTrack() = 0;
    // A key that means nothing to the player; true when it was of use.
    virtual bool EvPlayerKey(unsigned int key) = 0;
};

// The window that a player stands beside, and the text in it, on which the player may lie where
// there is no room beside. Borrowed.
struct LPlayerNeighbour {
    GtkWidget* window = nullptr;
    GtkWidget* text = nullptr;
};

// Beside the window whose text it plays, which stays usable.
class LPlayDlgModeless final : public LPlayDlg {
public:
    // Both outlive the player.
    LPlayDlgModeless(LPlayerBaseInfo& info, LPlayDlgListener& listener)
        : LPlayDlg(info), listener_(listener) {}

    // Plays what `info` tells of, from its start: in the panel that is open, or in a new one beside
    // `neighbour` (none or hidden: wherever the window manager puts it). A new panel takes the
    // keyboard only from a `neighbour` that had it, so that a user who works in another program
    // goes on there; closing gives it back.
    void Restart(const LPlayerNeighbour& neighbour, bool takesKeyboard);
    void RestartUnseen();  // the same without a panel
    void Seek(LSoundTime time) { MoveTo(time); }
    void Stop();            // without word to the listener
    bool HasFocus() const;  // the user is in it, or is just being led there

    void InitDialog() override;
    void DestroyDialog() override;
    void Command(int command) override;
    bool EvKeyDown(unsigned int key) override;
    void CmStop() override;
    void CmClose() override;

private:
    void spntfPlay(int id) override;
    void spntfCue(int id) override;
    void spntfTime(LSoundTime time, int id) override;
    void EvEnded() override;
    void EvRoute() override { listener_.EvPlayerRoute(RouteText()); }
    void PlaceBeside();
    static void GCActiveChanged(GObject* window, GParamSpec*, gpointer host);

    LPlayDlgListener& listener_;
    LPlayerNeighbour neighbour_;  // while open
    bool givesFocusBack_ = false;
    bool awaitsFocus_ = false;
};
