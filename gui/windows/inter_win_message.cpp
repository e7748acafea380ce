#include "gui/windows/inter_win_message.h"

#include <X11/Xlib.h>
#include <gdk/gdkx.h>

namespace {

gboolean GCClientEvent(GtkWidget*, GdkEventClient* event, gpointer handler) {
    static_cast<LInterWinMessageHandler*>(handler)->EvInterWinMessage(
        static_cast<int>(event->data.l[0]), static_cast<int>(event->data.l[1]),
        static_cast<int>(event->data.l[2]));
    return TRUE;
}

}  // namespace

void LInterWinMessageHandler::HandleInterWinMessage(GtkWidget* window, int) {
    g_signal_connect(window, "client-event", G_CALLBACK(GCClientEvent), this);
}

void SendInterWinMessage(GtkWidget* widget, int first, int second, int third) {
    GdkWindow* window = widget != nullptr ? gtk_widget_get_window(widget) : nullptr;
    if (window == nullptr)
        return;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = GDK_WINDOW_XID(window);
    event.xclient.message_type = None;
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    event.xclient.data.l[1] = second;
    event.xclient.data.l[2] = third;
    gdk_error_trap_push();
    XSendEvent(GDK_WINDOW_XDISPLAY(window), event.xclient.window, False, NoEventMask, &event);
    gdk_flush();
    gdk_error_trap_pop();
}

void PostInterWinMessage(GtkWidget*, int, int, int) {}
