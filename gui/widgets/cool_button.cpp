#include "gui/widgets/cool_button.h"

#include <gdk/gdkkeysyms.h>

#include <memory>
#include <string>
#include <utility>

#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/icons.h"

namespace {

constexpr const char* kCoolButtonKey = "cool-button";
constexpr const char* kLettersKey = "cool-button-letters";
constexpr const char* kImageSizeKey = "cool-button-image";
constexpr int kButtonImageSize = 32;  // pixels

struct CoolButton {
    LCoolButtonKind kind;
    LCoolButtonCommands commands;
    std::function<void(int)> send;
    bool down;                   // the pressed look as last set by the program
    bool told;                   // the same, as screen readers know it
    bool held = false;           // the first command of an up-down button is out
    guint32 clickedAt = 0;       // milliseconds of the pointer's last click; 0 for none
    GtkWidget* arrow = nullptr;  // the part that drops down; owned by the face
};

CoolButton* CoolButtonOf(gpointer button) {
    return static_cast<CoolButton*>(g_object_get_data(G_OBJECT(button), kCoolButtonKey));
}

// Last act of its caller: the command may destroy the button.
void Send(const CoolButton& state, int command) {
    const auto send = state.send;
    send(command);
}

void Hold(CoolButton& state, bool held) {
    if (state.held == held)
        return;
    state.held = held;
    Send(state, held ? state.commands.command : state.commands.second);
}

void GCCoolButtonClicked(GtkToggleButton* button, gpointer);

// Changing the look emits "clicked" again, which must not be taken for the user's click.
void SetLook(GtkToggleButton* button, bool down) {
    if ((gtk_toggle_button_get_active(button) != FALSE) == down)
        return;
    const auto clicked = reinterpret_cast<gpointer>(GCCoolButtonClicked);
    g_signal_handlers_block_by_func(button, clicked, nullptr);
    gtk_toggle_button_set_active(button, down);
    g_signal_handlers_unblock_by_func(button, clicked, nullptr);
}

// Many users click twice on everything; the second click would take back what the first began.
bool IsSecondOfDoubleClick(GtkToggleButton* button, CoolButton& state) {
    GdkEvent* event = gtk_get_current_event();
    const bool isPointer = event != nullptr && event->type == GDK_BUTTON_RELEASE;
    const guint32 now = isPointer ? gdk_event_get_time(event) : 0;
    if (event != nullptr)
        gdk_event_free(event);
    const guint32 before = std::exchange(state.clickedAt, now);
    gint limit = 0;
    g_object_get(gtk_widget_get_settings(GTK_WIDGET(button)), "gtk-double-click-time", &limit,
                 nullptr);
    return now != 0 && before != 0 && now - before < static_cast<guint32>(limit);
}

void GCCoolButtonClicked(GtkToggleButton* button, gpointer) {
    CoolButton* state = CoolButtonOf(button);
    SetLook(button, state->down);  // GTK has turned it over already
    if (state->kind != LCoolButtonKind::kUpDown && !IsSecondOfDoubleClick(button, *state))
        Send(*state, state->commands.command);
}

gboolean GCArrowPress(GtkWidget* button, GdkEventButton* event, gpointer) {
    const CoolButton* state = CoolButtonOf(button);
    if (state->arrow == nullptr || event->button != 1)
        return FALSE;
    int x = 0;
    gtk_widget_translate_coordinates(state->arrow, button, 0, 0, &x, nullptr);
    if (event->x < x)
        return FALSE;
    if (event->type == GDK_BUTTON_PRESS)
        Send(*state, state->commands.second);
    return TRUE;
}

void GCPressed(GtkWidget* button, gpointer) {
    Hold(*CoolButtonOf(button), true);
}

void GCReleased(GtkWidget* button, gpointer) {
    Hold(*CoolButtonOf(button), false);
}

void TellLook(GtkToggleButton* button) {
    CoolButton* state = CoolButtonOf(button);
    if (std::exchange(state->told, state->down) != state->down)
        atk_object_notify_state_change(gtk_widget_get_accessible(GTK_WIDGET(button)),
                                       ATK_STATE_CHECKED, state->down);
}

gboolean GCLeft(gpointer button) {
    if (gtk_widget_has_focus(GTK_WIDGET(button)) == FALSE)
        TellLook(GTK_TOGGLE_BUTTON(button));
    return FALSE;
}

// A screen reader has heard by then where the focus is.
gboolean GCFocusOut(GtkWidget* button, GdkEvent*, gpointer) {
    constexpr guint kLeftMilliseconds = 100;
    const CoolButton* state = CoolButtonOf(button);
    if (state->told != state->down)
        gdk_threads_add_timeout_full(G_PRIORITY_DEFAULT, kLeftMilliseconds, GCLeft,
                                     g_object_ref(button), g_object_unref);
    Hold(*CoolButtonOf(button), false);
    return FALSE;
}

gboolean GCKey(GtkWidget* button, GdkEventKey* event, gpointer) {
    CoolButton* state = CoolButtonOf(button);
    const guint key = event->keyval;
    const bool press = event->type == GDK_KEY_PRESS;
    if (state->kind == LCoolButtonKind::kDropDown && press &&
        (key == GDK_KEY_Down || key == GDK_KEY_KP_Down)) {
        Send(*state, state->commands.second);
        return TRUE;
    }
    if (state->kind == LCoolButtonKind::kUpDown &&
        (key == GDK_KEY_space || key == GDK_KEY_Return || key == GDK_KEY_KP_Enter)) {
        Hold(*state, press);  // a repeating key presses again and again
        return TRUE;
    }
    return FALSE;
}

// Whether the text fits into the place in letters of this share of their size.
bool Fits(GtkWidget* label, const GtkAllocation& place, double share) {
    const auto layout = GObjectRef<PangoLayout>::Adopt(
        gtk_widget_create_pango_layout(label, gtk_label_get_text(GTK_LABEL(label))));
    PangoAttrList* smaller = pango_attr_list_new();
    pango_attr_list_insert(smaller, pango_attr_scale_new(share));
    pango_layout_set_attributes(layout.Get(), smaller);
    pango_attr_list_unref(smaller);
    pango_layout_set_width(layout.Get(), place.width * PANGO_SCALE);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout.Get(), &width, &height);
    return width <= place.width && height <= place.height;
}

