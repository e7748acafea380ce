#include "gui/widgets/date_time_picker.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <utility>

#include "gui/accessible.h"
#include "gui/monitor.h"
#include "gui/parent_window.h"

namespace {

constexpr const char* kPickerKey = "_picker";

std::tm Epoch() {
    std::tm parts{};
    parts.tm_year = 70;
    parts.tm_mday = 1;
    return parts;
}

// Or above it, where the screen ends.
void PlaceBelow(GtkWidget* popUp, GtkWidget* button) {
    int x = 0;
    int y = 0;
    gdk_window_get_origin(gtk_widget_get_window(button), &x, &y);
    GtkAllocation place;
    gtk_widget_get_allocation(button, &place);
    if (!gtk_widget_get_has_window(button)) {
        x += place.x;
        y += place.y;
    }
    GtkRequisition size;
    gtk_widget_size_request(popUp, &size);
    const GdkRectangle monitor = MonitorOf(button);
    const int right = monitor.x + monitor.width - size.width;
    const bool fits = y + place.height + size.height <= monitor.y + monitor.height;
    const int top = fits ? y + place.height : y - size.height;
    gtk_window_move(GTK_WINDOW(popUp), std::max(monitor.x, std::min(x, right)),
                    std::max(monitor.y, top));
}

GtkWidget* NewPopUp(GtkWidget* owner, GtkWidget* content) {
    GtkWidget* window = gtk_window_new(GTK_WINDOW_POPUP);
    gtk_window_set_transient_for(GTK_WINDOW(window), ParentWindow(owner));
    gtk_window_set_destroy_with_parent(GTK_WINDOW(window), TRUE);
    gtk_window_set_type_hint(GTK_WINDOW(window), GDK_WINDOW_TYPE_HINT_COMBO);
    GtkWidget* frame = gtk_frame_new(nullptr);
    gtk_frame_set_shadow_type(GTK_FRAME(frame), GTK_SHADOW_OUT);
    gtk_container_add(GTK_CONTAINER(frame), content);
    gtk_container_add(GTK_CONTAINER(window), frame);
    gtk_widget_show_all(frame);
    return window;
}

// All of the pointer and the keyboard, until the window is destroyed.
void GrabInput(GtkWidget* popUp) {
    const guint32 time = gtk_get_current_event_time();
    GdkWindow* window = gtk_widget_get_window(popUp);
    const auto pointer = GdkEventMask(GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK);
    gdk_pointer_grab(window, TRUE, pointer, nullptr, nullptr, time);
    gdk_keyboard_grab(window, TRUE, time);
    gtk_grab_add(popUp);
}

}  // namespace

LDateTimeWidgets NewDateTimePicker() {
    LDateTimeWidgets widgets{gtk_hbox_new(FALSE, 2), gtk_toggle_button_new(), gtk_entry_new()};
    gtk_container_add(GTK_CONTAINER(widgets.button),
                      gtk_image_new_from_stock(GTK_STOCK_PREFERENCES, GTK_ICON_SIZE_MENU));
    SetAccessibleName(widgets.button, "Calendar");
    gtk_box_pack_start(GTK_BOX(widgets.box), widgets.entry, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(widgets.box), widgets.button, FALSE, FALSE, 0);
    g_object_set_data(G_OBJECT(widgets.button), "_entry", widgets.entry);
    return widgets;
}

void LDateTimePicker::Attach(GtkWidget* button, GtkWidget* entry, bool universal, bool calendar,
                             const char* format) {
    g_object_set_data_full(G_OBJECT(button), kPickerKey,
                           new LDateTimePicker(button, entry, universal, format),
                           [](gpointer picker) { delete static_cast<LDateTimePicker*>(picker); });
    gtk_widget_set_no_show_all(button, !calendar);
    gtk_widget_set_visible(button, calendar);
}

