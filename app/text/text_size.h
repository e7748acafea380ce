// The size of the letters in the text box, kept for the next start.
#pragma once

#include <gtk/gtk.h>

// GUI thread. The view is borrowed.
class TextSize {
public:
    void Attach(GtkWidget* view);  // once; with the size that is kept
    // All give back the size in points that is now shown.
    int Larger();
    int Smaller();
    int Normal();  // the theme's own

private:
    int Change(int points);
    void Show(int points);
    int Shown() const;

    GtkWidget* view_ = nullptr;
};
