// A date or time as text in an entry, with a button that opens a calendar below it.
#pragma once

#include <gtk/gtk.h>

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>

#include "gui/signal_owner.h"

struct LDateTimeWidgets {
    GtkWidget* box;     // holds the other two; floating
    GtkWidget* button;  // its "_entry" data is the entry
    GtkWidget* entry;
};
LDateTimeWidgets NewDateTimePicker();

// Lives with the button. The value is seconds since 1970, or none while the field is empty.
class LDateTimePicker {
public:
    using Listener = void (*)(LDateTimePicker& picker, gpointer data);

    static void Attach(GtkWidget* button, GtkWidget* entry, bool universal, bool calendar,
                       const char* format);
    static LDateTimePicker* Of(GtkWidget* button);  // null before Attach
    LDateTimePicker(const LDateTimePicker&) = delete;
    LDateTimePicker& operator=(const LDateTimePicker&) = delete;
    ~LDateTimePicker();

    GtkWidget* Button() const { return button_; }
    void SetFormat(const char* format);  // as strftime; copied
    std::optional<std::int64_t> Seconds() const { return seconds_; }
    void SetSeconds(std::optional<std::int64_t> seconds);
    GtkWidget* NewCalendar() const;  // showing the value, or today
    std::tm Parts() const;           // of the value as it is shown; of 1970 without a value
    void SetParts(std::tm parts);
    // Called for every change of the value while `life` has not expired.
    void SetListener(Listener listener, gpointer data, std::weak_ptr<const void> life);

private:
    LDateTimePicker(GtkWidget* button, GtkWidget* entry, bool universal, const char* format);
    static void GCEntryChanged(GtkWidget* entry, gpointer self);
    static gboolean GCEntryLeft(GtkWidget* entry, GdkEvent* event, gpointer self);
    static void GCButtonToggled(GtkToggleButton* button, gpointer self);
    static void GCCalendarDateSelected(GtkCalendar* calendar, gpointer self);
    static void GCCalendarPopDown(GtkCalendar* calendar, gpointer self);
    static gboolean GCCalendarExit(GtkWidget* popUp, GdkEventButton* event, gpointer self);
    static gboolean GCCalendarKey(GtkWidget* popUp, GdkEventKey* event, gpointer self);
    void GCCalendarPopUp();
    void PopDown();
    void ShowText();
    std::optional<std::int64_t> Parse(const char* text) const;
    std::int64_t SecondsOf(std::tm& parts) const;

    GtkWidget* button_;
    GtkWidget* entry_;
    const bool universal_;
    std::string format_;
    std::optional<std::int64_t> seconds_;
    bool showing_ = false;        // the text is being set from the value
    GtkWidget* popUp_ = nullptr;  // cleared when destroyed with the window
    Listener listener_ = nullptr;
    gpointer listenerData_ = nullptr;
    std::weak_ptr<const void> listenerLife_;
    LSignalOwner signals_;
};
