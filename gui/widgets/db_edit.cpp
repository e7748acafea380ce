#include "gui/widgets/db_edit.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "gui/accessible.h"
#include "gui/widgets/db_edit_paint.h"
#include "gui/widgets/value_area.h"

namespace {

constexpr int kLowest = -32;
constexpr int kHighest = 16;
constexpr int kGrabDistance = 10;  // pixels around the handle where a press takes hold of it
constexpr int kTextLength = 5;     // "-32dB"
constexpr int kPage = 6;           // decibels

int Get(GtkWidget* display, const char* key) {
    return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(display), key));
}

void Set(GtkWidget* display, const char* key, int value) {
    g_object_set_data(G_OBJECT(display), key, GINT_TO_POINTER(value));
}

int Width(GtkWidget* display) {
    GtkAllocation place;
    gtk_widget_get_allocation(display, &place);
    return place.width;
}

// Pixels that the handle can move. A control that has no size yet has a track all the same.
int Track(GtkWidget* display) {
    return std::max(1, Width(display) - kDBEditHandleWidth);
}

int Range(GtkWidget* display) {
    return Get(display, "iMax") - Get(display, "iMin");
}

int Level(GtkWidget* display) {
    return Get(display, "iMin") + Get(display, "iCurrentDB");
}

int PositionOf(GtkWidget* display, int index) {
    return Track(display) * index / Range(display);
}

void SetDBText(GtkWidget* entry, LDB level) {
    const std::string text =
        level.Value() > LDB::kSilence ? std::to_string(level.Value()) + "dB" : "--dB";
    gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
}

// While the user types, the entry keeps what was typed; rewriting it would move the cursor between
// the sign and the digits.
enum class EntryText { kFollows, kStays };

void SetLevelBar(GtkWidget* display, int position, int index, EntryText text) {
    const int old = Get(display, "iCurrentDB");
    if (index == old) {
        Set(display, "iChange", 0);
        return;
    }
    Set(display, "iChange", index - old);
    Set(display, "iCurrentDB", index);
    Set(display, "iCurrentPos", position);
    auto* entry = static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(display), "textHandle"));
    if (entry != nullptr && text == EntryText::kFollows)
        SetDBText(entry, LDB(Level(display)));
    gtk_widget_queue_draw(display);
    TellValueChanged(display);
}

void SetLevelByDB(GtkWidget* display, int level, EntryText text) {
    const int index =
        std::clamp(level, Get(display, "iMin"), Get(display, "iMax")) - Get(display, "iMin");
    SetLevelBar(display, PositionOf(display, index), index, text);
}

void NotifyChanged(GtkWidget* display) {
    Set(display, "iTold", Get(display, "iCurrentDB"));
    g_signal_emit_by_name(gtk_widget_get_parent(display), kVolumeChangeSignal,
                          Get(display, "iCurrentDB"));
}

void SetLevelByPosition(GtkWidget* display, int x) {
    const int position = std::clamp(x - kDBEditHandleWidth / 2, 0, Track(display));
    SetLevelBar(display, position, position * Range(display) / Track(display), EntryText::kFollows);
    NotifyChanged(display);
}

void Step(GtkWidget* display, int decibels) {
    SetLevelByDB(display, Level(display) + decibels, EntryText::kFollows);
    if (Get(display, "iChange") != 0)
        NotifyChanged(display);
}

double GetValue(GtkWidget* display) {
    return Level(display);
}

void SetValue(GtkWidget* display, double level) {
    Step(display, static_cast<int>(level) - Level(display));
}

constexpr LAreaValue kValue{kLowest, kHighest, GetValue, SetValue};

gboolean GCConfigure(GtkWidget* display, GdkEventConfigure*, gpointer) {
    Set(display, "iCurrentPos", PositionOf(display, Get(display, "iCurrentDB")));
    gtk_widget_queue_draw(display);
    return FALSE;
}

gboolean GCExpose(GtkWidget* display, GdkEventExpose* event, gpointer) {
    const int low = Get(display, "iMin");
    PaintDBEdit(display, event,
                {Get(display, "iCurrentPos"), PositionOf(display, -low), Level(display),
                 Get(display, "bDrag") != 0});
    return TRUE;
}

gboolean GCButtonPress(GtkWidget* display, GdkEventButton* event, gpointer) {
    if (event->type != GDK_BUTTON_PRESS || event->button != 1)
        return FALSE;
    gtk_widget_grab_focus(display);
    const int x = static_cast<int>(event->x);
    if (std::abs(x - Get(display, "iCurrentPos")) > kGrabDistance) {
        SetLevelByPosition(display, std::min(x, Width(display)));
        return TRUE;
    }
    Set(display, "bDrag", 1);
    Set(display, "xMouse", x);
    gtk_widget_queue_draw(display);
    return TRUE;
}

