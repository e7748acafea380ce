#include "app/window/presence.h"

#include <utility>

#include "app/commands/command_numbers.h"
#include "app/settings_keys.h"
#include "gui/icon_numbers.h"
#include "gui/windows/message_box.h"

Presence::Presence(LMainWindow& window, int tipControl, Narrator& narrator, Ways ways)
    : window_(window),
      tipControl_(tipControl),
      popupMenu_(std::move(ways.popupMenu)),
      title_(window, narrator, std::move(ways.document)),
      tray_([this](int button) { EvIconPressed(button); }),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

void Presence::AddCommands(CommandSet& commands) {
    static constexpr CommandRow<Presence> kRows[] = {
        {{.number = kOpenWindow, .label = "Open Lectora"}, &Presence::CmOpen},
    };
    commands.Add(*this, kRows);
}

void Presence::Hear(const ReadingNews& news) {
    if (!news.IsNew() || !window_.IsOpen())
        return;
    if (news.state == ReadingState::kPaused)
        tray_.Show(kTrayPausedIcon, "Lectora: paused");
    else if (IsReading(news.state))
        tray_.Show(kTrayReadingIcon, "Lectora: reading aloud");
    else
        tray_.Show(kTrayIcon, "Lectora");
}

void Presence::Begin(std::function<void()> drawn) {
    title_.Show();
    tray_.Add(kTrayIcon, "Lectora");
    TimerSet(kKeepAliveTimer, kKeepAliveMilliseconds);
    firstMoments_.Begin(window_, std::move(drawn));
}

void Presence::End() {
    firstMoments_.End();
    TimerReset(kKeepAliveTimer);
    tray_.Remove();
}

// Brings the window back; pressing again does not hide it.
void Presence::EvIconPressed(int button) {
    if (button == 1 && !IsOnScreen())
        window_.CmOpen();
    else if (button == 3)
        popupMenu_();
}

bool Presence::IsOnScreen() const {
    return gtk_widget_get_visible(window_.Widget()) && !IsMinimised();
}

void Presence::TellAnywhere(const char* summary, const std::string& note) {
    if (!IsOnScreen())
        window_.Notify(summary, note.c_str(), [this] { window_.CmOpen(); });
    window_.TellStatusText(note.c_str());
}

bool Presence::IsMinimised() const {
    return (gdk_window_get_state(gtk_widget_get_window(window_.Widget())) &
            GDK_WINDOW_STATE_ICONIFIED) != 0;
}

void Presence::Close() {
    EndSplash();
    if (!window_.IsOpen() || !gtk_widget_get_visible(window_.Widget()))
        return;
    if (!tray_.IsDocked()) {
        // Hidden, nothing but a second start could bring it back.
        window_.Minimise();
        static constexpr char kText[] =
            "This desktop has no notification area that could show Lectora's icon, so the window "
            "was minimized instead of hidden. \"Exit (Turn Off)\" in its first menu ends Lectora.";
        window_.Notify("Lectora is minimized", kText, [this] {
            window_.BubbleTipRun(tipControl_, "Lectora is minimized", kText);
        });
        return;
    }
    window_.LMainWindow::CmClose();
    if (!kFirstExitDoneSetting.Get()) {
        kFirstExitDoneSetting.Set(true);
        static constexpr char kText[] =
            "Your hotkeys keep working. The icon in the notification area opens the window again, "
            "and its menu ends Lectora.";
        window_.Notify("Lectora goes on", kText, [this] { tray_.NotifyTray(kText); });
    }
}

// "No" alone ends: Escape and closing the box take the end back.
bool Presence::AskToEnd() {
    if (isAsking_)
        return false;
    isAsking_ = true;
    const int answer = MessageBoxRunYesNoCancel(
        window_.Widget(), "Lectora", "Confirm Exit",
        "Do you want Lectora to continue run in the background so you can use your hot keys to "
        "read text?");
    isAsking_ = false;
    if (answer == GTK_RESPONSE_YES)
        Close();
    else if (answer == GTK_RESPONSE_NO)
        window_.LMainWindow::CmClose();
    return answer == GTK_RESPONSE_NO;
}

// Nobody loses the program: a window that was hidden into a tray that has gone comes back.
void Presence::BringBackWithoutTray() {
    if (!gtk_widget_get_visible(window_.Widget()) && !tray_.IsDocked())
        window_.CmOpen();
}

void Presence::EvTimer(int timerId) {
    if (timerId != kKeepAliveTimer) {
        TimerReset(timerId);
        return;
    }
    BringBackWithoutTray();
    TimerSet(kKeepAliveTimer, kKeepAliveMilliseconds);
}
