#include "app/window/tray_icon.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <gdk/gdkx.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "app/settings_keys.h"
#include "gui/icons.h"

namespace {

constexpr long kRequestDock = 0;
constexpr long kBeginMessage = 1;
constexpr long kMessageShown = 15;           // seconds to the trays that show messages
constexpr std::size_t kMessagePiece = 20;    // bytes, all that an event holds
constexpr int kHighestMessageNumber = 1000;  // stored; then they begin anew
constexpr int kIconSize = 24;                // pixels

Atom AtomOf(Display* display, const char* name) {
    return XInternAtom(display, name, False);
}

struct DisplayClose {
    void operator()(Display* display) const { XCloseDisplay(display); }
};

std::string TraySelection(Display* display) {
    return "_NET_SYSTEM_TRAY_S" + std::to_string(DefaultScreen(display));
}

Window TrayOwner(Display* display) {
    XGrabServer(display);
    const Window owner =
        XGetSelectionOwner(display, AtomOf(display, TraySelection(display).c_str()));
    XUngrabServer(display);
    XFlush(display);
    return owner;
}

// Errors are those of a tray that is just going; it is docked to the next one.
void SendTrayEvent(Display* display, Window trayOwner, Window iconWindow, long opcode, long data1,
                   long data2, long data3) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = opcode == kRequestDock ? trayOwner : iconWindow;
    event.xclient.message_type = AtomOf(display, "_NET_SYSTEM_TRAY_OPCODE");
    event.xclient.format = 32;
    event.xclient.data.l[0] = CurrentTime;
    event.xclient.data.l[1] = opcode;
    event.xclient.data.l[2] = data1;
    event.xclient.data.l[3] = data2;
    event.xclient.data.l[4] = data3;
    gdk_error_trap_push();
    XSendEvent(display, trayOwner, False, NoEventMask, &event);
    XSync(display, False);
    gdk_error_trap_pop();
}

void SendMessagePiece(Display* display, Window trayOwner, Window iconWindow,
                      std::string_view piece) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = iconWindow;
    event.xclient.message_type = AtomOf(display, "_NET_SYSTEM_TRAY_MESSAGE_DATA");
    event.xclient.format = 8;
    std::copy(piece.begin(), piece.end(), event.xclient.data.b);
    gdk_error_trap_push();
    XSendEvent(display, trayOwner, False, StructureNotifyMask, &event);
    XSync(display, False);
    gdk_error_trap_pop();
}

}  // namespace

void TrayIcon::Add(int imageNumber, const char* tooltip) {
    const int stored = kTrayMessageSetting.Get();
    const int last = stored > kHighestMessageNumber ? 0 : stored;
    if (last != stored)
        kTrayMessageSetting.Set(last);
    message_ = last + 1;
    imageNumber_ = imageNumber;
    tooltip_ = tooltip;
    CreatePlug();
    WatchForTrays();
    DockToSysTray();
}

void TrayIcon::CreatePlug() {
    plug_ = gtk_plug_new(0);
    gtk_widget_set_size_request(plug_, kIconSize, kIconSize);
    gtk_widget_realize(plug_);
    gtk_window_set_title(GTK_WINDOW(plug_), "TrayIcon");
    ShowPicture();
    gtk_widget_add_events(plug_, GDK_BUTTON_PRESS_MASK);
    g_signal_connect(plug_, "button-press-event", G_CALLBACK(GSButtonDownNotify), this);
    g_signal_connect(plug_, "destroy", G_CALLBACK(GCPlugDestroyed), this);
    gtk_widget_show_all(plug_);
}

void TrayIcon::Show(int imageNumber, const char* tooltip) {
    if (imageNumber == imageNumber_ && tooltip == tooltip_)
        return;
    imageNumber_ = imageNumber;
    tooltip_ = tooltip;
    if (plug_ != nullptr)
        ShowPicture();
}

