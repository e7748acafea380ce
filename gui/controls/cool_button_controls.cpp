#include "gui/controls/cool_button_controls.h"

void LCoolButtonControls::Init(int id, LCoolButtonKind kind, int imageNumber, const char* text,
                               LCoolButtonCommands commands) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        InitCoolButton(button, kind, imageNumber, text, commands,
                       [this, life = Life()](int command) {
                           if (!life.expired())
                               DeliverCommand(command);
                       });
}

void LCoolButtonControls::CoolButtonInit(int id, int imageNumber, const char* text) {
    Init(id, LCoolButtonKind::kPush, imageNumber, text, {id});
}

void LCoolButtonControls::CoolButtonInitDropDown(int id, int imageNumber, const char* text,
                                                 int dropDownCommand) {
    Init(id, LCoolButtonKind::kDropDown, imageNumber, text, {id, dropDownCommand});
}

void LCoolButtonControls::CoolButtonInitUpDown(int id, int imageNumber, const char* text,
                                               int downCommand, int upCommand) {
    Init(id, LCoolButtonKind::kUpDown, imageNumber, text, {downCommand, upCommand});
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
