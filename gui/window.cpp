#include "gui/window.h"

#include "gui/help_page.h"
#include "gui/icons.h"

LWindow::~LWindow() {
    GtkWidget* widget = widget_;
    const bool own = !shared_;
    DetachWidget();
    if (widget != nullptr && own)
        gtk_widget_destroy(widget);
}

void LWindow::CmHelp() {
    DisplayHelpPage(helpPage_);
}

void LWindow::CmClose() {
    if (widget_ != nullptr)
        gtk_widget_hide_all(widget_);
}

void LWindow::Close(int) {
    DestroyDialog();
    if (widget_ != nullptr && !shared_)
        gtk_widget_destroy(widget_);  // the "destroy" handler forgets it
    DetachWidget();
}

void LWindow::AttachWidget(GtkWidget* widget, bool shared) {
    widget_ = widget;
    shared_ = shared;
    g_signal_connect(widget, "destroy", G_CALLBACK(GCWindowDestroyed), this);
}

// The widget may also go because its parent goes; nothing may be left pointing at it then.
void LWindow::GCWindowDestroyed(GtkWidget*, gpointer window) {
    static_cast<LWindow*>(window)->DetachWidget();
}

void LWindow::DetachWidget() {
    if (widget_ != nullptr) {
        g_signal_handlers_disconnect_by_func(widget_, reinterpret_cast<gpointer>(GCWindowDestroyed),
                                             this);
        widget_ = nullptr;
    }
    shared_ = false;
    modeless_ = false;
    accelerators_.Reset();
    bubbleTip_.Hide();
    registry_.clear();
}

void LWindow::CreateAccelerators() {
    accelerators_ = GObjectRef<GtkAccelGroup>::Adopt(gtk_accel_group_new());
    gtk_window_add_accel_group(GTK_WINDOW(widget_), accelerators_.Get());
}

void LWindow::SetAppIcon(int number) {
    if (GTK_IS_WINDOW(widget_))
        SetWindowIcon(GTK_WINDOW(widget_), number);
}

void LWindow::SetControlID(GtkWidget* control, int id) {
    registry_.push_front({id, GObjectRef<GtkWidget>::Share(control)});
    g_object_set_data(G_OBJECT(control), "_cmd", GINT_TO_POINTER(id));
}

GtkWidget* LWindow::GetControlByID(int id) const {
    for (const Entry& entry : registry_) {
        if (entry.id == id)
            return entry.control.Get();
    }
    return nullptr;
}

void LWindow::EnableControl(int id, bool enabled) {
    if (GtkWidget* control = GetControlByID(id))
        gtk_widget_set_sensitive(control, enabled);
}

bool LWindow::IsControlEnabled(int id) const {
    GtkWidget* control = GetControlByID(id);
    return control != nullptr && gtk_widget_get_sensitive(control) != FALSE;
}

void LWindow::ShowControl(int id, bool shown) {
    if (GtkWidget* control = GetControlByID(id))
        gtk_widget_set_visible(control, shown);
}

void LWindow::FocusControl(int id) {
    if (GtkWidget* control = GetControlByID(id))
        gtk_widget_grab_focus(control);
}

void LWindow::SetTooltip(int id, const char* text) {
    if (GtkWidget* control = GetControlByID(id))
        gtk_widget_set_tooltip_text(control, text);
}

void LWindow::SetControlInvalid(int id, const char* message, const char* title) {
    FocusControl(id);
    BubbleTipRun(id, title, message);
}

void LWindow::BubbleTipRun(int id, const char* title, const char* text) {
    if (GtkWidget* control = GetControlByID(id))
        bubbleTip_.Show(control, title, text);
}

void LWindow::BubbleTipHide() {
    bubbleTip_.Hide();
}

void LWindow::DeliverCommand(int command) {
    Command(command);
    EnableControls();
}
