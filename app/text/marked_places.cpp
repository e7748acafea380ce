#include "app/text/marked_places.h"

void MarkedPlaces::Attach(GtkTextBuffer* buffer, const LongLines& lines) {
    buffer_ = buffer;
    lines_ = &lines;
}

void MarkedPlaces::Set(const std::vector<std::size_t>& places) {
    for (GtkTextMark* mark : marks_)
        gtk_text_buffer_delete_mark(buffer_, mark);
    marks_.clear();
    Add(places);
}

void MarkedPlaces::Add(const std::vector<std::size_t>& places) {
    int offset = 0;
    for (std::size_t before = 0; const std::size_t place : places) {
        // Anew: beside a mark that has just been made, GTK counts a line's bytes wrong.
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_offset(buffer_, &at, offset);
        lines_->Forward(at, place - before);
        offset = gtk_text_iter_get_offset(&at);
        // What is typed right before such a place does not belong to it.
        marks_.push_back(gtk_text_buffer_create_mark(buffer_, nullptr, &at, FALSE));
        before = place;
    }
}

std::vector<std::size_t> MarkedPlaces::Places() const {
    std::vector<std::size_t> places;
    GtkTextIter from;
    gtk_text_buffer_get_start_iter(buffer_, &from);
    for (GtkTextMark* mark : marks_) {
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_mark(buffer_, &at, mark);
        const std::size_t before = places.empty() ? 0 : places.back();
        places.push_back(before + lines_->Bytes(from, at));
        from = at;
    }
    return places;
}

GtkTextIter MarkedPlaces::At(std::size_t number) const {
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_mark(buffer_, &at, marks_[number]);
    return at;
}
