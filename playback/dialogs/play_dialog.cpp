#include "playback/dialogs/play_dialog.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "gui/monitor.h"
#include "playback/dialogs/player_panel_ids.h"
#include "playback/settings_keys.h"

using namespace PlayerPanel;

namespace {

constexpr char kTitle[] = "Lectora Player";

GdkRectangle FrameOf(GdkWindow* window) {
    GdkRectangle frame{};
    gdk_window_get_frame_extents(window, &frame);
    return frame;
}

// The window of any program that has the keyboard; of no size when there is none.
GdkRectangle ActiveFrame() {
    const auto active =
        GObjectRef<GdkWindow>::Adopt(gdk_screen_get_active_window(gdk_screen_get_default()));
    return active ? FrameOf(active.Get()) : GdkRectangle{};
}

// The corner of the monitor where a window of that size covers the least of another.
GdkPoint CornerOff(const GdkRectangle& other, const GdkRectangle& monitor, int width, int height) {
    const int right = monitor.x + monitor.width - width;
    const int bottom = monitor.y + monitor.height - height;
    GdkPoint best{};
    int least = G_MAXINT;
    for (const GdkPoint corner : {GdkPoint{right, monitor.y}, GdkPoint{right, bottom},
                                  GdkPoint{monitor.x, monitor.y}, GdkPoint{monitor.x, bottom}}) {
        const GdkRectangle own{corner.x, corner.y, width, height};
        GdkRectangle common{};
        const int covered = gdk_rectangle_intersect(&own, &other, &common) != FALSE
                                ? common.width * common.height
                                : 0;
        if (covered < least) {
            least = covered;
            best = corner;
        }
    }
    return best;
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
    takesKeyboard_ = takesKeyboard;
    leftOut_ = 0;
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
    if (IsInside()) {
        awaitsFocus_ = false;
        Connect(Widget(), "set-focus", G_CALLBACK(GCFocusMoved), G_CONNECT_AFTER);
        return;
    }
    GtkWindow* window = GTK_WINDOW(Widget());
    gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_NORMAL);  // found like any program
    awaitsFocus_ = takesKeyboard_;
    gtk_window_set_focus_on_map(window, takesKeyboard_ ? TRUE : FALSE);
    FindPlace();
    Connect(Widget(), "notify::is-active", G_CALLBACK(GCActiveChanged));
}

void LPlayDlgModeless::GCActiveChanged(GObject*, GParamSpec*, gpointer host) {
    auto& player = dynamic_cast<LPlayDlgModeless&>(HostOf(host));
    player.awaitsFocus_ = false;
    if (!player.HasFocus() && player.left)
        player.left();
}

// Where a user who was led here put it; else off what is being worked in.
void LPlayDlgModeless::FindPlace() {
    gtk_widget_show_all(gtk_bin_get_child(GTK_BIN(Widget())));
    const bool isSeen =
        neighbour_.window != nullptr && gtk_widget_get_visible(neighbour_.window) != FALSE;
    const bool isNeighbourActive =
        isSeen && gtk_window_is_active(GTK_WINDOW(neighbour_.window)) != FALSE;
    GtkRequisition size{};
    gtk_widget_size_request(Widget(), &size);
    const GdkRectangle beside =
        isSeen ? FrameOf(gtk_widget_get_window(neighbour_.window)) : GdkRectangle{};
    const GdkRectangle inside = isSeen ? PlaceOf(neighbour_.window) : GdkRectangle{};
    // The desktop frames this window as it does the neighbour.
    const int border = inside.x - beside.x;
    const GdkRectangle own{0, 0, size.width + 2 * border,
                           size.height + (inside.y - beside.y) + border};
    const GdkRectangle monitor = MonitorOf(isSeen ? neighbour_.window : Widget());
    if ((takesKeyboard_ || isNeighbourActive) && kPlayerLeft.Get() != kNoPlace) {
        const int right = std::max(monitor.x + monitor.width - own.width, monitor.x);
        const int bottom = std::max(monitor.y + monitor.height - own.height, monitor.y);
        gtk_window_move(GTK_WINDOW(Widget()), std::clamp(kPlayerLeft.Get(), monitor.x, right),
                        std::clamp(kPlayerTop.Get(), monitor.y, bottom));
    } else if (isSeen && (takesKeyboard_ || isNeighbourActive)) {
        PlaceBeside(own);
    } else {
        const GdkPoint corner = CornerOff(ActiveFrame(), monitor, own.width, own.height);
        gtk_window_move(GTK_WINDOW(Widget()), corner.x, corner.y);
    }
}

// To the right of the neighbour, to its left, below or above it. Where there is no room, the
// neighbour moves over as far as it can, and the panel lies on its text rather than on its buttons.
void LPlayDlgModeless::PlaceBeside(const GdkRectangle& own) {
    const GdkRectangle beside = FrameOf(gtk_widget_get_window(neighbour_.window));
    const GdkRectangle monitor = MonitorOf(neighbour_.window);
    const int width = own.width;
    const int height = own.height;
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
        const bool canMove = over != beside.x && !HasPointer(neighbour_.window);
        if (canMove)
            gtk_window_move(GTK_WINDOW(neighbour_.window), over, beside.y);
        place.x = right;
        if (!canMove || over + beside.width > right) {
            const GdkRectangle text = PlaceOf(neighbour_.text);
            place.y = std::clamp(text.y + text.height - height, monitor.y, bottom);
        }
    }
    gtk_window_move(GTK_WINDOW(Widget()), place.x, place.y);
}

// Of a player that the user has taken out.
void LPlayDlgModeless::KeepPlace() const {
    if (IsInside() || kPlayerDocked.Get())
        return;
    int x = 0;
    int y = 0;
    gtk_window_get_position(GTK_WINDOW(Widget()), &x, &y);
    kPlayerLeft.Set(x);
    kPlayerTop.Set(y);
}

void LPlayDlgModeless::DestroyDialog() {
    KeepPlace();
    LPlayerBaseDlg::DestroyDialog();
    if (!IsInside() && HasFocus() && takesKeyboard_ && neighbour_.window != nullptr &&
        gtk_widget_get_visible(neighbour_.window) != FALSE)
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
        case kTakeOut:
        case kPutBack:
            moves(command == kPutBack);
            break;
        case kUnfold:
            Unfold(!isUnfolded_);
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
    if (IsInside())
        return EvKeyInside(key);
    return LPlayerBaseDlg::EvKeyDown(key) || (keys && keys(key));
}

bool LPlayDlgModeless::HasFocus() const {
    if (!IsOpen())
        return false;
    const bool isActive = gtk_window_is_active(GTK_WINDOW(Widget())) != FALSE;
    if (!IsInside())
        return awaitsFocus_ || isActive;
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(Widget()));
    return isActive && focus != nullptr && gtk_widget_is_ancestor(focus, rows_.Get()) != FALSE;
}

void LPlayDlgModeless::CmClose() {
    Close(kCommandOk);
    if (closed)
        closed();
}
