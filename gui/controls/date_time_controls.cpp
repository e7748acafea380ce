#include "gui/controls/date_time_controls.h"

#include "gui/widgets/date_time_picker.h"

namespace {

constexpr const char* kDateTimeFormat = "%Y-%m-%d %H:%M:%S";
constexpr const char* kDateFormat = "%Y-%m-%d";
constexpr const char* kTimeFormat = "%H:%M:%S";

LDateTimePicker* PickerIn(GtkWidget* button) {
    return button != nullptr ? LDateTimePicker::Of(button) : nullptr;
}

void GCPickerChanged(LDateTimePicker& picker, gpointer host) {
    DeliverStored(host, picker.Button(), "_cmd");
}

}  // namespace

void LDateTimeControls::Init(int id, bool universal, bool calendar, const char* format) {
    GtkWidget* button = GetControlByID(id);
    auto* entry = button != nullptr
                      ? static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(button), "_entry"))
                      : nullptr;
    if (GTK_IS_ENTRY(entry) && GTK_IS_TOGGLE_BUTTON(button))
        LDateTimePicker::Attach(button, entry, universal, calendar, format);
}

void LDateTimeControls::DTPInitDateTime(int id) {
    Init(id, true, true, kDateTimeFormat);
}

void LDateTimeControls::DTPInitDateTimeLocal(int id) {
    Init(id, false, true, kDateTimeFormat);
}

void LDateTimeControls::DTPInitDateOnly(int id) {
    Init(id, false, true, kDateFormat);
}

void LDateTimeControls::DTPInitTimeOnly(int id) {
    Init(id, true, false, kTimeFormat);  // no zone, so that no hour is skipped
}

void LDateTimeControls::DTPSetFormat(int id, const char* format) {
    if (LDateTimePicker* picker = PickerIn(GetControlByID(id)))
        picker->SetFormat(format);
}

void LDateTimeControls::DTPSetFormatYYYYMMDD(int id) {
    DTPSetFormat(id, kDateFormat);
}

void LDateTimeControls::DTPSetFormatYYYYMMDDHHMMSS(int id) {
    DTPSetFormat(id, kDateTimeFormat);
}

LDateTime LDateTimeControls::DTPGetDateTime(int id) const {
    LDateTimePicker* picker = PickerIn(GetControlByID(id));
    return LDateTime(picker != nullptr ? picker->Seconds().value_or(0) : 0);
}

void LDateTimeControls::DTPSetDateTime(int id, LDateTime value) {
    LDateTimePicker* picker = PickerIn(GetControlByID(id));
    if (picker == nullptr)
        return;
    if (value.IsZero())
        picker->SetSeconds(std::nullopt);
    else
        picker->SetSeconds(value.UnixSeconds());
}

LDayTime LDateTimeControls::DTPGetTime(int id) const {
    LDateTimePicker* picker = PickerIn(GetControlByID(id));
    if (picker == nullptr || !picker->Seconds())
        return {};
    const std::tm parts = picker->Parts();
    return LDayTime((parts.tm_hour * 60 + parts.tm_min) * 60 + parts.tm_sec);
}

void LDateTimeControls::DTPSetTime(int id, LDayTime value) {
    LDateTimePicker* picker = PickerIn(GetControlByID(id));
    if (picker == nullptr)
        return;
    std::tm parts = picker->Parts();
    parts.tm_hour = 0;
    parts.tm_min = 0;
    parts.tm_sec = value.Seconds();
    picker->SetParts(parts);
}

void LDateTimeControls::HandleDTPChange(int id, int command) {
    GtkWidget* button = GetControlByID(id);
    if (LDateTimePicker* picker = PickerIn(button)) {
        StoreCommand(button, "_cmd", command, id);
        picker->SetListener(GCPickerChanged, static_cast<LControlHost*>(this), Life());
    }
}