LDateTimePicker* LDateTimePicker::Of(GtkWidget* button) {
    return static_cast<LDateTimePicker*>(g_object_get_data(G_OBJECT(button), kPickerKey));
}

LDateTimePicker::LDateTimePicker(GtkWidget* button, GtkWidget* entry, bool universal,
                                 const char* format)
    : button_(button), entry_(entry), universal_(universal), format_(format) {
    signals_.Connect(entry, "changed", G_CALLBACK(GCEntryChanged), this);
    signals_.Connect(entry, "focus-out-event", G_CALLBACK(GCEntryLeft), this);
    signals_.Connect(button, "toggled", G_CALLBACK(GCButtonToggled), this);
    ShowText();
}

// The button is going; only the pop-up, a window of its own, is left to be ended.
LDateTimePicker::~LDateTimePicker() {
    if (popUp_ == nullptr)
        return;
    g_object_remove_weak_pointer(G_OBJECT(popUp_), reinterpret_cast<gpointer*>(&popUp_));
    gtk_widget_destroy(popUp_);
}

void LDateTimePicker::SetFormat(const char* format) {
    format_ = format;
    ShowText();
}

std::tm LDateTimePicker::Parts() const {
    std::tm parts = Epoch();
    const std::time_t time = seconds_.value_or(0);
    if (seconds_ && universal_)
        gmtime_r(&time, &parts);
    else if (seconds_)
        localtime_r(&time, &parts);
    return parts;
}

std::int64_t LDateTimePicker::SecondsOf(std::tm& parts) const {
    parts.tm_isdst = -1;
    return universal_ ? timegm(&parts) : mktime(&parts);
}

void LDateTimePicker::SetParts(std::tm parts) {
    SetSeconds(SecondsOf(parts));
}

void LDateTimePicker::SetSeconds(std::optional<std::int64_t> seconds) {
    const bool changed = seconds != seconds_;
    seconds_ = seconds;
    ShowText();
    if (changed && listener_ != nullptr && !listenerLife_.expired())
        listener_(*this, listenerData_);
}

void LDateTimePicker::ShowText() {
    char text[128] = "";
    if (seconds_) {
        const std::tm parts = Parts();
        if (std::strftime(text, sizeof text, format_.c_str(), &parts) == 0)
            text[0] = '\0';
    }
    showing_ = true;
    gtk_entry_set_text(GTK_ENTRY(entry_), text);
    showing_ = false;
}

std::optional<std::int64_t> LDateTimePicker::Parse(const char* text) const {
    std::tm parts = Epoch();
    const char* end = strptime(text, format_.c_str(), &parts);
    if (end == nullptr || *end != '\0')
        return std::nullopt;
    const std::tm typed = parts;
    const std::int64_t seconds = SecondsOf(parts);
    // A day that the month does not have would become one of the next month.
    if (parts.tm_mday != typed.tm_mday || parts.tm_mon != typed.tm_mon)
        return std::nullopt;
    return seconds;
}

void LDateTimePicker::SetListener(Listener listener, gpointer data,
                                  std::weak_ptr<const void> life) {
    listener_ = listener;
    listenerData_ = data;
    listenerLife_ = std::move(life);
}

void LDateTimePicker::GCEntryChanged(GtkWidget* entry, gpointer self) {
    auto* picker = static_cast<LDateTimePicker*>(self);
    if (picker->showing_)
        return;
    const char* text = gtk_entry_get_text(GTK_ENTRY(entry));
    const auto seconds = picker->Parse(text);
    if ((!seconds && *text != '\0') || seconds == picker->seconds_)
        return;
    picker->seconds_ = seconds;  // the text stays as it is being typed
    if (picker->listener_ != nullptr && !picker->listenerLife_.expired())
        picker->listener_(*picker, picker->listenerData_);
}

gboolean LDateTimePicker::GCEntryLeft(GtkWidget*, GdkEvent*, gpointer self) {
    static_cast<LDateTimePicker*>(self)->ShowText();
    return FALSE;
}

