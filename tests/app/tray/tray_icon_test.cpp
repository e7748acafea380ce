#include "app/window/tray_icon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "foundation/settings/settings.h"

// Last: its macros are words of the others.
#include <X11/Xlib.h>

namespace {

// A tray that has the selection and takes what is sent to it, but shows nothing.
class Tray {
public:
    Tray() {
        XSelectInput(display_, window_, StructureNotifyMask);
        XSetSelectionOwner(display_, Named("_NET_SYSTEM_TRAY_S0"), window_, CurrentTime);
        XSync(display_, False);
    }
    ~Tray() { XCloseDisplay(display_); }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

    Atom Named(const char* name) { return XInternAtom(display_, name, False); }
    XClientMessageEvent Next() {
        XEvent event;
        do
            XNextEvent(display_, &event);
        while (event.type != ClientMessage);
        return event.xclient;
    }

private:
    Display* display_ = XOpenDisplay(nullptr);
    Window window_ =
        XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
};

TEST(TrayIcon, SendsTheTrayItsMessagesInPiecesAndNumbersThem) {
    Tray tray;
    LUserSettingSetString("Settings", "TrayID", "1001");
    TrayIcon icon([](int) {});
    icon.Add(2, "Lectora");
    const Window window = static_cast<Window>(tray.Next().data.l[2]);  // wants to be docked
    EXPECT_EQ("0", LUserSettingGet("Settings", "TrayID", ""));
    const std::string text = "Your hotkeys keep working, all forty of them.";
    icon.NotifyTray(text.c_str());
    const XClientMessageEvent begin = tray.Next();
    EXPECT_EQ(begin.message_type, tray.Named("_NET_SYSTEM_TRAY_OPCODE"));
    EXPECT_EQ(begin.window, window);
    const long expected[] = {0, 1, 15, static_cast<long>(text.size()), 2};
    EXPECT_TRUE(std::equal(expected, expected + 5, begin.data.l));
    std::string told;
    while (told.size() < text.size()) {
        const XClientMessageEvent piece = tray.Next();
        ASSERT_EQ(piece.message_type, tray.Named("_NET_SYSTEM_TRAY_MESSAGE_DATA"));
        EXPECT_EQ(piece.window, window);
        told.append(piece.data.b, std::min<std::size_t>(20, text.size() - told.size()));
    }
    EXPECT_EQ(told, text);
    EXPECT_EQ("1", LUserSettingGet("Settings", "TrayID", ""));
}

}  // namespace
