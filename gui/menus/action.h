// Something that a user can ask for, wherever a window offers it: menu item, tool button, button.
// Whether it can act now, whether it is switched on and what it is called reach every place alike.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

// The widgets send the command by themselves; the action only says how they look. GUI thread.
class LAction {
public:
    // How a widget shows that the action cannot act now.
    enum class WhenOff { kGrey, kHidden };

    explicit LAction(int command) : command_(command) {}
    ~LAction();
    LAction(const LAction&) = delete;
    LAction& operator=(const LAction&) = delete;

    // The widget looks as the action does from now on, until it is destroyed. Borrowed; once.
    void AddProxy(GtkWidget* widget, WhenOff whenOff = WhenOff::kGrey);

    int Command() const { return command_; }
    bool IsEnabled() const { return isEnabled_; }
    void SetEnabled(bool enabled);
    void SetChecked(bool checked);  // check items only; sends nothing
    // In place of what each place called it; "&" marks the letter in menus.
    void SetLabel(const char* label);

private:
    struct Proxy {
        GtkWidget* widget;
        WhenOff whenOff;
    };
    static void GCDestroyed(GtkWidget* widget, gpointer action);
    void Forget(GtkWidget* widget);
    void Show(const Proxy& proxy) const;
    void ShowAll() const;

    const int command_;
    bool isEnabled_ = true;
    bool isChecked_ = false;
    std::string label_;  // empty: each place's own
    std::vector<Proxy> proxies_;
};
