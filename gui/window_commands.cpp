// Control signals become commands.
#include <cmath>

#include "gui/window.h"
#include "gui/window_callbacks.h"

namespace {

constexpr int kMaxEditCharacters = 65536;

int StoredCommand(gpointer object, const char* key) {
    return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(object), key));
}

// Several registrations share one callback, which must not run twice for one event.
void ConnectOnce(gpointer object, const char* signal, GCallback callback, gpointer window,
                 GConnectFlags flags = GConnectFlags(0)) {
    const auto function = reinterpret_cast<gpointer>(callback);
    const auto match = GSignalMatchType(G_SIGNAL_MATCH_FUNC | G_SIGNAL_MATCH_DATA);
    if (g_signal_handler_find(object, match, 0, 0, nullptr, function, window) == 0)
        g_signal_connect_data(object, signal, callback, window, nullptr, flags);
}

const char* ClickKey(const GdkEventButton& event) {
    switch (event.button) {
        case 1:
            if (event.type == GDK_2BUTTON_PRESS)
                return "double-click";
            return event.type == GDK_BUTTON_PRESS ? "lbutton-press-event" : nullptr;
        case 2:
            return event.type == GDK_BUTTON_PRESS ? "mbutton-press-event" : nullptr;
        default:
            return event.type == GDK_BUTTON_PRESS ? "rbutton-press-event" : nullptr;
    }
}

}  // namespace

void LWindowCallbacks::Deliver(gpointer window, gpointer object, const char* key) {
    static_cast<LWindow*>(window)->DeliverCommand(StoredCommand(object, key));
}

void LWindowCallbacks::GCDialogButtonClicked(GtkWidget* button, gpointer data) {
    auto* window = static_cast<LWindow*>(data);
    const int command = StoredCommand(button, "_cmd");
    const bool answer =
        command == kCommandOk || command == kCommandCancel || command == kCommandHelp;
    // Nobody waits for the answers of a modeless dialog: there they are commands.
    if (answer && !window->IsModeless() && GTK_IS_DIALOG(window->Widget()))
        gtk_dialog_response(GTK_DIALOG(window->Widget()), command);
    else
        window->DeliverCommand(command);
}

void LWindowCallbacks::GCRadioCheckButtonToggled(GtkWidget* button, gpointer window) {
    Deliver(window, button, "_cmd");
}

gboolean LWindowCallbacks::GCMouseClickEvent(GtkWidget* control, GdkEventButton* event,
                                             gpointer window) {
    const char* key = ClickKey(*event);
    if (key == nullptr || StoredCommand(control, key) == 0)
        return FALSE;
    Deliver(window, control, key);
    return TRUE;
}

void LWindowCallbacks::GCEditChange(GtkTextBuffer* buffer, gpointer window) {
    const bool tooLong = gtk_text_buffer_get_char_count(buffer) > kMaxEditCharacters &&
                         StoredCommand(buffer, "max") != 0;
    const char* key = tooLong ? "max" : "changed";
    if (StoredCommand(buffer, key) != 0)
        Deliver(window, buffer, key);
}

void LWindowCallbacks::GCDialogPDLChanged(GtkWidget* list, gpointer window) {
    Deliver(window, list, "changed");
}

void LWindowCallbacks::GCDialogListViewCurChanged(GtkWidget* list, gpointer window) {
    Deliver(window, list, "cursor-changed");
}

void LWindowCallbacks::GCDialogListViewRowActivated(GtkWidget* list, GtkTreePath*,
                                                    GtkTreeViewColumn*, gpointer window) {
    Deliver(window, list, "row-doubleclicked");
}

void LWindowCallbacks::GCTABSwitch(GtkWidget* tabs, gpointer, guint, gpointer window) {
    Deliver(window, tabs, "switch-page");
}

// Once: the first layout of the window shows the selected tab's controls for the first time.
gboolean LWindowCallbacks::GCTABFirstLayout(GtkWidget* widget, GdkEvent*, gpointer tabs) {
    const gpointer handler = g_object_steal_data(G_OBJECT(tabs), "_configureTAB");
    g_signal_handler_disconnect(widget, GPOINTER_TO_SIZE(handler));
    Deliver(g_object_get_data(G_OBJECT(tabs), "_windowTAB"), tabs, "switch-page");
    return FALSE;
}

gboolean LWindowCallbacks::GCDialogSBChangeValue(GtkRange* range, GtkScrollType, gdouble value,
                                                 gpointer window) {
    gtk_range_set_value(range, std::round(value));
    Deliver(window, range, "sbchange");
    return TRUE;
}

