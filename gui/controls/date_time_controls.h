// Date-time pickers: an entry for a date, a time or both, and a button that opens a calendar.
#pragma once

#include "foundation/date_time.h"
#include "gui/controls/control_host.h"

// A picker's number is that of its calendar button; the entry goes under the number + 1. Typed text
// counts as soon as it is complete; one that is not gives way to the last value when the field is
// left. Values are "no time" and midnight where there is none.
class LDateTimeControls : public virtual LControlHost {
public:
    // One of these first. DTPInitDateTime shows universal time, all others local time.
    void DTPInitDateTime(int id);
    void DTPInitDateTimeLocal(int id);
    void DTPInitDateOnly(int id);  // the time of day is midnight
    void DTPInitTimeOnly(int id);  // no calendar
    // As strftime has it; must hold all the parts that the value is to keep. Copied.
    void DTPSetFormat(int id, const char* format);
    void DTPSetFormatYYYYMMDD(int id);
    void DTPSetFormatYYYYMMDDHHMMSS(int id);

    LDateTime DTPGetDateTime(int id) const;
    void DTPSetDateTime(int id, LDateTime value);  // "no time" empties the field
    LDayTime DTPGetTime(int id) const;
    void DTPSetTime(int id, LDayTime value);

    void HandleDTPChange(int id, int command = kUseControlId);  // by the user or the program

private:
    void Init(int id, bool universal, bool calendar, const char* format);
};
