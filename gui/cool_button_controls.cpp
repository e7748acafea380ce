#include "gui/cool_button_controls.h"

#include "gui/cool_button.h"

namespace {

void CoolButtonClicked(void* host, int command) {
    HostOf(host).DeliverCommand(command);
}

}  // namespace

void LCoolButtonControls::CoolButtonInit(int id, int imageNumber, const char* text) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        InitCoolButton(button, LCoolButtonKind::kPush, imageNumber, text, id, CoolButtonClicked,
                       static_cast<LControlHost*>(this));
}

void LCoolButtonControls::CoolButtonInitUpDown(int id, int imageNumber, const char* text) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        InitCoolButton(button, LCoolButtonKind::kUpDown, imageNumber, text, id, CoolButtonClicked,
                       static_cast<LControlHost*>(this));
}

void LCoolButtonControls::SetCoolButtonDown(int id) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        SetCoolButtonState(button, true);
}

void LCoolButtonControls::SetCoolButtonUp(int id) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        SetCoolButtonState(button, false);
}

bool LCoolButtonControls::IsCoolButtonDown(int id) const {
    auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON);
    return button != nullptr && gtk_toggle_button_get_active(button) != FALSE;
}
