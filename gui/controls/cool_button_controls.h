// Image-and-text buttons with a pressed look, on registered toggle buttons.
#pragma once

#include "gui/controls/control_host.h"
#include "gui/widgets/cool_button.h"

class LCoolButtonControls : public virtual LControlHost {
public:
    // Without a text only the image is shown; the button then needs a tooltip, and is called by it.
    void CoolButtonInit(int id, int imageNumber, const char* text);
    // A press on the arrow at the right sends the second command.
    void CoolButtonInitDropDown(int id, int imageNumber, const char* text, int dropDownCommand);
    // Held: one command when it goes down, the other when it comes up.
    void CoolButtonInitUpDown(int id, int imageNumber, const char* text, int downCommand,
                              int upCommand);
    void SetCoolButtonDown(int id);
    void SetCoolButtonUp(int id);
    bool IsCoolButtonDown(int id) const;

private:
    void Init(int id, LCoolButtonKind kind, int imageNumber, const char* text,
              LCoolButtonCommands commands);
};
