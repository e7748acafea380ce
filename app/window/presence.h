// The main window on the desktop: its title and icon, shown for the first time, closed, hidden and
// brought back. Lectora goes on in the background, so that its hotkeys work.
#pragma once

#include <functional>
#include <string>

#include "app/commands/command_set.h"
#include "app/reading/narrator.h"
#include "app/window/first_moments.h"
#include "app/window/tray_icon.h"
#include "app/window/window_title.h"
#include "gui/main_window/main_window.h"
#include "gui/windows/timer_handler.h"

// A receiver of the narrator's news, which the icon shows. GUI thread.
class Presence : private LTimerHandler {
public:
    struct Ways {
        std::function<void()> popupMenu;        // the icon's, at the pointer
        std::function<std::string()> document;  // in the window: what it is called, or nothing
    };
    // tipControl: where it is told what has become of the window. Window and narrator are borrowed.
    Presence(LMainWindow& window, int tipControl, Narrator& narrator, Ways ways);

    void AddCommands(CommandSet& commands);

    // The window is about to be shown for the first time. drawn: once it is drawn; may be null.
    void Begin(std::function<void()> drawn);
    void End();                                      // it is about to go
    void EndSplash() { firstMoments_.EndSplash(); }  // the user does something
    void ShowTitle() const { title_.Show(); }        // another document has come

    // Hides the window; without a tray that shows the icon, minimises it. The first time, tells
    // where the program has gone.
    void Close();
    // Asks whether to go on in the background, and does so after a yes. True ends the program.
    bool AskToEnd();
    // In the status bar; while nobody sees that, in the desktop's notifications too.
    void TellAnywhere(const char* summary, const std::string& note);

private:
    static constexpr int kKeepAliveTimer = 1;
    static constexpr unsigned int kKeepAliveMilliseconds = 10000;

    void EvTimer(int timerId) override;
    void EvIconPressed(int button);
    void Hear(const ReadingNews& news);
    void CmOpen() { window_.CmOpen(); }
    bool IsOnScreen() const;  // neither hidden nor minimised
    bool IsMinimised() const;
    void BringBackWithoutTray();

    LMainWindow& window_;
    const int tipControl_;
    const std::function<void()> popupMenu_;
    WindowTitle title_;
    FirstMoments firstMoments_;
    TrayIcon tray_;
    bool isAsking_ = false;
    Narrator::Subscription news_;
};
