// The window of a dialog and the run that waits for its answer: what dialogs, property sheets,
// progress dialogs and the boxes of the program have in common.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <initializer_list>

#include "gui/gobject_ref.h"

struct LDialogButton {
    const char* stockId;
    int response;
};

// A dialog window with the program's icon; not yet shown. The title is plain and copied.
GtkWidget* NewDialogWindow(GtkWidget* parent, const char* title, GtkDialogFlags flags,
                           std::initializer_list<LDialogButton> buttons);

// Lets `content`, a direct child of the window's content area, scroll where the window would be
// larger than the screen: its buttons must stay within reach. Once, before the window is shown.
void FitToScreen(GtkWidget* window, GtkWidget* content);

// Keeps a window from being used for a scope, after which the focus is where it was; the window may
// be destroyed meanwhile, or be null.
class LDisabledParent {
public:
    explicit LDisabledParent(GtkWidget* parent);
    LDisabledParent(const LDisabledParent&) = delete;
    LDisabledParent& operator=(const LDisabledParent&) = delete;
    ~LDisabledParent();

private:
    GObjectRef<GtkWidget> parent_;
    GObjectRef<GtkWidget> focus_;
    bool was_ = false;  // enabled before, which an outer dialog may have ended
};

// What a dialog does with its answers; true ends the run.
struct LDialogAnswers {
    std::function<bool()> ok;
    std::function<bool()> cancel;
    std::function<void()> help;
};

enum class LDialogEnd {
    kOk,
    kCancel,
    kGone,  // the window was destroyed under the run
};

// Waits for answers until one ends the run; every answer but OK and Help is `cancel`, the end of
// the window by somebody else too. The window is left to the caller, who may have been deleted by
// an answer.
LDialogEnd RunDialog(GtkWidget* dialog, const LDialogAnswers& answers);
