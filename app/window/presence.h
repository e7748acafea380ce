// The main window closed, hidden and brought back: Lectora goes on in the background, so that its
// hotkeys work.
#pragma once

#include <functional>

#include "app/window/tray_icon.h"
#include "gui/main_window/main_window.h"
#include "gui/windows/timer_handler.h"

// GUI thread.
class Presence : private LTimerHandler {
public:
    // What the window does itself.
    struct Ways {
        std::function<void()> hide;       // stores the placement first
        std::function<void()> minimise;   // likewise
        std::function<void()> popupMenu;  // of the icon, at the pointer
    };
    // tipControl: where it is told what has become of the window, which outlives this object.
    Presence(LMainWindow& window, int tipControl, Ways ways);

    void Begin();  // the window is about to be shown for the first time
    void End();    // it is about to go

    // Hides the window; without a tray that shows the icon, minimises it. The first time, tells
    // where the program has gone.
    void Close();
    // Asks whether to go on in the background, and does so after a yes. True ends the program.
    bool AskToEnd();
    bool IsOnScreen() const;  // neither hidden nor minimised

    // The icon's picture and what it says.
    void ShowState(int imageNumber, const char* tooltip) { tray_.Show(imageNumber, tooltip); }

private:
    static constexpr int kKeepAliveTimer = 1;
    static constexpr unsigned int kKeepAliveMilliseconds = 10000;

    void EvTimer(int timerId) override;
    void EvIconPressed(int button);
    bool IsMinimised() const;
    void BringBackWithoutTray();

    LMainWindow& window_;
    const int tipControl_;
    const Ways ways_;
    TrayIcon tray_;
    bool isAsking_ = false;
};
