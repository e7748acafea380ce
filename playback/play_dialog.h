// The player as a dialog of its own: opens, plays at once, and stops when it is closed.
#pragma once

#include "playback/player_panel.h"

class LPlayDlg final : public LPlayerBaseDlg {
public:
    using LPlayerBaseDlg::LPlayerBaseDlg;

    // Blocks until the user closes the panel, or until nothing can be heard (Trouble()).
    void Open(GtkWidget* parent);

    void InitDialog() override;

private:
    void EvEnded() override;
};