void LWindowCallbacks::CoolButtonClicked(void* window, int command) {
    static_cast<LWindow*>(window)->DeliverCommand(command);
}

GtkWidget* LWindow::StoreCommand(int id, const char* key, int command) {
    GtkWidget* control = GetControlByID(id);
    if (control != nullptr)
        g_object_set_data(G_OBJECT(control), key, GINT_TO_POINTER(command < 0 ? id : command));
    return control;
}

void LWindow::SetButtonCommandHandler(GtkWidget* button, int command) {
    SetControlID(button, command);
    ConnectOnce(button, "clicked", G_CALLBACK(LWindowCallbacks::GCDialogButtonClicked), this);
}

void LWindow::SetRadioCheckButtonCommandHandler(GtkWidget* button, int command) {
    g_object_set_data(G_OBJECT(button), "_cmd", GINT_TO_POINTER(command));
    ConnectOnce(button, "toggled", G_CALLBACK(LWindowCallbacks::GCRadioCheckButtonToggled), this);
}

void LWindow::HandlePress(int id, const char* key, int command) {
    if (GtkWidget* control = StoreCommand(id, key, command)) {
        gtk_widget_add_events(control, GDK_BUTTON_PRESS_MASK);
        ConnectOnce(control, "button-press-event", G_CALLBACK(LWindowCallbacks::GCMouseClickEvent),
                    this);
    }
}

void LWindow::HandleClick(int id, int command) {
    StoreCommand(id, "_cmd", command);
    HandlePress(id, "lbutton-press-event", command);
}

void LWindow::HandleDoubleClick(int id, int command) {
    HandlePress(id, "double-click", command);
}

void LWindow::HandleRightClick(int id, int command) {
    HandlePress(id, "rbutton-press-event", command);
}

void LWindow::HandleEditSignal(int id, const char* key, int command) {
    if (GtkTextBuffer* buffer = EditBufferOf(id)) {
        g_object_set_data(G_OBJECT(buffer), key, GINT_TO_POINTER(command < 0 ? id : command));
        ConnectOnce(buffer, "changed", G_CALLBACK(LWindowCallbacks::GCEditChange), this);
    }
}

void LWindow::HandleEditTextChange(int id, int command) {
    HandleEditSignal(id, "changed", command);
}

void LWindow::HandleEditTextMax(int id, int command) {
    HandleEditSignal(id, "max", command);
}

void LWindow::HandlePDLSelChange(int id, int command) {
    if (GtkWidget* list = StoreCommand(id, "changed", command); GTK_IS_COMBO_BOX(list))
        ConnectOnce(list, "changed", G_CALLBACK(LWindowCallbacks::GCDialogPDLChanged), this);
}

void LWindow::HandleLVSelChange(int id, int command) {
    if (GtkWidget* list = StoreCommand(id, "cursor-changed", command); GTK_IS_TREE_VIEW(list))
        ConnectOnce(list, "cursor-changed",
                    G_CALLBACK(LWindowCallbacks::GCDialogListViewCurChanged), this);
}

void LWindow::HandleLVDoubleClick(int id, int command) {
    if (GtkWidget* list = StoreCommand(id, "row-doubleclicked", command); GTK_IS_TREE_VIEW(list))
        ConnectOnce(list, "row-activated",
                    G_CALLBACK(LWindowCallbacks::GCDialogListViewRowActivated), this);
}

void LWindow::HandleTABSelChange(int id, int command) {
    GtkWidget* tabs = StoreCommand(id, "switch-page", command);
    if (!GTK_IS_NOTEBOOK(tabs))
        return;
    ConnectOnce(tabs, "switch-page", G_CALLBACK(LWindowCallbacks::GCTABSwitch), this,
                G_CONNECT_AFTER);
    if (widget_ != nullptr && g_object_get_data(G_OBJECT(tabs), "_configureTAB") == nullptr) {
        const gulong handler = g_signal_connect_object(
            widget_, "configure-event", G_CALLBACK(LWindowCallbacks::GCTABFirstLayout), tabs,
            GConnectFlags(0));
        g_object_set_data(G_OBJECT(tabs), "_configureTAB", GSIZE_TO_POINTER(handler));
        g_object_set_data(G_OBJECT(tabs), "_windowTAB", this);
    }
}

void LWindow::HandleHSBChange(int id, int command) {
    if (GtkWidget* range = StoreCommand(id, "sbchange", command); GTK_IS_RANGE(range))
        ConnectOnce(range, "change-value", G_CALLBACK(LWindowCallbacks::GCDialogSBChangeValue),
                    this);
}
