#include "app/text/text_clicks.h"

#include <utility>

void TextClicks::Attach(GtkTextView* view, Listener listener) {
    view_ = view;
    listener_ = std::move(listener);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(view);
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer, &start);
    place_ = gtk_text_buffer_create_mark(buffer, nullptr, &start, TRUE);
    g_signal_connect(view, "button-press-event", G_CALLBACK(GCButtonPress), this);
    g_signal_connect(view, "populate-popup", G_CALLBACK(GCPopulatePopup), this);
}

gboolean TextClicks::GCButtonPress(GtkWidget*, GdkEventButton* event, gpointer user) {
    return static_cast<TextClicks*>(user)->EvButtonPress(*event) ? TRUE : FALSE;
}

void TextClicks::GCPopulatePopup(GtkTextView*, GtkMenu* menu, gpointer user) {
    static_cast<TextClicks*>(user)->EvPopulate(menu);
}

void TextClicks::GCReadFrom(GtkMenuItem*, gpointer user) {
    static_cast<TextClicks*>(user)->EvReadFrom();
}

GtkTextIter TextClicks::At(const GdkEventButton& event) const {
    gint x = 0;
    gint y = 0;
    gtk_text_view_window_to_buffer_coords(view_, GTK_TEXT_WINDOW_TEXT, static_cast<gint>(event.x),
                                          static_cast<gint>(event.y), &x, &y);
    GtkTextIter at;
    gtk_text_view_get_iter_at_location(view_, &at, x, y);
    return at;
}

bool TextClicks::EvButtonPress(const GdkEventButton& event) {
    if (event.window != gtk_text_view_get_window(view_, GTK_TEXT_WINDOW_TEXT))
        return false;
    isByPointer_ = event.type == GDK_BUTTON_PRESS && event.button == 3;
    if (isByPointer_) {
        const GtkTextIter at = At(event);
        gtk_text_buffer_move_mark(gtk_text_view_get_buffer(view_), place_, &at);
    }
    return event.type == GDK_2BUTTON_PRESS && event.button == 1 &&
           listener_.doubleClicked(At(event));
}

// Where the pointer asks, there the cursor goes, unless something is selected. A menu that a key
// brought is about the cursor.
void TextClicks::PlaceCursor() const {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(view_);
    GtkTextIter at;
    if (!isByPointer_) {
        gtk_text_buffer_get_iter_at_mark(buffer, &at, gtk_text_buffer_get_insert(buffer));
        gtk_text_buffer_move_mark(buffer, place_, &at);
    } else if (gtk_text_buffer_get_has_selection(buffer) == FALSE) {
        gtk_text_buffer_get_iter_at_mark(buffer, &at, place_);
        gtk_text_buffer_place_cursor(buffer, &at);
    }
}

void TextClicks::EvPopulate(GtkMenu* menu) {
    PlaceCursor();
    isByPointer_ = false;
    AddReadFrom(menu);
    listener_.addToMenu(GTK_WIDGET(menu));
}

void TextClicks::AddReadFrom(GtkMenu* menu) {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(view_);
    GtkWidget* item = gtk_menu_item_new_with_mnemonic("Read from _Here");
    GtkWidget* line = gtk_separator_menu_item_new();
    gtk_widget_set_sensitive(item, gtk_text_buffer_get_char_count(buffer) > 0 ? TRUE : FALSE);
    g_signal_connect(item, "activate", G_CALLBACK(GCReadFrom), this);
    gtk_menu_shell_prepend(GTK_MENU_SHELL(menu), line);
    gtk_menu_shell_prepend(GTK_MENU_SHELL(menu), item);
    gtk_widget_show(line);
    gtk_widget_show(item);
}

void TextClicks::EvReadFrom() {
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_mark(gtk_text_view_get_buffer(view_), &at, place_);
    listener_.readFrom(at);
}
