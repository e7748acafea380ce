#include "app/text/text_menu.h"

void TextMenu::Attach(GtkTextView* view) {
    g_signal_connect(view, "populate-popup", G_CALLBACK(GCPopulate), this);
}

void TextMenu::GCPopulate(GtkTextView* view, GtkMenu* menu, gpointer self) {
    static_cast<TextMenu*>(self)->EvPopulate(view, menu);
}

// Where the pointer asks, there the cursor goes: the menu is about the word below it. The menu of a
// key is about the word at the cursor.
void TextMenu::EvPopulate(GtkTextView* view, GtkMenu* menu) {
    GtkTextBuffer* const buffer = gtk_text_view_get_buffer(view);
    GdkEvent* const event = gtk_get_current_event();
    if (event != nullptr && event->type == GDK_BUTTON_PRESS &&
        !gtk_text_buffer_get_has_selection(buffer)) {
        GtkTextIter place;
        gint x = 0;
        gint y = 0;
        gtk_text_view_window_to_buffer_coords(view, GTK_TEXT_WINDOW_TEXT,
                                              static_cast<gint>(event->button.x),
                                              static_cast<gint>(event->button.y), &x, &y);
        gtk_text_view_get_iter_at_location(view, &place, x, y);
        gtk_text_buffer_place_cursor(buffer, &place);
    }
    if (event != nullptr)
        gdk_event_free(event);
    if (add_)
        add_(GTK_WIDGET(menu));
}
