#include "gui/controls/button_controls.h"

#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/mnemonic.h"

namespace {

void GCDialogButtonClicked(GtkWidget* button, gpointer host) {
    const int command = StoredCommand(button, "_cmd");
    if (!HostOf(host).TakeAnswer(command))
        HostOf(host).DeliverCommand(command);
}

void GCRadioCheckButtonToggled(GtkWidget* button, gpointer host) {
    DeliverStored(host, button, "_cmd");
}

const char* ClickKey(const GdkEventButton& event) {
    if (event.button == 1 && event.type == GDK_2BUTTON_PRESS)
        return "double-click";
    if (event.type != GDK_BUTTON_PRESS)
        return nullptr;
    switch (event.button) {
        case 1:
            return "lbutton-press-event";
        case 2:
            return "mbutton-press-event";
        default:
            return "rbutton-press-event";
    }
}

gboolean GCMouseClickEvent(GtkWidget* control, GdkEventButton* event, gpointer host) {
    const char* key = ClickKey(*event);
    if (key == nullptr || StoredCommand(control, key) == 0)
        return FALSE;
    DeliverStored(host, control, key);
    return TRUE;
}

}  // namespace

void LButtonControls::SetButtonCommandHandler(GtkWidget* button, int command) {
    SetControlID(button, command);
    Connect(button, "clicked", G_CALLBACK(GCDialogButtonClicked));
}

void LButtonControls::SetRadioCheckButtonCommandHandler(GtkWidget* button, int command) {
    StoreCommand(button, "_cmd", command, command);
    Connect(button, "toggled", G_CALLBACK(GCRadioCheckButtonToggled));
}

void LButtonControls::HandlePress(int id, const char* key, int command) {
    if (GtkWidget* control = GetControlByID(id)) {
        StoreCommand(control, key, command, id);
        gtk_widget_add_events(control, GDK_BUTTON_PRESS_MASK);
        Connect(control, "button-press-event", G_CALLBACK(GCMouseClickEvent));
    }
}

void LButtonControls::HandleClick(int id, int command) {
    if (GtkWidget* control = GetControlByID(id))
        StoreCommand(control, "_cmd", command, id);
    HandlePress(id, "lbutton-press-event", command);
}

void LButtonControls::HandleDoubleClick(int id, int command) {
    HandlePress(id, "double-click", command);
}

void LButtonControls::HandleRightClick(int id, int command) {
    HandlePress(id, "rbutton-press-event", command);
}

void LButtonControls::SetStaticText(int id, const char* text) {
    if (auto* label = ControlAs<GtkLabel>(id, GTK_TYPE_LABEL))
        gtk_label_set_text(label, DisplayText(text).c_str());
}

void LButtonControls::SetButtonText(int id, const char* text) {
    if (auto* button = ControlAs<GtkButton>(id, GTK_TYPE_BUTTON)) {
        gtk_button_set_label(button, gtk_button_get_use_underline(button)
                                         ? MnemonicText(text).c_str()
                                         : DisplayText(text).c_str());
        SetAccessibleName(GTK_WIDGET(button), WithoutMnemonic(text).c_str());
    }
}

void LButtonControls::SetButtonImage(int id, int imageNumber) {
    if (auto* button = ControlAs<GtkButton>(id, GTK_TYPE_BUTTON))
        gtk_button_set_image(button, NewIconImage(imageNumber));
}

void LButtonControls::SetCheck(int id, bool checked) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        gtk_toggle_button_set_active(button, checked);
}

bool LButtonControls::GetCheck(int id) const {
    auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON);
    return button != nullptr && gtk_toggle_button_get_active(button) != FALSE;
}