gboolean GCButtonRelease(GtkWidget* display, GdkEventButton* event, gpointer) {
    if (event->button != 1)
        return FALSE;
    Set(display, "bDrag", 0);
    gtk_widget_queue_draw(display);
    return TRUE;
}

gboolean GCMotion(GtkWidget* display, GdkEventMotion* event, gpointer) {
    const int x = static_cast<int>(event->x);
    if (Get(display, "bDrag") != 0 && x != Get(display, "xMouse")) {
        Set(display, "xMouse", x);
        SetLevelByPosition(display, x);
    }
    // With motion hints the server sends the next motion only when it has been asked.
    gdk_event_request_motions(event);
    return TRUE;
}

gboolean GCScroll(GtkWidget* display, GdkEventScroll* event, gpointer) {
    if (event->direction != GDK_SCROLL_UP && event->direction != GDK_SCROLL_DOWN)
        return FALSE;
    Step(display, event->direction == GDK_SCROLL_UP ? 1 : -1);
    return TRUE;
}

constexpr int kWholeRange = kHighest - kLowest;
constexpr struct {
    guint key;
    int decibels;
} kLevelKeys[] = {{GDK_KEY_Up, 1},
                  {GDK_KEY_Right, 1},
                  {GDK_KEY_plus, 1},
                  {GDK_KEY_KP_Add, 1},
                  {GDK_KEY_Down, -1},
                  {GDK_KEY_Left, -1},
                  {GDK_KEY_minus, -1},
                  {GDK_KEY_KP_Subtract, -1},
                  {GDK_KEY_Page_Up, kPage},
                  {GDK_KEY_Page_Down, -kPage},
                  {GDK_KEY_Home, -kWholeRange},
                  {GDK_KEY_End, kWholeRange}};

gboolean GCKeyPress(GtkWidget* display, GdkEventKey* event, gpointer) {
    if ((event->state & (GDK_CONTROL_MASK | GDK_MOD1_MASK)) != 0)
        return FALSE;
    for (const auto& step : kLevelKeys) {
        if (step.key == event->keyval) {
            Step(display, step.decibels);
            return TRUE;
        }
    }
    return FALSE;
}

// A text that says no level yet, as a lone sign, or an emptied entry, changes nothing.
void TakeText(GtkWidget* entry, GtkWidget* display) {
    const std::string_view text(gtk_entry_get_text(GTK_ENTRY(entry)));
    if (text.find_first_of("0123456789") == std::string_view::npos && !text.starts_with("--"))
        return;
    LDB level;
    level.SetText(text.data());
    SetLevelByDB(display, level.Value(), EntryText::kStays);
}

void EndTyping(GtkWidget* entry, GtkWidget* display) {
    TakeText(entry, display);
    SetDBText(entry, LDB(Level(display)));
}

gboolean GCTextKeyRelease(GtkWidget* entry, GdkEventKey*, gpointer display) {
    TakeText(entry, GTK_WIDGET(display));
    return FALSE;
}

gboolean GCTextFocusOut(GtkWidget* entry, GdkEventFocus*, gpointer display) {
    // What was typed is told once the user is done with it: a half-typed level would be heard.
    EndTyping(entry, GTK_WIDGET(display));
    if (Get(GTK_WIDGET(display), "iTold") != Get(GTK_WIDGET(display), "iCurrentDB"))
        NotifyChanged(GTK_WIDGET(display));
    return FALSE;
}

void GCTextActivate(GtkWidget* entry, gpointer display) {
    EndTyping(entry, GTK_WIDGET(display));
    NotifyChanged(GTK_WIDGET(display));
}

void GCFocusChange(GtkWidget* display, GdkEvent*, gpointer) {
    gtk_widget_queue_draw(display);
}

void RegisterSignal() {
    if (g_signal_lookup(kVolumeChangeSignal, GTK_TYPE_HBOX) == 0)
        g_signal_new(kVolumeChangeSignal, GTK_TYPE_HBOX,
                     GSignalFlags(G_SIGNAL_RUN_FIRST | G_SIGNAL_ACTION), 0, nullptr, nullptr,
                     g_cclosure_marshal_VOID__INT, G_TYPE_NONE, 1, G_TYPE_INT);
}

