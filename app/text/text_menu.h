// The menu of the text box, which the toolkit makes, with more in it.
#pragma once

#include <gtk/gtk.h>

#include <functional>

// The view ends before this object. GUI thread.
class TextMenu {
public:
    explicit TextMenu(std::function<void(GtkWidget* menu)> add) : add_(std::move(add)) {}
    void Attach(GtkTextView* view);

private:
    static void GCPopulate(GtkTextView* view, GtkMenu* menu, gpointer self);
    void EvPopulate(GtkTextView* view, GtkMenu* menu);

    const std::function<void(GtkWidget* menu)> add_;
};
