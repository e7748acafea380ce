#include "app/text/spoken_highlight.h"

void SpokenHighlight::Attach(GtkTextView* view, const LongLines& lines) {
    view_ = view;
    lines_ = &lines;
    buffer_ = gtk_text_view_get_buffer(view);
    // Both colours, so that it can be read in dark themes too.
    tag_ = gtk_text_buffer_create_tag(buffer_, nullptr, "background", "#ffe08a", "foreground",
                                      "#000000", nullptr);
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer_, &start);
    start_ = gtk_text_buffer_create_mark(buffer_, nullptr, &start, TRUE);
    shown_ = gtk_text_buffer_create_mark(buffer_, nullptr, &start, TRUE);
}

void SpokenHighlight::Follow(Narrator& narrator) {
    news_.Begin(narrator.News(), [this](const ReadingNews& news) { Hear(news); });
}

void SpokenHighlight::Hear(const ReadingNews& news) {
    if (!IsReading(news.state))
        Hide();
    else if (news.stretch)
        Show(news.stretch->sourceBegin, news.stretch->sourceEnd);
}

void SpokenHighlight::Begin(const GtkTextIter& start) {
    Unmark();
    gtk_text_buffer_move_mark(buffer_, start_, &start);
    gtk_text_buffer_move_mark(buffer_, shown_, &start);
    shownBegin_ = 0;
    shownEnd_ = 0;
    isFollowing_ = true;
}

void SpokenHighlight::Show(std::size_t begin, std::size_t end) {
    if (!isFollowing_ || (begin == shownBegin_ && end == shownEnd_))
        return;
    Unmark();
    GtkTextIter first;
    // From the stretch before, since a text may be long.
    const bool isAhead = begin >= shownBegin_;
    gtk_text_buffer_get_iter_at_mark(buffer_, &first, isAhead ? shown_ : start_);
    lines_->Forward(first, isAhead ? begin - shownBegin_ : begin);
    GtkTextIter last = first;
    lines_->Forward(last, end - begin);
    gtk_text_buffer_move_mark(buffer_, shown_, &first);
    shownBegin_ = begin;
    shownEnd_ = end;
    gtk_text_buffer_apply_tag(buffer_, tag_, &first, &last);
    gtk_text_view_scroll_to_mark(view_, shown_, 0.1, FALSE, 0, 0);
}

void SpokenHighlight::Hide() {
    if (isFollowing_)
        Unmark();
    shownEnd_ = shownBegin_;
}

void SpokenHighlight::End() {
    Hide();
    isFollowing_ = false;
}

void SpokenHighlight::Unmark() {
    GtkTextIter first;
    GtkTextIter last;
    gtk_text_buffer_get_bounds(buffer_, &first, &last);
    gtk_text_buffer_remove_tag(buffer_, tag_, &first, &last);
}