void SetLetters(GtkWidget* label, double share) {
    PangoAttrList* smaller = pango_attr_list_new();
    pango_attr_list_insert(smaller, pango_attr_scale_new(share));
    gtk_label_set_attributes(GTK_LABEL(label), smaller);
    pango_attr_list_unref(smaller);
}

// A label breaks its lines by its requested width, not by the width it gets. The large fonts of
// some desktops need smaller letters on a button of fixed size.
void GCLabelSize(GtkWidget* label, GtkAllocation* place, gpointer) {
    GtkRequisition wanted;
    gtk_widget_get_child_requisition(label, &wanted);
    if (place->width < wanted.width)
        gtk_widget_set_size_request(label, place->width, -1);
    constexpr int kSmallest = 6;  // tenths
    int tenths = 10;
    while (tenths > kSmallest && !Fits(label, *place, tenths / 10.0))
        --tenths;
    if (GPOINTER_TO_INT(g_object_get_data(G_OBJECT(label), kLettersKey)) != tenths) {
        g_object_set_data(G_OBJECT(label), kLettersKey, GINT_TO_POINTER(tenths));
        SetLetters(label, tenths / 10.0);
    }
}

GtkWidget* NewFaceLabel(const std::string& text) {
    GtkWidget* label = gtk_label_new(text.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
    g_signal_connect(label, "size-allocate", G_CALLBACK(GCLabelSize), nullptr);
    return label;
}

int ImageSize(GtkToggleButton* button) {
    const int set = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(button), kImageSizeKey));
    return set > 0 ? set : kButtonImageSize;
}

