// Ending a window from one of its own callbacks.
//
// GTK goes on with a control after its signal: a drop-down list folds up, a scroll bar moves on, an
// edit closes the user's action. A window that a callback ends is therefore hidden at once, and
// destroyed when GTK is out of all the callbacks that belong to it. GUI thread.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <utility>
#include <vector>

#include "gui/gobject_ref.h"

// How many callbacks of one owner are running, and what is to be destroyed after the last of them.
class LCallbackCount {
public:
    void Enter() { ++running_; }
    void Leave();
    bool IsRunning() const { return running_ > 0; }
    void EndLater(GtkWidget* widget) { ended_.push_back(GObjectRef<GtkWidget>::Share(widget)); }

private:
    int running_ = 0;
    std::vector<GObjectRef<GtkWidget>> ended_;
};

// A callback that runs as long as this lives.
class LRunningCallback {
public:
    explicit LRunningCallback(std::shared_ptr<LCallbackCount> count) : count_(std::move(count)) {
        count_->Enter();
    }
    LRunningCallback(const LRunningCallback&) = delete;
    LRunningCallback& operator=(const LRunningCallback&) = delete;
    ~LRunningCallback() { count_->Leave(); }

private:
    std::shared_ptr<LCallbackCount> count_;
};

// These callbacks belong to the window, or to the menu.
void AddCallbacks(GtkWidget* window, const std::shared_ptr<LCallbackCount>& callbacks);

// Destroys a window, or a menu, with what goes with it; a window whose own or whose dialogs'
// callbacks are running is hidden now and destroyed after them.
void EndWidget(GtkWidget* widget);

// True once it waits for its end: nobody may show it any more.
bool IsEnded(GtkWidget* widget);
