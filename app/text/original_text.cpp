#include "app/text/original_text.h"

namespace {

constexpr char kSelfKey[] = "lectora-original-text";

GtkClipboard* Primary(GtkTextView* view) {
    return gtk_widget_get_clipboard(GTK_WIDGET(view), GDK_SELECTION_PRIMARY);
}

}  // namespace

void OriginalText::Attach(GtkTextView* view, const LongLines& lines) {
    view_ = view;
    buffer_ = gtk_text_view_get_buffer(view);
    lines_ = &lines;
    g_object_set_data(G_OBJECT(buffer_), kSelfKey, this);
    g_signal_connect(view, "realize", G_CALLBACK(GCRealize), this);
    g_signal_connect(view, "unrealize", G_CALLBACK(GCUnrealize), this);
    g_signal_connect(view, "copy-clipboard", G_CALLBACK(GCCopy), this);
    g_signal_connect(view, "cut-clipboard", G_CALLBACK(GCCut), this);
    g_signal_connect(view, "drag-data-get", G_CALLBACK(GCDragDataGet), this);
}

std::string OriginalText::Selected() const {
    GtkTextIter start;
    GtkTextIter end;
    if (!gtk_text_buffer_get_selection_bounds(buffer_, &start, &end))
        return "";
    return lines_->Text(start, end);
}

bool OriginalText::CopySelected() {
    const std::string text = Selected();
    if (!text.empty())
        gtk_clipboard_set_text(gtk_widget_get_clipboard(GTK_WIDGET(view_), GDK_SELECTION_CLIPBOARD),
                               text.data(), static_cast<gint>(text.size()));
    return !text.empty();
}

void OriginalText::GCRealize(GtkWidget*, gpointer user) {
    static_cast<OriginalText*>(user)->EvRealize();
}

void OriginalText::GCUnrealize(GtkWidget*, gpointer user) {
    static_cast<OriginalText*>(user)->EvUnrealize();
}

void OriginalText::GCCopy(GtkTextView*, gpointer user) {
    static_cast<OriginalText*>(user)->EvCopy();
}

void OriginalText::GCCut(GtkTextView*, gpointer user) {
    static_cast<OriginalText*>(user)->EvCut();
}

void OriginalText::GCDragDataGet(GtkWidget*, GdkDragContext*, GtkSelectionData* data, guint, guint,
                                 gpointer user) {
    static_cast<OriginalText*>(user)->EvDrag(data);
}

void OriginalText::GCMarkSet(GtkTextBuffer*, GtkTextIter*, GtkTextMark* mark, gpointer user) {
    static_cast<OriginalText*>(user)->EvMarkSet(mark);
}

void OriginalText::GCHasSelection(GtkTextBuffer*, GParamSpec*, gpointer user) {
    static_cast<OriginalText*>(user)->UpdatePrimary();
}

void OriginalText::GCGetPrimary(GtkClipboard*, GtkSelectionData* data, guint, gpointer buffer) {
    GiveSelected(data, G_OBJECT(buffer));
}

void OriginalText::GCClearPrimary(GtkClipboard*, gpointer buffer) {
    ShowNoneSelected(GTK_TEXT_BUFFER(buffer));
}

// The view has just told its buffer to offer what is selected; this offers it instead.
void OriginalText::EvRealize() {
    gtk_text_buffer_remove_selection_clipboard(buffer_, Primary(view_));
    g_signal_connect_after(buffer_, "mark-set", G_CALLBACK(GCMarkSet), this);
    g_signal_connect(buffer_, "notify::has-selection", G_CALLBACK(GCHasSelection), this);
}

// The view is about to take it back.
void OriginalText::EvUnrealize() {
    g_signal_handlers_disconnect_by_data(buffer_, this);
    GtkClipboard* primary = Primary(view_);
    if (gtk_clipboard_get_owner(primary) == G_OBJECT(buffer_))
        gtk_clipboard_clear(primary);
    gtk_text_buffer_add_selection_clipboard(buffer_, primary);
}

void OriginalText::EvCopy() {
    CopySelected();
    g_signal_stop_emission_by_name(view_, "copy-clipboard");
}

void OriginalText::EvCut() {
    if (CopySelected())
        gtk_text_buffer_delete_selection(buffer_, TRUE, gtk_text_view_get_editable(view_));
    g_signal_stop_emission_by_name(view_, "cut-clipboard");
}

// Only a text box of this program takes anything but text; that moves the breaks as breaks.
void OriginalText::EvDrag(GtkSelectionData* data) {
    const std::string text = Selected();
    if (gtk_selection_data_set_text(data, text.data(), static_cast<gint>(text.size())))
        g_signal_stop_emission_by_name(view_, "drag-data-get");
}

void OriginalText::EvMarkSet(GtkTextMark* mark) {
    if (mark == gtk_text_buffer_get_insert(buffer_) ||
        mark == gtk_text_buffer_get_selection_bound(buffer_))
        UpdatePrimary();
}

void OriginalText::UpdatePrimary() {
    GtkClipboard* primary = Primary(view_);
    if (gtk_text_buffer_get_has_selection(buffer_)) {
        GtkTargetList* list = gtk_target_list_new(nullptr, 0);
        gtk_target_list_add_text_targets(list, 0);
        gint count = 0;
        GtkTargetEntry* targets = gtk_target_table_new_from_list(list, &count);
        // Again with each change, for the time that other programs compare.
        gtk_clipboard_set_with_owner(primary, targets, static_cast<guint>(count), GCGetPrimary,
                                     GCClearPrimary, G_OBJECT(buffer_));
        gtk_target_table_free(targets, count);
        gtk_target_list_unref(list);
    } else if (gtk_clipboard_get_owner(primary) == G_OBJECT(buffer_)) {
        gtk_clipboard_clear(primary);
    }
}

void OriginalText::GiveSelected(GtkSelectionData* data, GObject* buffer) {
    const std::string text =
        static_cast<OriginalText*>(g_object_get_data(buffer, kSelfKey))->Selected();
    gtk_selection_data_set_text(data, text.data(), static_cast<gint>(text.size()));
}

// Another program has selected something; what is shown as selected is what would be pasted.
void OriginalText::ShowNoneSelected(GtkTextBuffer* buffer) {
    GtkTextIter caret;
    gtk_text_buffer_get_iter_at_mark(buffer, &caret, gtk_text_buffer_get_insert(buffer));
    gtk_text_buffer_move_mark(buffer, gtk_text_buffer_get_selection_bound(buffer), &caret);
}
