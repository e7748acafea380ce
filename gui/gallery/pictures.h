// Pictures of the gallery's windows, and what is wrong with how they look.
#pragma once

#include <gtk/gtk.h>

#include <string>

class LWindow;

// GUI thread.
class Pictures {
public:
    // Into this folder, which is made; without one, people look instead.
    explicit Pictures(std::string folder);
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;
    ~Pictures();

    bool AreTaken() const { return !folder_.empty(); }
    // Of the window that is open, with its frame and what has popped up over it.
    void Take(const char* name);
    // Takes the window's picture, or lets a person look until it is closed.
    void Present(const LWindow& window, const char* name);
    // Of the modal dialog that opens next; then it is cancelled.
    void TakeNext(const char* name);
    // No warning of GTK's, nothing cut off, nothing larger than the screen.
    bool IsAllWell() const { return isAllWell_; }

private:
    static void GCComplain(const char* domain, GLogLevelFlags level, const char* message,
                           gpointer pictures);
    static gboolean GCTakeNext(gpointer pictures);
    void CheckRoom(GtkWidget* widget, const char* picture);

    const std::string folder_;
    const char* next_ = nullptr;
    bool isAllWell_ = true;
};

// The one that is open; the gallery never shows a second.
GtkWidget* OpenWindow();
