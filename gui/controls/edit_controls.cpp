#include "gui/controls/edit_controls.h"

#include "gui/controls/prompt_text.h"
#include "gui/display_text.h"

namespace {

constexpr int kMaxEditCharacters = 65536;

void GCEditChange(GtkTextBuffer* buffer, gpointer host) {
    const bool tooLong = gtk_text_buffer_get_char_count(buffer) > kMaxEditCharacters &&
                         StoredCommand(buffer, "max") != 0;
    const char* key = tooLong ? "max" : "changed";
    if (StoredCommand(buffer, key) != 0)
        DeliverStored(host, buffer, key);
}

// Owned by the caller's scope; a text view may hold megabytes, so it is copied once only.
struct BufferText {
    explicit BufferText(GtkTextBuffer* buffer) {
        GtkTextIter start;
        GtkTextIter end;
        gtk_text_buffer_get_bounds(buffer, &start, &end);
        text = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
    }
    BufferText(const BufferText&) = delete;
    BufferText& operator=(const BufferText&) = delete;
    ~BufferText() { g_free(text); }
    char* text;
};

void SetBufferText(GtkTextBuffer* buffer, std::string_view text) {
    if (buffer == nullptr)
        return;
    const std::string shown = DisplayText(text);
    gtk_text_buffer_set_text(buffer, shown.data(), static_cast<gint>(shown.size()));
}

GtkClipboard* Clipboard(GtkWidget* widget) {
    return gtk_widget_get_clipboard(widget, GDK_SELECTION_CLIPBOARD);
}

gboolean IsEditable(GtkWidget* view) {
    return gtk_text_view_get_editable(GTK_TEXT_VIEW(view));
}

}  // namespace

GtkTextBuffer* LEditControls::EditBufferOf(int id) const {
    auto* view = ControlAs<GtkTextView>(id, GTK_TYPE_TEXT_VIEW);
    return view != nullptr ? gtk_text_view_get_buffer(view) : nullptr;
}

void LEditControls::SetEditText(int id, const char* text) {
    SetBufferText(EditBufferOf(id), text);
}

void LEditControls::SetEditText(int id, const LStringLongTemplate<char>& text) {
    SetBufferText(EditBufferOf(id), text.View());
}

void LEditControls::GetEditText(int id, LStringLongTemplate<char>& out) const {
    if (GtkTextBuffer* buffer = EditBufferOf(id))
        out.Assign(BufferText(buffer).text);
    else
        out.Clear();
}

std::string LEditControls::GetEditText(int id) const {
    GtkTextBuffer* buffer = EditBufferOf(id);
    return buffer != nullptr ? BufferText(buffer).text : "";
}

int LEditControls::GetEditTextLength(int id) const {
    GtkTextBuffer* buffer = EditBufferOf(id);
    return buffer != nullptr ? gtk_text_buffer_get_char_count(buffer) : 0;
}

void LEditControls::SetEditTextSelection(int id, int start, int end) {
    GtkTextBuffer* buffer = EditBufferOf(id);
    if (buffer == nullptr)
        return;
    GtkTextIter first;
    GtkTextIter last;
    gtk_text_buffer_get_iter_at_offset(buffer, &first, start);
    gtk_text_buffer_get_iter_at_offset(buffer, &last, end);
    gtk_text_buffer_select_range(buffer, &last, &first);
}

void LEditControls::SetEditTextSelectionAll(int id) {
    SetEditTextSelection(id, 0, -1);
}

void LEditControls::EditTextInsert(int id, const char* text) {
    if (GtkTextBuffer* buffer = EditBufferOf(id)) {
        gtk_text_buffer_begin_user_action(buffer);
        gtk_text_buffer_delete_selection(buffer, TRUE, TRUE);
        gtk_text_buffer_insert_at_cursor(buffer, DisplayText(text).c_str(), -1);
        gtk_text_buffer_end_user_action(buffer);
    }
}

void LEditControls::EditTextCut(int id) {
    if (GtkTextBuffer* buffer = EditBufferOf(id))
        gtk_text_buffer_cut_clipboard(buffer, Clipboard(GetControlByID(id)),
                                      IsEditable(GetControlByID(id)));
}

void LEditControls::EditTextCopy(int id) {
    if (GtkTextBuffer* buffer = EditBufferOf(id))
        gtk_text_buffer_copy_clipboard(buffer, Clipboard(GetControlByID(id)));
}

void LEditControls::EditTextPaste(int id) {
    if (GtkTextBuffer* buffer = EditBufferOf(id))
        gtk_text_buffer_paste_clipboard(buffer, Clipboard(GetControlByID(id)), nullptr,
                                        IsEditable(GetControlByID(id)));
}

void LEditControls::EditPromptSet(int id, const char* text) {
    if (EditBufferOf(id) != nullptr)
        SetPromptText(GetControlByID(id), text);
}

void LEditControls::HandleEditSignal(int id, const char* key, int command) {
    if (GtkTextBuffer* buffer = EditBufferOf(id)) {
        StoreCommand(buffer, key, command, id);
        Connect(buffer, "changed", G_CALLBACK(GCEditChange));
    }
}

void LEditControls::HandleEditTextChange(int id, int command) {
    HandleEditSignal(id, "changed", command);
}

void LEditControls::HandleEditTextMax(int id, int command) {
    HandleEditSignal(id, "max", command);
}
