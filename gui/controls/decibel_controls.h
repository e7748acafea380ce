// The decibel slider and the level meter.
#pragma once

#include "gui/controls/control_host.h"
#include "sound/level.h"

class LDecibelControls : public virtual LControlHost {
public:
    // Wires a registered slider box; pointer, wheel and keys do nothing before.
    void LDBEditInit(int id);
    void DBEditSetLevel(int id, LDB level);  // no command goes out
    LDB DBEditGetLevel(int id) const;        // silence when there is no such slider
    void HandleDBEditChange(int id, int command = kUseControlId);

    void DBDisplaySetLevels(int id, const LDBMC& levels);
};