void WireDisplay(GtkWidget* display) {
    const struct {
        const char* signal;
        GCallback callback;
    } connections[] = {
        {"configure-event", G_CALLBACK(GCConfigure)},
        {"expose-event", G_CALLBACK(GCExpose)},
        {"button-press-event", G_CALLBACK(GCButtonPress)},
        {"button-release-event", G_CALLBACK(GCButtonRelease)},
        {"motion-notify-event", G_CALLBACK(GCMotion)},
        {"scroll-event", G_CALLBACK(GCScroll)},
        {"key-press-event", G_CALLBACK(GCKeyPress)},
        {"focus-in-event", G_CALLBACK(GCFocusChange)},
        {"focus-out-event", G_CALLBACK(GCFocusChange)},
    };
    for (const auto& connection : connections)
        g_signal_connect(display, connection.signal, connection.callback, nullptr);
    gtk_widget_add_events(
        display, GDK_POINTER_MOTION_MASK | GDK_POINTER_MOTION_HINT_MASK | GDK_BUTTON_MOTION_MASK |
                     GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_SCROLL_MASK |
                     GDK_ENTER_NOTIFY_MASK | GDK_LEAVE_NOTIFY_MASK | GDK_KEY_PRESS_MASK |
                     GDK_KEY_RELEASE_MASK | GDK_FOCUS_CHANGE_MASK);
    gtk_widget_set_can_focus(display, TRUE);
}

void WireText(GtkWidget* entry, GtkWidget* display) {
    gtk_entry_set_max_length(GTK_ENTRY(entry), kTextLength);
    SetDBText(entry, LDB(Level(display)));
    // The entry may outlive the drawing area, and loses the focus when it goes.
    const auto flags = GConnectFlags(0);
    g_signal_connect_object(entry, "key-release-event", G_CALLBACK(GCTextKeyRelease), display,
                            flags);
    g_signal_connect_object(entry, "focus-out-event", G_CALLBACK(GCTextFocusOut), display, flags);
    g_signal_connect_object(entry, "activate", G_CALLBACK(GCTextActivate), display, flags);
}

}  // namespace

GtkWidget* LDBEdit::CreateControl() {
    GtkWidget* box = CreateSimpleControl();
    GtkWidget* text = gtk_entry_new();
    gtk_widget_set_name(text, "text");
    gtk_entry_set_width_chars(GTK_ENTRY(text), kTextLength + 1);
    gtk_box_pack_start(GTK_BOX(box), text, FALSE, FALSE, 0);
    return box;
}

GtkWidget* LDBEdit::CreateSimpleControl() {
    GtkWidget* box = gtk_hbox_new(FALSE, 6);
    GtkWidget* display = NewValueArea(ATK_ROLE_SLIDER, kValue);
    gtk_widget_set_name(display, "display");
    gtk_widget_set_size_request(display, -1, 15);
    gtk_box_pack_start(GTK_BOX(box), display, TRUE, TRUE, 0);
    return box;
}

void LDBEdit::Init(int command, GtkWidget* box) {
    GtkWidget* display = GetHandle(box, false);
    if (display == nullptr)
        return;
    RegisterSignal();
    Set(box, "_cmd", command);
    if (g_object_get_data(G_OBJECT(display), "iMax") != nullptr)
        return;
    GtkWidget* text = GetHandle(box, true);
    g_object_set_data(G_OBJECT(display), "textHandle", text);
    Set(display, "iMin", kLowest);
    Set(display, "iMax", kHighest);
    for (const char* key : {"iCurrentDB", "iCurrentPos", "iChange", "iTold"})
        Set(display, key, 1);
    WireDisplay(display);
    if (text != nullptr)
        WireText(text, display);
    gtk_widget_show_all(box);
}

void LDBEdit::SetLevel(GtkWidget* box, LDB level) {
    if (GtkWidget* display = GetHandle(box, false)) {
        SetLevelByDB(display, level.Value(), EntryText::kFollows);
        Set(display, "iTold", Get(display, "iCurrentDB"));
    }
}

LDB LDBEdit::GetLevel(GtkWidget* box) {
    GtkWidget* display = GetHandle(box, false);
    return display == nullptr ? LDB(LDB::kSilence) : LDB(Level(display));
}

GtkWidget* LDBEdit::GetHandle(GtkWidget* box, bool text) {
    if (!GTK_IS_CONTAINER(box))
        return nullptr;
    const char* name = text ? "text" : "display";
    GtkWidget* found = nullptr;
    GList* children = gtk_container_get_children(GTK_CONTAINER(box));
    for (GList* child = children; child != nullptr && found == nullptr; child = child->next) {
        if (g_strcmp0(gtk_widget_get_name(GTK_WIDGET(child->data)), name) == 0)
            found = GTK_WIDGET(child->data);
    }
    g_list_free(children);
    return found;
}

void LDBEdit::SetName(GtkWidget* box, const char* name) {
    for (const bool text : {false, true}) {
        if (GtkWidget* part = GetHandle(box, text))
            SetAccessibleName(part, name);
    }
}
