// A message in the desktop's notifications, for what concerns no control of a window.
#pragma once

#include <functional>
#include <memory>

class LDesktopNotification {
public:
    LDesktopNotification() = default;
    LDesktopNotification(const LDesktopNotification&) = delete;
    LDesktopNotification& operator=(const LDesktopNotification&) = delete;
    ~LDesktopNotification() { Hide(); }

    // Replaces the one that is shown. Texts are plain and copied. Returns at once: the desktop's
    // service is asked on a thread of its own, for it may be slow. Where there is none, `otherwise`
    // runs on the GUI thread, holding the GDK lock, unless this is gone or hidden by then. GUI
    // thread.
    void Show(const char* title, const char* text, std::function<void()> otherwise);
    void Hide();

private:
    struct Shown;
    std::shared_ptr<Shown> shown_;  // the thread keeps it as long as it needs it
};