void TrayIcon::ShowPicture() {
    if (GtkWidget* old = gtk_bin_get_child(GTK_BIN(plug_)))
        gtk_widget_destroy(old);
    GtkWidget* picture = NewIconImageAt(imageNumber_, 16);
    gtk_container_add(GTK_CONTAINER(plug_), picture);
    gtk_widget_show(picture);
    gtk_widget_set_tooltip_text(plug_, tooltip_.c_str());
}

void TrayIcon::Remove() {
    if (root_ != nullptr)
        gdk_window_remove_filter(root_, GCRootEvent, this);
    root_ = nullptr;
    if (plug_ != nullptr)
        gtk_widget_destroy(plug_);
}

bool TrayIcon::IsDocked() const {
    return plug_ != nullptr && gtk_plug_get_embedded(GTK_PLUG(plug_));
}

void TrayIcon::DockToSysTray() {
    Display* display = GDK_WINDOW_XDISPLAY(gtk_widget_get_window(plug_));
    const Window icon = GDK_WINDOW_XID(gtk_widget_get_window(plug_));
    const Window tray = TrayOwner(display);
    if (tray != None)
        SendTrayEvent(display, tray, icon, kRequestDock, static_cast<long>(icon), 0, 0);
}

// On a connection of its own, so that the waits between the pieces fetch no events of the window's.
void TrayIcon::NotifyTray(const char* text) {
    kTrayMessageSetting.Set(message_++);
    GdkWindow* window = plug_ != nullptr ? gtk_widget_get_window(plug_) : nullptr;
    if (window == nullptr)
        return;
    const std::unique_ptr<Display, DisplayClose> display(
        XOpenDisplay(DisplayString(GDK_WINDOW_XDISPLAY(window))));
    const Window tray = display ? TrayOwner(display.get()) : None;
    if (tray == None)
        return;
    const Window icon = GDK_WINDOW_XID(window);
    std::string_view rest = text;
    SendTrayEvent(display.get(), tray, icon, kBeginMessage, kMessageShown,
                  static_cast<long>(rest.size()), message_);
    for (; !rest.empty(); rest.remove_prefix(std::min(kMessagePiece, rest.size())))
        SendMessagePiece(display.get(), tray, icon, rest.substr(0, kMessagePiece));
}

// A tray that starts tells the root window so.
void TrayIcon::WatchForTrays() {
    root_ = gdk_screen_get_root_window(gtk_widget_get_screen(plug_));
    gdk_window_set_events(root_, GdkEventMask(gdk_window_get_events(root_) | GDK_STRUCTURE_MASK));
    gdk_window_add_filter(root_, GCRootEvent, this);
}

GdkFilterReturn TrayIcon::GCRootEvent(GdkXEvent* xevent, GdkEvent*, gpointer user) {
    static_cast<TrayIcon*>(user)->EvRootEvent(xevent);
    return GDK_FILTER_CONTINUE;
}

void TrayIcon::EvRootEvent(GdkXEvent* xevent) {
    const auto& event = *static_cast<XEvent*>(xevent);
    if (event.type != ClientMessage)
        return;
    Display* display = event.xclient.display;
    if (event.xclient.message_type != AtomOf(display, "MANAGER") ||
        static_cast<Atom>(event.xclient.data.l[1]) !=
            AtomOf(display, TraySelection(display).c_str()))
        return;
    // The old one went with its tray, or never had any.
    if (plug_ != nullptr)
        gtk_widget_destroy(plug_);
    CreatePlug();
    DockToSysTray();
}

gboolean TrayIcon::GSButtonDownNotify(GtkWidget*, GdkEventButton* event, gpointer user) {
    static_cast<TrayIcon*>(user)->pressed_(static_cast<int>(event->button));
    return TRUE;
}

void TrayIcon::GCPlugDestroyed(GtkWidget*, gpointer user) {
    static_cast<TrayIcon*>(user)->plug_ = nullptr;
}
