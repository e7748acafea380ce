#include "gui/controls/range_controls.h"

#include <algorithm>
#include <cmath>

#include "gui/control_focus.h"
#include "gui/display_text.h"

namespace {

constexpr const char* kSetByProgram = "sbset";

// While it lives, the program changes the range, which is no news to it.
class ProgramChange {
public:
    explicit ProgramChange(GtkRange* range) : range_(G_OBJECT(range)) {
        g_object_set_data(range_, kSetByProgram, GINT_TO_POINTER(1));
    }
    ProgramChange(const ProgramChange&) = delete;
    ProgramChange& operator=(const ProgramChange&) = delete;
    ~ProgramChange() { g_object_set_data(range_, kSetByProgram, nullptr); }

private:
    GObject* range_;
};

gboolean GCDialogSBChangeValue(GtkRange* range, GtkScrollType, gdouble value, gpointer host) {
    {
        const ProgramChange change(range);
        gtk_range_set_value(range, std::round(value));
    }
    DeliverStored(host, range, "sbchange");
    return TRUE;
}

// Assistive programs move a range without asking it to scroll.
void GCRangeValueChanged(GtkRange* range, gpointer host) {
    if (g_object_get_data(G_OBJECT(range), kSetByProgram) == nullptr)
        GCDialogSBChangeValue(range, GTK_SCROLL_JUMP, gtk_range_get_value(range), host);
}

}  // namespace

void LRangeControls::SBSetRange(int id, int low, int high, int page) {
    auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE);
    if (range == nullptr)
        return;
    const ProgramChange change(range);
    const int top = std::max(high, low);
    const int size = std::max(page, 1);
    gtk_range_set_increments(range, 1, size);
    GtkAdjustment* adjustment = gtk_range_get_adjustment(range);
    gtk_adjustment_set_page_size(adjustment, size);
    gtk_range_set_range(range, low, static_cast<double>(top) + size);
}

void LRangeControls::SBSetPos(int id, int position) {
    if (auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE)) {
        const ProgramChange change(range);
        gtk_range_set_value(range, position);
    }
}

int LRangeControls::SBGetPos(int id) const {
    auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE);
    return range != nullptr ? static_cast<int>(gtk_range_get_value(range)) : 0;
}

void LRangeControls::TBSetRange(int id, int low, int high) {
    if (auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE)) {
        const ProgramChange change(range);
        gtk_range_set_increments(range, 1, 1);
        gtk_adjustment_set_page_size(gtk_range_get_adjustment(range), 0);
        gtk_range_set_range(range, low, std::max(high, low));
    }
}

void LRangeControls::UDInit(int id, int low, int high, int value) {
    if (auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON)) {
        gtk_spin_button_set_digits(field, 0);
        gtk_spin_button_set_numeric(field, TRUE);
        gtk_spin_button_set_increments(field, 1, 10);
        gtk_spin_button_set_range(field, low, std::max(high, low));
        gtk_spin_button_set_value(field, value);
    }
}

int LRangeControls::UDGetInt(int id) const {
    auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON);
    if (field == nullptr)
        return 0;
    gtk_spin_button_update(field);  // typed text counts before the focus leaves the field
    return gtk_spin_button_get_value_as_int(field);
}

void LRangeControls::UDSetInt(int id, int value) {
    if (auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON))
        gtk_spin_button_set_value(field, value);
}

void LRangeControls::UDEnable(int id, bool enabled) {
    if (auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON))
        SetControlSensitive(GTK_WIDGET(field), enabled);
}

void LRangeControls::PBSetProgress(int id, double fraction) {
    if (auto* bar = ControlAs<GtkProgressBar>(id, GTK_TYPE_PROGRESS_BAR))
        gtk_progress_bar_set_fraction(bar, std::clamp(fraction, 0.0, 1.0));
}

void LRangeControls::PBSetText(int id, const char* text) {
    if (auto* bar = ControlAs<GtkProgressBar>(id, GTK_TYPE_PROGRESS_BAR))
        gtk_progress_bar_set_text(bar, DisplayText(text).c_str());
}

void LRangeControls::HandleHSBChange(int id, int command) {
    if (auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE)) {
        StoreCommand(range, "sbchange", command, id);
        Connect(range, "change-value", G_CALLBACK(GCDialogSBChangeValue));
        Connect(range, "value-changed", G_CALLBACK(GCRangeValueChanged));
    }
}
