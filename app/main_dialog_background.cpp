// The main window closed, hidden and brought back: Lectora goes on in the background, so that its
// hotkeys work.
#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/settings_keys.h"
#include "gui/icon_numbers.h"
#include "gui/message_box.h"

void MainDialog::EvShown() {
    tray_.Add(kTrayIcon, "Lectora");
    // Not in the way of a reading that is about to begin.
    offersHotKeys_ = waitingFiles_.empty();
    if (!waitingFiles_.empty())
        firstKeyboard_.Start(Widget(), [this] { ReadWaitingFilesSoon(); });
    g_signal_connect(Widget(), "expose-event", G_CALLBACK(GCFirstDrawing), this);
    g_signal_connect(Widget(), "focus-out-event", G_CALLBACK(GCFocusOut), this);
}

// What comes over the window comes after it; the splash screen goes as soon as the user does
// something or a dialog comes, which it would lie over.
gboolean MainDialog::GCFirstDrawing(GtkWidget* widget, GdkEventExpose*, gpointer self) {
    auto* window = static_cast<MainDialog*>(self);
    g_signal_handlers_disconnect_by_func(widget, reinterpret_cast<gpointer>(GCFirstDrawing), self);
    if (window->offersHotKeys_)
        window->hotKeyOffer_.AskSoon(*window, [window] { window->HotkeysStart(); });
    window->splashTimer_.Start(0, [window] {
        if (gtk_grab_get_current() == nullptr)
            window->splash_.Display(window->Widget());
    });
    return FALSE;
}

gboolean MainDialog::GCFocusOut(GtkWidget*, GdkEventFocus*, gpointer self) {
    static_cast<MainDialog*>(self)->splash_.Close();
    return FALSE;
}

// Brings the window back; pressing again does not hide it.
void MainDialog::EvTrayIconPressed(int button) {
    if (button == 1 && (!gtk_widget_get_visible(Widget()) || IsMinimised()))
        CmOpen();
    else if (button == 3)
        EvNotifyIconContextMenu();
}

void MainDialog::EvNotifyIconContextMenu() {
    places_.PopupTrayMenu();
}

bool MainDialog::IsMinimised() const {
    return (gdk_window_get_state(gtk_widget_get_window(Widget())) & GDK_WINDOW_STATE_ICONIFIED) !=
           0;
}

// The first time, tells where the program has gone.
void MainDialog::CmClose() {
    if (!IsOpen() || !gtk_widget_get_visible(Widget()))
        return;
    splash_.Close();
    if (!tray_.IsDocked()) {
        // Hidden, nothing but a second start could bring it back.
        StorePlacement();
        gtk_window_iconify(GTK_WINDOW(Widget()));
        BubbleTipRun(kTextBox, "Lectora is minimized",
                     "This desktop has no notification area that could show Lectora's icon, so the "
                     "window was minimized instead of hidden. \"Exit (Turn Off)\" in its first "
                     "menu ends Lectora.");
        return;
    }
    LMainWindow::CmClose();
    if (!kFirstExitDoneSetting.Get()) {
        kFirstExitDoneSetting.Set(true);
        static constexpr char kText[] =
            "Your hotkeys keep working. The icon in the notification area opens the window again, "
            "and its menu ends Lectora.";
        if (!BubbleTipRun(kTextBox, "Lectora goes on", kText))
            tray_.NotifyTray(kText);
    }
}

// True ends the program. So does closing the box without an answer: the user has asked for the end
// and has not taken it back.
bool MainDialog::CmCancel() {
    if (askingToExit_)
        return false;
    askingToExit_ = true;
    const int answer = MessageBoxRunYesNoCancel(
        Widget(), "Lectora", "Confirm Exit",
        "Do you want Lectora to continue run in the background so you can use your hot keys to "
        "read text?");
    askingToExit_ = false;
    if (answer == GTK_RESPONSE_YES)
        CmClose();
    else if (answer == GTK_RESPONSE_NO)
        LMainWindow::CmClose();
    return answer != GTK_RESPONSE_YES && answer != GTK_RESPONSE_CANCEL;
}

// Nobody loses the program: a window that was hidden into a tray that has gone comes back.
void MainDialog::BringBackWithoutTray() {
    if (!gtk_widget_get_visible(Widget()) && !tray_.IsDocked())
        CmOpen();
}

void MainDialog::EvTimer(int timerId) {
    if (timerId != kKeepAliveTimer) {
        TimerReset(timerId);
        return;
    }
    BringBackWithoutTray();
    TimerSet(kKeepAliveTimer, kKeepAliveMilliseconds);
}
