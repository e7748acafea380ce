#include "app/reading/dialogs/reading_player.h"

#include <utility>

#include "playback/dialogs/player_panel_ids.h"
#include "playback/settings_keys.h"

namespace {

bool IsOnScreen(GtkWidget* window) {
    return window != nullptr && gtk_widget_get_mapped(window) != FALSE &&
           (gdk_window_get_state(gtk_widget_get_window(window)) & GDK_WINDOW_STATE_ICONIFIED) == 0;
}

// Whether the keyboard is in a window of this program.
bool IsWorkedIn() {
    GList* windows = gtk_window_list_toplevels();
    bool isActive = false;
    for (const GList* each = windows; each != nullptr; each = each->next)
        isActive = isActive || gtk_window_is_active(GTK_WINDOW(each->data)) != FALSE;
    g_list_free(windows);
    return isActive;
}

}  // namespace

ReadingPlayer::ReadingPlayer(Narrator& narrator, Listener listener)
    : narrator_(narrator),
      listener_(std::move(listener)),
      player_(narrator),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {
    player_.keys = listener_.keys;
    player_.reshaped = listener_.reshaped;
    player_.left = [this] { LeaveSoon(); };
    player_.closed = [this] {
        narrator_.Stop();
        narrator_.Forget();
        listener_.reshaped();
    };
    player_.moves = [this](bool isInside) {
        kPlayerDocked.Set(isInside);
        isFromElsewhere_ = false;
        MoveSoon(true);
    };
}

// By then there may be no window to be told.
ReadingPlayer::~ReadingPlayer() {
    player_.Close(kCommandOk);
}

GtkWidget* ReadingPlayer::CreateDock() {
    dock_ = gtk_vbox_new(FALSE, 0);
    return dock_;
}

bool ReadingPlayer::EvKeyDown(unsigned int key) {
    return IsDocked() && player_.HasFocus() && player_.EvKeyDown(key);
}

bool ReadingPlayer::EvKeyUp(unsigned int key) {
    return IsDocked() && player_.HasFocus() && player_.EvKeyUp(key);
}

void ReadingPlayer::Expect(const LPlayerNeighbour& neighbour) {
    neighbour_ = neighbour;
    isFromElsewhere_ = !IsWorkedIn();
    window_.Connect(neighbour.window, "notify::is-active", G_CALLBACK(GCActiveChanged), this);
    window_.Connect(neighbour.window, "window-state-event", G_CALLBACK(GCStateChanged), this);
    window_.Connect(neighbour.window, "unmap", G_CALLBACK(GCHidden), this);
}

void ReadingPlayer::GCActiveChanged(GObject* window, GParamSpec*, gpointer user) {
    auto* self = static_cast<ReadingPlayer*>(user);
    if (gtk_window_is_active(GTK_WINDOW(window)) == FALSE)
        return;
    self->isFromElsewhere_ = false;
    self->MoveSoon(false);
}

gboolean ReadingPlayer::GCStateChanged(GtkWidget*, GdkEvent*, gpointer self) {
    static_cast<ReadingPlayer*>(self)->MoveSoon(false);
    return FALSE;
}

void ReadingPlayer::GCHidden(GtkWidget*, gpointer self) {
    static_cast<ReadingPlayer*>(self)->MoveSoon(false);
}

bool ReadingPlayer::BelongsInWindow() const {
    return dock_ != nullptr && kPlayerDocked.Get() && !isFromElsewhere_ &&
           IsOnScreen(neighbour_.window);
}

void ReadingPlayer::Show(bool takesKeyboard) {
    if (player_.IsOpen())
        return;
    if (!BelongsInWindow()) {
        player_.Show(neighbour_, takesKeyboard);
        return;
    }
    player_.ShowIn(dock_, neighbour_);
    listener_.reshaped();
    if (!takesKeyboard)
        return;
    gtk_window_present(GTK_WINDOW(neighbour_.window));
    player_.FocusControl(PlayerPanel::kPlay);
}

// Not in the middle of what the player or the window is doing.
void ReadingPlayer::MoveSoon(bool takesKeyboard) {
    if (!player_.IsOpen() || player_.IsInside() == BelongsInWindow())
        return;
    moving_.Start(0, [this, takesKeyboard] {
        if (!player_.IsOpen() || player_.IsInside() == BelongsInWindow())
            return;
        player_.Close(kCommandOk);
        Show(takesKeyboard);
        listener_.reshaped();
    });
}

GtkWidget* ReadingPlayer::BoxParent() const {
    return player_.IsOpen() ? player_.Widget() : neighbour_.window;
}

void ReadingPlayer::Close() {
    leaving_.Stop();
    moving_.Stop();
    const bool wasDocked = IsDocked();
    player_.Close(kCommandOk);
    if (wasDocked)
        listener_.reshaped();
}

void ReadingPlayer::Hear(const ReadingNews& news) {
    if (!news.IsNew())
        return;
    const bool inTrouble =
        news.end == ReadingEnd::kCardFailed || news.end == ReadingEnd::kEngineFailed;
    if (news.state == ReadingState::kPlaying)
        Show(false);
    else if (news.state == ReadingState::kIdle)
        Close();
    else if (news.state == ReadingState::kEnded && !inTrouble)
        LeaveSoon();
}

// Not in the middle of what the player is telling, and not when another reading follows at once.
void ReadingPlayer::LeaveSoon() {
    constexpr unsigned int kMomentMilliseconds = 50;
    leaving_.Start(kMomentMilliseconds, [this] {
        // A box that is up belongs to the player.
        if (narrator_.IsReading() || player_.HasFocus() || gtk_grab_get_current() != nullptr)
            return;
        Close();
        narrator_.Forget();
    });
}
