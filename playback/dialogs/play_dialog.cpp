#include "playback/dialogs/play_dialog.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "playback/dialogs/player_panel_ids.h"

using namespace PlayerPanel;

namespace {

constexpr char kTitle[] = "Lectora Player";

GdkRectangle FrameOf(GtkWidget* window) {
    GdkRectangle frame{};
    gdk_window_get_frame_extents(gtk_widget_get_window(window), &frame);
    return frame;
}

GdkRectangle MonitorOf(GtkWidget* window) {
    GdkScreen* screen = gtk_widget_get_screen(window);
    GdkRectangle monitor{};
    gdk_screen_get_monitor_geometry(
        screen, gdk_screen_get_monitor_at_window(screen, gtk_widget_get_window(window)), &monitor);
    return monitor;
}

GdkRectangle PlaceOf(GtkWidget* widget) {
    GdkRectangle place{};
    gdk_window_get_origin(gtk_widget_get_window(widget), &place.x, &place.y);
    GtkAllocation size;
    gtk_widget_get_allocation(widget, &size);
    place.width = size.width;
    place.height = size.height;
    return place;
}

// A window that has it must not move: the next click would meet another button.
bool HasPointer(GtkWidget* window) {
    int x = 0;
    int y = 0;
    gtk_widget_get_pointer(window, &x, &y);
    GtkAllocation place;
    gtk_widget_get_allocation(window, &place);
    return x >= 0 && y >= 0 && x < place.width && y < place.height;
}

}  // namespace

void LPlayDlg::Open(GtkWidget* parent) {
    // The sound does not wait for the window.
    Transport().Prepare();
    CmPlay();
    if (Trouble() == PlayTrouble::kNone)
        LDialog::Open(parent, {kTitle, true, DlgGenPlayer}, true);
    CmStop();
}

// A panel that cannot be heard is of no use; the owner says why.
void LPlayDlg::EvChange(LPlayerChange change) {
    LPlayerBaseDlg::EvChange(change);
    if (change == LPlayerChange::kEnded && Trouble() != PlayTrouble::kNone)
        DoCANCELButton();
}

void LPlayDlgModeless::Show(const LPlayerNeighbour& neighbour, bool takesKeyboard) {
    if (IsOpen())
        return;
    neighbour_ = neighbour;
    givesFocusBack_ = takesKeyboard;
    // Not the neighbour's child, which would be kept above it and cover its text.
    LDialog::Open(nullptr, {kTitle, true, DlgGenPlayer}, false);
}

void LPlayDlgModeless::Restart(const LPlayerNeighbour& neighbour, bool takesKeyboard) {
    Transport().Prepare();
    Transport().Stop();
    CmPlay();
    if (IsLoaded())
        Show(neighbour, takesKeyboard);
}

void LPlayDlgModeless::InitDialog() {
    LPlayerBaseDlg::InitDialog();
    GtkWindow* window = GTK_WINDOW(Widget());
    gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_NORMAL);  // found like any program
    const bool isSeen =
        neighbour_.window != nullptr && gtk_widget_get_visible(neighbour_.window) != FALSE;
    givesFocusBack_ = givesFocusBack_ && isSeen;
    awaitsFocus_ = givesFocusBack_;
    gtk_window_set_focus_on_map(window, givesFocusBack_ ? TRUE : FALSE);
    if (isSeen)
        PlaceBeside();
    Connect(Widget(), "notify::is-active", G_CALLBACK(GCActiveChanged));
}

void LPlayDlgModeless::GCActiveChanged(GObject*, GParamSpec*, gpointer host) {
    auto& player = dynamic_cast<LPlayDlgModeless&>(HostOf(host));
    player.awaitsFocus_ = false;
    if (!player.HasFocus() && player.left)
        player.left();
}

// To the right of the neighbour, to its left, below or above it. Where there is no room, the
// neighbour moves over as far as it can, and the panel lies on its text rather than on its buttons.
void LPlayDlgModeless::PlaceBeside() {
    GtkWidget* content = gtk_bin_get_child(GTK_BIN(Widget()));
    gtk_widget_show_all(content);
    GtkRequisition size{};
    gtk_widget_size_request(Widget(), &size);
    const GdkRectangle beside = FrameOf(neighbour_.window);
    const GdkRectangle monitor = MonitorOf(neighbour_.window);
    const GdkRectangle inside = PlaceOf(neighbour_.window);
    const int border = inside.x - beside.x;
    const int width = size.width + 2 * border;
    const int height = size.height + (inside.y - beside.y) + border;
    const int right = std::max(monitor.x + monitor.width - width, monitor.x);
    const int bottom = std::max(monitor.y + monitor.height - height, monitor.y);
    GdkPoint place{std::clamp(beside.x, monitor.x, right), std::clamp(beside.y, monitor.y, bottom)};
    if (beside.x + beside.width <= right) {
        place.x = beside.x + beside.width;
    } else if (beside.x - width >= monitor.x) {
        place.x = beside.x - width;
    } else if (beside.y + beside.height <= bottom) {
        place.y = beside.y + beside.height;
    } else if (beside.y - height >= monitor.y) {
        place.y = beside.y - height;
    } else {
        const int over = std::min(std::max(right - beside.width, monitor.x), beside.x);
        const bool moves = over != beside.x && !HasPointer(neighbour_.window);
        if (moves)
            gtk_window_move(GTK_WINDOW(neighbour_.window), over, beside.y);
        place.x = right;
        if (!moves || over + beside.width > right) {
            const GdkRectangle text = PlaceOf(neighbour_.text);
            place.y = std::clamp(text.y + text.height - height, monitor.y, bottom);
        }
    }
    gtk_window_move(GTK_WINDOW(Widget()), place.x, place.y);
}

void LPlayDlgModeless::DestroyDialog() {
    LPlayerBaseDlg::DestroyDialog();
    if (HasFocus() && givesFocusBack_ && gtk_widget_get_visible(neighbour_.window) != FALSE)
        gtk_window_present(GTK_WINDOW(neighbour_.window));
    neighbour_ = {};
}

void LPlayDlgModeless::Command(int command) {
    switch (command) {
        case kCommandOk:
        case kCommandCancel:
            CmClose();
            break;
        case kResponseHelp:
        case kCommandHelp:
            CmHelp();
            break;
        default:
            LPlayerBaseDlg::Command(command);
            break;
    }
}

bool LPlayDlgModeless::EvKeyDown(unsigned int key) {
    if (key == GDK_Page_Down && Transport().Info().HasNextItem()) {
        DeliverCommand(kNextTrack);
        return true;
    }
    return LPlayerBaseDlg::EvKeyDown(key) || (keys && keys(key));
}

bool LPlayDlgModeless::HasFocus() const {
    return IsOpen() && (awaitsFocus_ || gtk_window_is_active(GTK_WINDOW(Widget())) != FALSE);
}

void LPlayDlgModeless::CmClose() {
    Close(kCommandOk);
    if (closed)
        closed();
}
