// The player as a part of the window whose text it plays.
#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "playback/dialogs/play_device_list.h"
#include "playback/dialogs/play_dialog.h"
#include "playback/dialogs/player_panel_ids.h"

using namespace PlayerPanel;

namespace {

// What gives way first where there is little room.
constexpr int kLeastNeeded[][2] = {
    {kStart, kEnd},   {kRewind, kForward}, {kRepeatSentence, kRepeatSentence},
    {kTempo, kTempo}, {kUnfold, kUnfold},  {kTime, kTempoTime},
    {kScrub, kScrub},
};
constexpr int kFolded[] = {kMeter, kVolume, kVolumeLabel, kDevice, kDeviceLabel, kRoute};

}  // namespace

void LPlayDlgModeless::ShowIn(GtkWidget* dock, const LPlayerNeighbour& neighbour) {
    if (IsOpen())
        return;
    neighbour_ = neighbour;
    takesKeyboard_ = false;
    isUnfolded_ = false;
    rows_ = GObjectRef<GtkWidget>::Share(
        GenerateTable(*this, {"Lectora Player", true, DlgGenDockedPlayer}));
    AddCallbacks(rows_.Get(), Signals().Callbacks());
    gtk_box_pack_start(GTK_BOX(dock), rows_.Get(), TRUE, TRUE, 0);
    AttachWidget(neighbour.window, true);
    InitDialog();
    EnableControls();
}

// The window hands on the keys that are meant for the player.
void LPlayDlgModeless::WidgetAttached(GtkWidget* widget) {
    if (!IsInside())
        LPlayerBaseDlg::WidgetAttached(widget);
}

void LPlayDlgModeless::WidgetDetached() {
    LPlayerBaseDlg::WidgetDetached();
    if (IsInside())
        EndWidget(std::exchange(rows_, {}).Get());
}

bool LPlayDlgModeless::HasRoomFor(int control) const {
    if (!IsInside())
        return true;
    for (unsigned int group = 0; group < leftOut_; ++group) {
        if (std::ranges::count(kLeastNeeded[group], control) > 0)
            return false;
    }
    return isUnfolded_ || std::ranges::count(kFolded, control) == 0;
}

void LPlayDlgModeless::EnableControls() {
    LPlayerBaseDlg::EnableControls();
    ShowControl(kPutBack, static_cast<bool>(moves));
    if (!IsInside())
        return;
    for (const auto& group : kLeastNeeded) {
        for (const int control : group)
            if (control != kRepeatSentence)
                ShowControl(control, HasRoomFor(control));
    }
    for (const int control : kFolded)
        if (control != kRoute)
            ShowControl(control, HasRoomFor(control));
    ShowControl(kWave, !isLow_);
    isUnfolded_ ? SetCoolButtonDown(kUnfold) : SetCoolButtonUp(kUnfold);
}

void LPlayDlgModeless::FitInto(int width, bool isLow) {
    if (!IsInside())
        return;
    isLow_ = isLow;
    isUnfolded_ = isUnfolded_ && !isLow;
    GtkRequisition wanted{};
    for (leftOut_ = 0;; ++leftOut_) {
        EnableControls();
        gtk_widget_size_request(rows_.Get(), &wanted);
        if (wanted.width <= width || leftOut_ == std::size(kLeastNeeded))
            return;
    }
}

void LPlayDlgModeless::Unfold(bool isUnfolded) {
    isUnfolded_ = isUnfolded;
    // Not before it is seen: a screen reader says what is chosen in a list that is being filled.
    if (isUnfolded && PDLGetCount(kDevice) == 0) {
        LSoundPlayDeviceInit(*this, kDevice, Transport().Device());
        HandlePDLSelChange(kDevice, kDeviceChosen);
    }
    EnableControls();
    if (reshaped)
        reshaped();
}

// Another card can be chosen at once.
void LPlayDlgModeless::EvChange(LPlayerChange change) {
    LPlayerBaseDlg::EvChange(change);
    if (IsInside() && change == LPlayerChange::kEnded && Trouble() != PlayTrouble::kNone)
        Unfold(true);
}

bool LPlayDlgModeless::EvKeyInside(unsigned int key) {
    // Space pauses wherever the focus is in the transport; what is not part of that is pressed.
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(Widget()));
    if (key == GDK_space && (focus == GetControlByID(kUnfold) || focus == GetControlByID(kTakeOut)))
        return false;
    if (key == GDK_F9)  // the window's, which pauses as well
        return false;
    if (key == GDK_F1) {
        CmHelp();
        return true;
    }
    if (key == GDK_Escape && !IsLoaded()) {
        CmClose();
        return true;
    }
    return LPlayerBaseDlg::EvKeyDown(key);
}

void LPlayDlgModeless::GCFocusMoved(GtkWindow*, GtkWidget*, gpointer host) {
    auto& player = dynamic_cast<LPlayDlgModeless&>(HostOf(host));
    if (player.left)
        player.left();
}
