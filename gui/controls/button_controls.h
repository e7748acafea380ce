// Buttons, check boxes, static texts, and clicks on anything.
#pragma once

#include "gui/controls/control_host.h"

class LButtonControls : public virtual LControlHost {
public:
    // A button is also registered under its command, so that GetControlByID finds it by that.
    void SetButtonCommandHandler(GtkWidget* button, int command);
    void SetRadioCheckButtonCommandHandler(GtkWidget* button, int command);
    // Command 0 ends what was registered before.
    void HandleClick(int id, int command = kUseControlId);
    void HandleDoubleClick(int id, int command = kUseControlId);
    void HandleRightClick(int id, int command = kUseControlId);

    // SetCheck delivers the command when it changes the state, as a click does.
    void SetStaticText(int id, const char* text);
    void SetButtonText(int id, const char* text);
    void SetButtonImage(int id, int imageNumber);
    void SetCheck(int id, bool checked);
    bool GetCheck(int id) const;

private:
    void HandlePress(int id, const char* key, int command);
};
