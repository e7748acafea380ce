#include "gui/cool_button.h"

#include <memory>

#include "gui/accessible.h"
#include "gui/icons.h"

namespace {

constexpr const char* kDataKey = "cool-button";

struct CoolButton {
    LCoolButtonKind kind;
    int command;
    void (*clicked)(void* data, int command);
    void* data;
    bool down;  // the pressed look as last set by the program or, for up-down buttons, by the user
};

CoolButton* Of(GtkToggleButton* button) {
    return static_cast<CoolButton*>(g_object_get_data(G_OBJECT(button), kDataKey));
}

void GCCoolButtonClicked(GtkToggleButton* button, gpointer cool) {
    auto* state = static_cast<CoolButton*>(cool);
    if (state->kind == LCoolButtonKind::kUpDown)
        state->down = gtk_toggle_button_get_active(button) != FALSE;
    else
        SetCoolButtonState(button, state->down);  // GTK has turned the look over already
    state->clicked(state->data, state->command);
}

// Changing the look emits "clicked" again, which must not be taken for the user's click.
void SetLook(GtkToggleButton* button, bool down, CoolButton* state) {
    g_signal_handlers_block_by_func(button, reinterpret_cast<gpointer>(GCCoolButtonClicked), state);
    gtk_toggle_button_set_active(button, down);
    g_signal_handlers_unblock_by_func(button, reinterpret_cast<gpointer>(GCCoolButtonClicked),
                                      state);
}

void SetFace(GtkToggleButton* button, int imageNumber, const char* text) {
    if (GtkWidget* old = gtk_bin_get_child(GTK_BIN(button)))
        gtk_container_remove(GTK_CONTAINER(button), old);
    GtkWidget* face = gtk_hbox_new(FALSE, 4);
    if (imageNumber >= 0)
        gtk_box_pack_start(GTK_BOX(face), NewIconImage(imageNumber), FALSE, FALSE, 2);
    gtk_box_pack_start(GTK_BOX(face), gtk_label_new(text), TRUE, TRUE, 0);
    gtk_container_add(GTK_CONTAINER(button), face);
    gtk_widget_show_all(face);
    SetAccessibleName(GTK_WIDGET(button), text);
}

}  // namespace

void InitCoolButton(GtkToggleButton* button, LCoolButtonKind kind, int imageNumber,
                    const char* text, int command, void (*clicked)(void* data, int command),
                    void* data) {
    SetFace(button, imageNumber, text);
    if (CoolButton* old = Of(button))
        g_signal_handlers_disconnect_by_func(button,
                                             reinterpret_cast<gpointer>(GCCoolButtonClicked), old);
    const bool down = gtk_toggle_button_get_active(button) != FALSE;
    auto state = std::make_unique<CoolButton>(CoolButton{kind, command, clicked, data, down});
    g_signal_connect(button, "clicked", G_CALLBACK(GCCoolButtonClicked), state.get());
    g_object_set_data_full(G_OBJECT(button), kDataKey, state.release(),
                           [](gpointer cool) { delete static_cast<CoolButton*>(cool); });
}

void SetCoolButtonState(GtkToggleButton* button, bool down) {
    CoolButton* state = Of(button);
    if (state == nullptr)
        return;
    state->down = down;
    if ((gtk_toggle_button_get_active(button) != FALSE) != down)
        SetLook(button, down, state);
}
