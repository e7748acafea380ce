// What the pointer asks for in a text box beyond editing: a sentence to go on with, by a double
// click, and what the menu of the right button offers about the place below the pointer.
#pragma once

#include <gtk/gtk.h>

#include <functional>

// GUI thread.
class TextClicks {
public:
    struct Listener {
        // A double click; false: it means what it means in any text.
        std::function<bool(const GtkTextIter&)> doubleClicked;
        std::function<void(const GtkTextIter&)> readFrom;
        std::function<void(GtkWidget* menu)> addToMenu;  // what else is about the cursor
    };
    // Once; the view ends before this object.
    void Attach(GtkTextView* view, Listener listener);

private:
    static gboolean GCButtonPress(GtkWidget* view, GdkEventButton* event, gpointer self);
    static void GCPopulatePopup(GtkTextView* view, GtkMenu* menu, gpointer self);
    static void GCReadFrom(GtkMenuItem* item, gpointer self);

    bool EvButtonPress(const GdkEventButton& event);
    void EvPopulate(GtkMenu* menu);
    void PlaceCursor() const;
    void AddReadFrom(GtkMenu* menu);
    void EvReadFrom();
    GtkTextIter At(const GdkEventButton& event) const;

    GtkTextView* view_ = nullptr;
    Listener listener_;
    GtkTextMark* place_ = nullptr;  // of the menu; owned by the buffer
    bool isByPointer_ = false;      // the menu that comes
};