void SetFace(GtkToggleButton* button, CoolButton& state, int imageNumber, const char* text) {
    if (GtkWidget* old = gtk_bin_get_child(GTK_BIN(button)))
        gtk_container_remove(GTK_CONTAINER(button), old);
    const std::string shown = DisplayText(text);
    GtkWidget* face = gtk_hbox_new(FALSE, 4);
    if (imageNumber >= 0)
        gtk_box_pack_start(GTK_BOX(face), NewIconImageAt(imageNumber, ImageSize(button)),
                           shown.empty(), FALSE, shown.empty() ? 0 : 2);
    if (!shown.empty()) {
        gtk_box_pack_start(GTK_BOX(face), NewFaceLabel(shown), TRUE, TRUE, 0);
        SetAccessibleName(GTK_WIDGET(button), shown.c_str());
    }
    if (state.kind == LCoolButtonKind::kDropDown) {
        state.arrow = gtk_arrow_new(GTK_ARROW_DOWN, GTK_SHADOW_NONE);
        gtk_box_pack_end(GTK_BOX(face), state.arrow, FALSE, FALSE, 0);
        gtk_box_pack_end(GTK_BOX(face), gtk_vseparator_new(), FALSE, FALSE, 0);
    }
    gtk_container_add(GTK_CONTAINER(button), face);
    gtk_widget_show_all(face);
}

void Connect(GtkToggleButton* button, LCoolButtonKind kind) {
    const struct {
        const char* signal;
        GCallback callback;
        bool wanted;
    } connections[] = {
        {"clicked", G_CALLBACK(GCCoolButtonClicked), true},
        {"button-press-event", G_CALLBACK(GCArrowPress), kind == LCoolButtonKind::kDropDown},
        {"key-press-event", G_CALLBACK(GCKey), kind != LCoolButtonKind::kPush},
        {"key-release-event", G_CALLBACK(GCKey), kind == LCoolButtonKind::kUpDown},
        {"pressed", G_CALLBACK(GCPressed), kind == LCoolButtonKind::kUpDown},
        {"released", G_CALLBACK(GCReleased), kind == LCoolButtonKind::kUpDown},
        {"unmap", G_CALLBACK(GCReleased), kind == LCoolButtonKind::kUpDown},
        {"focus-out-event", G_CALLBACK(GCFocusOut), true},
    };
    for (const auto& connection : connections) {
        g_signal_handlers_disconnect_by_func(
            button, reinterpret_cast<gpointer>(connection.callback), nullptr);
    }
    for (const auto& connection : connections) {
        if (connection.wanted)
            g_signal_connect(button, connection.signal, connection.callback, nullptr);
    }
}

// The toolkit's accessible tells each change of the look, also those that are taken back at once.
void LeaveLookToUs(GtkToggleButton* button) {
    g_signal_handlers_disconnect_matched(
        button, GSignalMatchType(G_SIGNAL_MATCH_ID | G_SIGNAL_MATCH_DATA),
        g_signal_lookup("toggled", GTK_TYPE_TOGGLE_BUTTON), 0, nullptr, nullptr, nullptr);
}

}  // namespace

void InitCoolButton(GtkToggleButton* button, LCoolButtonKind kind, int imageNumber,
                    const char* text, LCoolButtonCommands commands,
                    std::function<void(int command)> send) {
    const bool down = gtk_toggle_button_get_active(button) != FALSE;
    auto state =
        std::make_unique<CoolButton>(CoolButton{kind, commands, std::move(send), down, down});
    SetFace(button, *state, imageNumber, text);
    atk_object_set_role(gtk_widget_get_accessible(GTK_WIDGET(button)), ATK_ROLE_PUSH_BUTTON);
    LeaveLookToUs(button);
    g_object_set_data_full(G_OBJECT(button), kCoolButtonKey, state.release(),
                           [](gpointer cool) { delete static_cast<CoolButton*>(cool); });
    Connect(button, kind);
}

void SetCoolButtonImageSize(GtkToggleButton* button, int pixels) {
    g_object_set_data(G_OBJECT(button), kImageSizeKey, GINT_TO_POINTER(pixels));
}

void SetCoolButtonState(GtkToggleButton* button, bool down) {
    CoolButton* state = CoolButtonOf(button);
    if (state == nullptr)
        return;
    state->down = down;
    atk_object_set_role(gtk_widget_get_accessible(GTK_WIDGET(button)), ATK_ROLE_TOGGLE_BUTTON);
    SetLook(button, down);
    if (gtk_widget_has_focus(GTK_WIDGET(button)) == FALSE)
        TellLook(button);
}
