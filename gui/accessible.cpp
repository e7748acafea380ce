#include "gui/accessible.h"

#include "gui/gobject_ref.h"

namespace {

constexpr guint kFirstTelling = 250;  // milliseconds; each later one after twice the time
constexpr guint kLastTelling = 8000;
constexpr guint kNewsStays = 60'000;

void TellFocus(GtkWindow* window) {
    // What is told twice is said once. A menu that is open has its own idea of the focus.
    GtkWidget* grab = gtk_grab_get_current();
    if (grab != nullptr && gtk_widget_get_toplevel(grab) != GTK_WIDGET(window))
        return;
    atk_object_notify_state_change(gtk_widget_get_accessible(GTK_WIDGET(window)), ATK_STATE_ACTIVE,
                                   TRUE);
    if (GtkWidget* focus = gtk_window_get_focus(window))
        atk_object_notify_state_change(gtk_widget_get_accessible(focus), ATK_STATE_FOCUSED, TRUE);
}

// Tells until a key is pressed: by then somebody has heard, and the focus that the key moves is
// told of itself, which the screen reader would leave out as a repetition of this. Deletes itself.
class FocusTeller {
public:
    FocusTeller() : snooper_(gtk_key_snooper_install(GCKey, this)) { WaitAgain(); }

private:
    ~FocusTeller() { gtk_key_snooper_remove(snooper_); }
    void WaitAgain() { gdk_threads_add_timeout(delay_, GCTell, this); }

    static gint GCKey(GtkWidget*, GdkEventKey*, gpointer self) {
        static_cast<FocusTeller*>(self)->keyPressed_ = true;
        return FALSE;
    }

    static gboolean GCTell(gpointer data) {
        auto* self = static_cast<FocusTeller*>(data);
        if (self->keyPressed_ || self->delay_ > kLastTelling) {
            delete self;
            return FALSE;
        }
        self->delay_ *= 2;
        self->WaitAgain();
        GList* windows = gtk_window_list_toplevels();
        for (GList* each = windows; each != nullptr; each = each->next)
            if (gtk_window_is_active(GTK_WINDOW(each->data))) {
                TellFocus(GTK_WINDOW(each->data));
                break;  // what it calls may end the others
            }
        g_list_free(windows);
        return FALSE;
    }

    guint delay_ = kFirstTelling;
    bool keyPressed_ = false;
    const guint snooper_;
};

}  // namespace

void SetAccessibleName(GtkWidget* widget, const char* name) {
    if (AtkObject* accessible = gtk_widget_get_accessible(widget))
        atk_object_set_name(accessible, name);
    if (GTK_IS_COMBO_BOX(widget) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(widget)))
        SetAccessibleName(gtk_bin_get_child(GTK_BIN(widget)), name);
}

void SetPanelName(GtkWidget* box, const char* name) {
    atk_object_set_role(gtk_widget_get_accessible(box), ATK_ROLE_PANEL);
    SetAccessibleName(box, name);
}

void TellScreenReader(GtkWidget* widget, const char* text) {
    // What comes up in this role is said, and only that. The label stands in no window: one that
    // Tab reaches would be called a notification there too.
    auto news = GObjectRef<GtkWidget>::Share(gtk_label_new(text));
    gtk_widget_show(news.Get());
    AtkObject* accessible = gtk_widget_get_accessible(news.Get());
    atk_object_set_role(accessible, ATK_ROLE_NOTIFICATION);
    atk_object_set_parent(accessible, gtk_widget_get_accessible(widget));
    atk_object_notify_state_change(accessible, ATK_STATE_SHOWING, TRUE);
    // The screen reader, if there is one, asks for the text later, when there may be other news.
    gdk_threads_add_timeout_full(
        G_PRIORITY_LOW, kNewsStays, [](gpointer) -> gboolean { return FALSE; }, news.Release(),
        g_object_unref);
}

void KeepValueQuiet(GtkWidget* widget) {
    g_object_freeze_notify(G_OBJECT(gtk_widget_get_accessible(widget)));
}

void TellFocusToLateScreenReader() {
    if (atk_get_toolkit_name() != nullptr)
        new FocusTeller;
}

void LabelWidget(GtkWidget* label, GtkWidget* widget) {
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), widget);
    SetAccessibleName(widget, gtk_label_get_text(GTK_LABEL(label)));
}
