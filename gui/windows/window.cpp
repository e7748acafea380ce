#include "gui/windows/window.h"

#include "gui/accessible.h"
#include "gui/control_focus.h"
#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/windows/help_page.h"

namespace {

// What is laid out for a control: itself, or the scrolled window around it.
GtkWidget* PlacedWidget(GtkWidget* control) {
    GtkWidget* parent = control != nullptr ? gtk_widget_get_parent(control) : nullptr;
    return GTK_IS_SCROLLED_WINDOW(parent) ? parent : control;
}

}  // namespace

LWindow::~LWindow() {
    GtkWidget* widget = widget_;
    const bool own = !shared_;
    DetachWidget();
    if (widget != nullptr && own)
        EndWidget(widget);
}

void LWindow::CmHelp() {
    DisplayHelpPage(helpPage_);
}

void LWindow::CmClose() {
    if (widget_ != nullptr)
        gtk_widget_hide_all(widget_);
}

void LWindow::Close(int) {
    if (!IsOpen() || closing_)
        return;
    closing_ = true;
    const std::weak_ptr<const void> life = Life();
    DestroyDialog();
    if (life.expired())
        return;
    closing_ = false;
    GtkWidget* widget = widget_;
    const bool own = !shared_;
    DetachWidget();
    if (widget != nullptr && own)
        EndWidget(widget);
}

void LWindow::AttachWidget(GtkWidget* widget, bool shared) {
    widget_ = widget;
    shared_ = shared;
    AddCallbacks(widget, Signals().Callbacks());
    Connect(widget, "destroy", G_CALLBACK(GCWindowDestroyed));
    WidgetAttached(widget);
}

// The widget may also go because its parent goes; nothing may be left pointing at it then.
void LWindow::GCWindowDestroyed(GtkWidget*, gpointer host) {
    dynamic_cast<LWindow&>(HostOf(host)).DetachWidget();
}

void LWindow::DetachWidget() {
    widget_ = nullptr;
    shared_ = false;
    modeless_ = false;
    accelerators_.Reset();
    bubbleTip_.Hide();
    notification_.Hide();
    ForgetControls();
    ForgetMenus();
    WidgetDetached();
}

void LWindow::CreateAccelerators() {
    accelerators_ = GObjectRef<GtkAccelGroup>::Adopt(gtk_accel_group_new());
    gtk_window_add_accel_group(GTK_WINDOW(widget_), accelerators_.Get());
}

void LWindow::SetAppIcon(int number) {
    if (GTK_IS_WINDOW(widget_))
        SetWindowIcon(GTK_WINDOW(widget_), number);
}

// Nobody waits for the answers of a modeless dialog: there they are commands.
bool LWindow::TakeAnswer(int command) {
    const bool answer =
        command == kCommandOk || command == kCommandCancel || command == kCommandHelp;
    if (!answer || IsModeless() || !GTK_IS_DIALOG(widget_))
        return false;
    gtk_dialog_response(GTK_DIALOG(widget_), command);
    return true;
}

void LWindow::EnableControl(int id, bool enabled) {
    if (GtkWidget* const control = GetControlByID(id))
        SetControlSensitive(control, enabled);
}

bool LWindow::IsControlEnabled(int id) const {
    GtkWidget* control = GetControlByID(id);
    return control != nullptr && gtk_widget_get_sensitive(control) != FALSE;
}

void LWindow::ShowControl(int id, bool shown) {
    GtkWidget* placed = PlacedWidget(GetControlByID(id));
    if (placed == nullptr)
        return;
    // Showing the window shows everything in it that does not say otherwise.
    gtk_widget_set_no_show_all(placed, !shown);
    SetControlVisible(placed, shown);
}

void LWindow::FocusControl(int id) {
    if (GtkWidget* control = GetControlByID(id))
        gtk_widget_grab_focus(control);
}

void LWindow::SetTooltip(int id, const char* text) {
    GtkWidget* control = GetControlByID(id);
    if (control == nullptr)
        return;
    const std::string shown = DisplayText(text);
    gtk_widget_set_tooltip_text(control, shown.c_str());
    // What shows no text of its own, as a picture on a button, is called by its tooltip.
    const char* name = atk_object_get_name(gtk_widget_get_accessible(control));
    if (name == nullptr || *name == '\0')
        SetAccessibleName(control, shown.c_str());
}

void LWindow::SetControlInvalid(int id, const char* message, const char* title) {
    FocusControl(id);
    BubbleTipRun(id, title, message);
}

void LWindow::BubbleTipRun(int id, const char* title, const char* text) {
    if (GtkWidget* control = GetControlByID(id))
        bubbleTip_.Show(control, title, text);
}

void LWindow::Notify(const char* title, const char* text, std::function<void()> otherwise) {
    notification_.Show(title, text, std::move(otherwise));
}

void LWindow::BubbleTipHide() {
    bubbleTip_.Hide();
}
