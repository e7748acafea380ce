#include "playback/play_dialog.h"

void LPlayDlg::Open(GtkWidget* parent) {
    LDialog::Open(parent, {"Lectora Player", false, DlgGenPlayer}, true);
}

void LPlayDlg::InitDialog() {
    LPlayerBaseDlg::InitDialog();
    CmPlay();
    EnableControls();
}

// A panel that cannot be heard is of no use; the owner says why.
void LPlayDlg::EvEnded() {
    if (Trouble() != PlayTrouble::kNone)
        DoCANCELButton();
}
