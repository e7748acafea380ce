#include "gui/cool_button.h"

#include <algorithm>
#include <memory>

#include "gui/accessible.h"
#include "gui/icons.h"

namespace {

constexpr const char* kDataKey = "cool-button";
constexpr int kMaxImageSize = 32;  // pixels

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

// Larger pictures would leave no room for the text.
GtkWidget* NewFaceImage(int number) {
    const auto icon = LoadIcon(number);
    const int width = icon ? gdk_pixbuf_get_width(icon.Get()) : 0;
    const int height = icon ? gdk_pixbuf_get_height(icon.Get()) : 0;
    const int larger = std::max(width, height);
    if (larger <= kMaxImageSize)
        return gtk_image_new_from_pixbuf(icon.Get());
    const auto scaled = GObjectRef<GdkPixbuf>::Adopt(
        gdk_pixbuf_scale_simple(icon.Get(), std::max(1, width * kMaxImageSize / larger),
                                std::max(1, height * kMaxImageSize / larger), GDK_INTERP_BILINEAR));
    return gtk_image_new_from_pixbuf(scaled.Get());
}

// A label breaks its lines by its requested width, not by the width it gets.
void GCLabelSize(GtkWidget* label, GtkAllocation* place, gpointer) {
    GtkRequisition wanted;
    gtk_widget_get_child_requisition(label, &wanted);
    if (place->width < wanted.width)
        gtk_widget_set_size_request(label, place->width, -1);
}

void SetFace(GtkToggleButton* button, int imageNumber, const char* text) {
    if (GtkWidget* old = gtk_bin_get_child(GTK_BIN(button)))
        gtk_container_remove(GTK_CONTAINER(button), old);
    GtkWidget* face = gtk_hbox_new(FALSE, 4);
    if (imageNumber >= 0)
        gtk_box_pack_start(GTK_BOX(face), NewFaceImage(imageNumber), FALSE, FALSE, 2);
    GtkWidget* label = gtk_label_new(text);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
    g_signal_connect(label, "size-allocate", G_CALLBACK(GCLabelSize), nullptr);
    gtk_box_pack_start(GTK_BOX(face), label, TRUE, TRUE, 0);
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
