#include "gui/control_focus.h"

namespace {

constexpr const char* kLentFocus = "lectora-lent-focus";  // on the window
constexpr int kMostSteps = 50;                            // out of a control that holds others

using Setter = void (*)(GtkWidget* control, gboolean canBeUsed);

// A control that may end at any time; by the GUI thread alone, so that one that is there stays
// while it is looked at.
class WeakControl {
public:
    WeakControl() { g_weak_ref_init(&reference_, nullptr); }
    WeakControl(const WeakControl&) = delete;
    WeakControl& operator=(const WeakControl&) = delete;
    ~WeakControl() { g_weak_ref_clear(&reference_); }

    void Set(GtkWidget* control) { g_weak_ref_set(&reference_, control); }
    GtkWidget* Get() {
        gpointer const control = g_weak_ref_get(&reference_);
        if (control != nullptr)
            g_object_unref(control);
        return static_cast<GtkWidget*>(control);
    }

private:
    GWeakRef reference_{};
};

// Where a window's keyboard was when its control went, and where it is meanwhile.
struct LentFocus {
    WeakControl lost;
    WeakControl standIn;

    void Forget() {
        lost.Set(nullptr);
        standIn.Set(nullptr);
    }
};

// Who works in the control that stands in has come to stay. A button is only pressed, as "Pause" is
// while what started the reading waits for its end; a lone Ctrl quiets a screen reader.
gboolean StayWhereKeysAreTyped(GtkWidget* window, GdkEventKey* event, gpointer lent) {
    GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(window));
    if (event->is_modifier == 0 && !GTK_IS_BUTTON(focus))
        static_cast<LentFocus*>(lent)->Forget();
    return FALSE;
}

gboolean StayWhereIsClicked(GtkWidget* /*window*/, GdkEventButton* /*event*/, gpointer lent) {
    static_cast<LentFocus*>(lent)->Forget();
    return FALSE;
}

LentFocus& LentFocusOf(GtkWidget* window) {
    auto* lent = static_cast<LentFocus*>(g_object_get_data(G_OBJECT(window), kLentFocus));
    if (lent == nullptr) {
        lent = new LentFocus;
        g_object_set_data_full(G_OBJECT(window), kLentFocus, lent,
                               [](gpointer data) { delete static_cast<LentFocus*>(data); });
        g_signal_connect(window, "key-press-event", G_CALLBACK(StayWhereKeysAreTyped), lent);
        g_signal_connect(window, "button-press-event", G_CALLBACK(StayWhereIsClicked), lent);
    }
    return *lent;
}

bool IsWithin(GtkWidget* widget, GtkWidget* control) {
    return widget == control || gtk_widget_is_ancestor(widget, control) != FALSE;
}

// On to the next control, or to the window's first one where there is no next.
void TakeAway(GtkWidget* control, GtkWidget* window, Setter set) {
    const auto focus = [window] { return gtk_window_get_focus(GTK_WINDOW(window)); };
    const auto isAt = [&] { return focus() != nullptr && IsWithin(focus(), control); };
    if (!isAt()) {
        set(control, FALSE);
        return;
    }
    LentFocus& lent = LentFocusOf(window);
    if (lent.standIn.Get() != focus())
        lent.lost.Set(focus());
    for (int step = 0; step < kMostSteps && isAt(); ++step)
        gtk_widget_child_focus(window, GTK_DIR_TAB_FORWARD);
    set(control, FALSE);
    if (focus() == nullptr)
        gtk_widget_child_focus(window, GTK_DIR_TAB_FORWARD);
    lent.standIn.Set(focus());
}

// Unless the user has gone elsewhere.
void GiveFocusBack(GtkWidget* control, GtkWidget* window) {
    LentFocus& lent = LentFocusOf(window);
    GtkWidget* const lost = lent.lost.Get();
    if (lost == nullptr || !IsWithin(lost, control))
        return;
    if (gtk_window_get_focus(GTK_WINDOW(window)) == lent.standIn.Get())
        gtk_widget_grab_focus(lost);
    lent.Forget();
}

// With what it holds, unless it is left out when its window is shown.
void SetVisible(GtkWidget* control, gboolean isVisible) {
    if (isVisible)
        gtk_widget_show_all(control);
    gtk_widget_set_visible(control, isVisible);
}

void Change(GtkWidget* control, bool canBeUsed, Setter set) {
    GtkWidget* const window = gtk_widget_get_toplevel(control);
    if (!GTK_IS_WINDOW(window)) {
        set(control, canBeUsed);
    } else if (canBeUsed) {
        set(control, TRUE);
        GiveFocusBack(control, window);
    } else {
        TakeAway(control, window, set);
    }
}

}  // namespace

void SetControlSensitive(GtkWidget* control, bool isSensitive) {
    if ((gtk_widget_get_sensitive(control) != FALSE) != isSensitive)
        Change(control, isSensitive, gtk_widget_set_sensitive);
}

void SetControlVisible(GtkWidget* control, bool isVisible) {
    if ((gtk_widget_get_visible(control) != FALSE) != isVisible)
        Change(control, isVisible, SetVisible);
}
