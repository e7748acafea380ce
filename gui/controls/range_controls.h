// Scroll bars, track bars, up-down fields and progress bars.
#pragma once

#include "gui/controls/control_host.h"

class LRangeControls : public virtual LControlHost {
public:
    void SBSetRange(int id, int low, int high, int page);
    void SBSetPos(int id, int position);
    int SBGetPos(int id) const;
    void TBSetRange(int id, int low, int high);
    void UDInit(int id, int low, int high, int value);
    int UDGetInt(int id) const;
    void UDSetInt(int id, int value);
    void UDEnable(int id, bool enabled);
    void PBSetProgress(int id, double fraction);  // 0 to 1
    void PBSetText(int id, const char* text);

    // The value is set, rounded, before the command goes out.
    void HandleHSBChange(int id, int command = kUseControlId);
};
