// Image-and-text buttons with a pressed look, on registered toggle buttons.
#pragma once

#include "gui/control_host.h"

class LCoolButtonControls : public virtual LControlHost {
public:
    void CoolButtonInit(int id, int imageNumber, const char* text);
    void CoolButtonInitUpDown(int id, int imageNumber, const char* text);
    void SetCoolButtonDown(int id);
    void SetCoolButtonUp(int id);
    bool IsCoolButtonDown(int id) const;
};
