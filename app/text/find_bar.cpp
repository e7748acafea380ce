#include "app/text/find_bar.h"

#include "app/text/find_text.h"
#include "gui/accessible.h"

namespace {

constexpr std::size_t kMostSelected = 100;  // bytes of a selection that is likely to be looked for

GtkWidget* NewButton(const char* text, const char* tooltip) {
    GtkWidget* button = gtk_button_new_with_mnemonic(text);
    gtk_widget_set_tooltip_text(button, tooltip);
    return button;
}

}  // namespace

GtkWidget* FindBar::Create(GtkTextView* view, const LongLines& lines, const char* nextTip) {
    view_ = view;
    lines_ = &lines;
    GtkWidget* bar = gtk_hbox_new(FALSE, 4);
    GtkWidget* label = gtk_label_new("Find:");
    entry_ = gtk_entry_new();
    LabelWidget(label, entry_);
    GtkWidget* next = NewButton("Ne_xt", nextTip);
    GtkWidget* close = NewButton("_Close", "Close the find bar (Esc)");
    gtk_box_pack_start(GTK_BOX(bar), label, FALSE, FALSE, 4);
    gtk_box_pack_start(GTK_BOX(bar), entry_, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(bar), next, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(bar), close, FALSE, FALSE, 0);
    gtk_entry_set_width_chars(GTK_ENTRY(entry_), 8);
    g_signal_connect(entry_, "activate", G_CALLBACK(GCFind), this);
    g_signal_connect(next, "clicked", G_CALLBACK(GCFind), this);
    g_signal_connect(close, "clicked", G_CALLBACK(GCClose), this);
    return bar;
}

void FindBar::GCFind(GtkWidget*, gpointer user) {
    static_cast<FindBar*>(user)->FindNext();
}

void FindBar::GCClose(GtkWidget*, gpointer user) {
    static_cast<FindBar*>(user)->Close();
}

std::string FindBar::SelectedWords() const {
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_selection_bounds(gtk_text_view_get_buffer(view_), &start, &end);
    const std::string text = lines_->Text(start, end);
    return text.size() <= kMostSelected && text.find('\n') == std::string::npos ? text : "";
}

void FindBar::Open() {
    isOpen_ = true;
    const std::string selected = SelectedWords();
    if (!selected.empty())
        gtk_entry_set_text(GTK_ENTRY(entry_), selected.c_str());
    // Its place comes before the keyboard.
    reshaped_();
    gtk_widget_grab_focus(entry_);  // selects what stands in it
}

bool FindBar::HasKeyboard() const {
    GtkWidget* bar = gtk_widget_get_parent(entry_);
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(gtk_widget_get_toplevel(bar)));
    return isOpen_ && focus != nullptr && gtk_widget_is_ancestor(focus, bar) != FALSE;
}

void FindBar::Close() {
    isOpen_ = false;
    gtk_widget_grab_focus(GTK_WIDGET(view_));
    reshaped_();
}

void FindBar::FindNext() {
    const std::string wanted = gtk_entry_get_text(GTK_ENTRY(entry_));
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(view_);
    GtkTextIter first;
    GtkTextIter last;
    gtk_text_buffer_get_start_iter(buffer, &first);
    GtkTextIter selected;
    gtk_text_buffer_get_selection_bounds(buffer, &selected, &last);
    const std::size_t from = lines_->Text(first, last).size();
    const std::string text = lines_->Text();
    std::optional<FoundText> found = FindText(text, wanted, from);
    const bool wentOn = !found;
    if (!found)
        found = FindText(text, wanted, 0);
    if (!found) {
        tell_(("\"" + wanted + "\" is not in the text.").c_str());
        return;
    }
    GtkTextIter begin = first;
    lines_->Forward(begin, found->begin);
    GtkTextIter end = first;
    lines_->Forward(end, found->end);
    gtk_text_buffer_select_range(buffer, &end, &begin);
    gtk_text_view_scroll_to_mark(view_, gtk_text_buffer_get_insert(buffer), 0.1, FALSE, 0, 0);
    gtk_widget_grab_focus(GTK_WIDGET(view_));
    tell_(wentOn ? "Searched to the end and went on from the beginning."
                 : ("Found \"" + wanted + "\". F3 finds the next place.").c_str());
}
