#include "app/text/reading_start.h"

#include <utility>

namespace {

gboolean IsVisible(gunichar character, gpointer) {
    return g_unichar_isspace(character) != FALSE ? FALSE : TRUE;
}

GtkTextIter Cursor(GtkTextBuffer* buffer) {
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_mark(buffer, &at, gtk_text_buffer_get_insert(buffer));
    return at;
}

}  // namespace

void ReadingStart::Attach(GtkTextBuffer* buffer, const LongLines& lines,
                          std::function<void()> changed) {
    buffer_ = buffer;
    lines_ = &lines;
    changed_ = std::move(changed);
    marks_.Connect(buffer, "mark-set", G_CALLBACK(GCMarkSet), this);
    changes_.Connect(buffer, "changed", G_CALLBACK(GCChanged), this);
}

void ReadingStart::GCMarkSet(GtkTextBuffer*, GtkTextIter*, GtkTextMark* mark, gpointer user) {
    static_cast<ReadingStart*>(user)->EvMarkSet(mark);
}

void ReadingStart::GCChanged(GtkTextBuffer*, gpointer user) {
    static_cast<ReadingStart*>(user)->EvChanged();
}

void ReadingStart::EvMarkSet(const GtkTextMark* mark) {
    if (mark != gtk_text_buffer_get_insert(buffer_) &&
        mark != gtk_text_buffer_get_selection_bound(buffer_))
        return;
    isPlaced_ = true;
    changed_();
}

// Whatever replaces a text empties the box first.
void ReadingStart::EvChanged() {
    if (gtk_text_buffer_get_char_count(buffer_) == 0)
        TextCame();
    changed_();
}

// Before the word that stands there.
bool ReadingStart::HasWordsBefore(GtkTextIter at) const {
    GtkTextIter before = at;
    while (gtk_text_iter_backward_char(&before) &&
           IsVisible(gtk_text_iter_get_char(&before), nullptr) != FALSE)
        at = before;
    return gtk_text_iter_backward_find_char(&at, IsVisible, nullptr, nullptr) != FALSE;
}

ReadFrom ReadingStart::Which() const {
    if (gtk_text_buffer_get_has_selection(buffer_) != FALSE)
        return ReadFrom::kSelection;
    if (!isPlaced_)
        return ReadFrom::kBeginning;
    GtkTextIter at = Cursor(buffer_);
    if (!HasWordsBefore(at))
        return ReadFrom::kBeginning;
    const bool hasWordsBehind =
        IsVisible(gtk_text_iter_get_char(&at), nullptr) != FALSE
            ? gtk_text_iter_is_end(&at) == FALSE
            : gtk_text_iter_forward_find_char(&at, IsVisible, nullptr, nullptr) != FALSE;
    return hasWordsBehind ? ReadFrom::kCursor : ReadFrom::kBeginning;
}

TextToRead ReadingStart::Take(ReadFrom from) const {
    GtkTextIter begin;
    GtkTextIter end;
    if (from == ReadFrom::kSelection &&
        gtk_text_buffer_get_selection_bounds(buffer_, &begin, &end)) {
        GtkTextIter start;
        gtk_text_buffer_get_start_iter(buffer_, &start);
        return {lines_->Text(begin, end), begin, 0, lines_->Bytes(start, begin)};
    }
    if (from != ReadFrom::kBeginning)
        return FromCursor();
    gtk_text_buffer_get_bounds(buffer_, &begin, &end);
    return {lines_->Text(), begin};
}

TextToRead ReadingStart::FromCursor() const {
    GtkTextIter begin;
    GtkTextIter end;
    gtk_text_buffer_get_selection_bounds(buffer_, &begin, &end);  // both the cursor without one
    return From(begin);
}

TextToRead ReadingStart::From(const GtkTextIter& place) const {
    GtkTextIter begin;
    gtk_text_buffer_get_start_iter(buffer_, &begin);
    return {lines_->Text(), begin, lines_->Text(begin, place).size()};
}