void LDateTimePicker::GCButtonToggled(GtkToggleButton* button, gpointer self) {
    auto* picker = static_cast<LDateTimePicker*>(self);
    if (gtk_toggle_button_get_active(button))
        picker->GCCalendarPopUp();
    else
        picker->PopDown();
}

GtkWidget* LDateTimePicker::NewCalendar() const {
    GtkWidget* calendar = gtk_calendar_new();
    std::tm parts = Parts();
    if (!seconds_) {
        const std::time_t now = std::time(nullptr);
        localtime_r(&now, &parts);
    }
    gtk_calendar_select_month(GTK_CALENDAR(calendar), static_cast<guint>(parts.tm_mon),
                              static_cast<guint>(parts.tm_year + 1900));
    gtk_calendar_select_day(GTK_CALENDAR(calendar), static_cast<guint>(parts.tm_mday));
    return calendar;
}

void LDateTimePicker::GCCalendarPopUp() {
    if (popUp_ != nullptr || !gtk_widget_get_realized(button_))
        return;
    GtkWidget* calendar = NewCalendar();
    popUp_ = NewPopUp(button_, calendar);
    g_object_add_weak_pointer(G_OBJECT(popUp_), reinterpret_cast<gpointer*>(&popUp_));
    signals_.Connect(calendar, "day-selected", G_CALLBACK(GCCalendarDateSelected), this);
    signals_.Connect(calendar, "day-selected-double-click", G_CALLBACK(GCCalendarPopDown), this);
    signals_.Connect(popUp_, "button-press-event", G_CALLBACK(GCCalendarExit), this);
    signals_.Connect(popUp_, "key-press-event", G_CALLBACK(GCCalendarKey), this);
    PlaceBelow(popUp_, button_);
    gtk_widget_show(popUp_);
    gtk_widget_grab_focus(calendar);
    GrabInput(popUp_);
}

void LDateTimePicker::PopDown() {
    if (popUp_ != nullptr)
        gtk_widget_destroy(popUp_);  // ends the grabs; the weak pointer forgets it
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button_), FALSE);
}

void LDateTimePicker::GCCalendarDateSelected(GtkCalendar* calendar, gpointer self) {
    auto* picker = static_cast<LDateTimePicker*>(self);
    guint year = 0;
    guint month = 0;
    guint day = 0;
    gtk_calendar_get_date(calendar, &year, &month, &day);
    if (day == 0)
        return;
    std::tm parts = picker->Parts();
    parts.tm_year = static_cast<int>(year) - 1900;
    parts.tm_mon = static_cast<int>(month);
    parts.tm_mday = static_cast<int>(day);
    picker->SetParts(parts);
}

void LDateTimePicker::GCCalendarPopDown(GtkCalendar*, gpointer self) {
    static_cast<LDateTimePicker*>(self)->PopDown();
}

// A press beside the calendar; with the grab, the pop-up gets these too.
gboolean LDateTimePicker::GCCalendarExit(GtkWidget* popUp, GdkEventButton* event, gpointer self) {
    GtkAllocation place;
    gtk_widget_get_allocation(popUp, &place);
    int x = 0;
    int y = 0;
    gdk_window_get_origin(gtk_widget_get_window(popUp), &x, &y);
    const bool inside = event->x_root >= x && event->x_root < x + place.width &&
                        event->y_root >= y && event->y_root < y + place.height;
    if (!inside)
        static_cast<LDateTimePicker*>(self)->PopDown();
    return !inside;
}

gboolean LDateTimePicker::GCCalendarKey(GtkWidget*, GdkEventKey* event, gpointer self) {
    if (event->keyval != GDK_KEY_Escape && event->keyval != GDK_KEY_Return &&
        event->keyval != GDK_KEY_KP_Enter)
        return FALSE;
    static_cast<LDateTimePicker*>(self)->PopDown();
    return TRUE;
}
