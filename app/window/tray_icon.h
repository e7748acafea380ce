// The program's icon in the desktop's notification area: an XEMBED client that is docked by the
// system-tray protocol, spoken over Xlib.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

// GUI thread. Docks at once, and again whenever a tray starts: one that comes late or after a crash
// gets the icon too.
class TrayIcon {
public:
    // pressed: a mouse button, 1 to 3, on the icon.
    explicit TrayIcon(std::function<void(int button)> pressed) : pressed_(std::move(pressed)) {}
    ~TrayIcon() { Remove(); }
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    void Add(int imageNumber, const char* tooltip);  // needs a display; once
    // Another picture and tooltip from now on.
    void Show(int imageNumber, const char* tooltip);
    void Remove();
    bool IsDocked() const;  // whether a tray shows it now
    // A short message at the icon, in a tray that shows such; UTF-8. Nothing tells whether it does.
    void NotifyTray(const char* text);

private:
    void CreatePlug();
    void ShowPicture();
    void DockToSysTray();
    void WatchForTrays();
    void EvRootEvent(GdkXEvent* xevent);
    static gboolean GSButtonDownNotify(GtkWidget* widget, GdkEventButton* event, gpointer icon);
    static void GCPlugDestroyed(GtkWidget* widget, gpointer icon);
    static GdkFilterReturn GCRootEvent(GdkXEvent* xevent, GdkEvent* event, gpointer icon);

    std::function<void(int)> pressed_;
    std::string tooltip_;
    int imageNumber_ = 0;
    int message_ = 1;            // number of the next message
    GtkWidget* plug_ = nullptr;  // own top-level; gone when its tray ends
    GdkWindow* root_ = nullptr;  // the display's; watched while not null
};
