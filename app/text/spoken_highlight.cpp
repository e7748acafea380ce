#include "app/text/spoken_highlight.h"

#include "app/settings_keys.h"
#include "app/text/highlight_colors.h"

namespace {

constexpr int kLinesAhead = 2;  // who reads along sees so many more

}  // namespace

void SpokenHighlight::Attach(GtkTextView* view, const LongLines& lines) {
    view_ = view;
    lines_ = &lines;
    buffer_ = gtk_text_view_get_buffer(view);
    // The later one goes before the other.
    for (GtkTextTag** tag : {&tag_, &wordTag_})
        *tag = gtk_text_buffer_create_tag(buffer_, nullptr, nullptr);
    g_object_set(wordTag_, "underline", PANGO_UNDERLINE_SINGLE, nullptr);
    GtkTextIter start;
    gtk_text_buffer_get_start_iter(buffer_, &start);
    for (GtkTextMark** mark : {&start_, &shown_, &ahead_, &word_, &wordEnd_})
        *mark = gtk_text_buffer_create_mark(buffer_, nullptr, &start, TRUE);
    edits_.Connect(buffer_, "insert-text", G_CALLBACK(GCInsertText), this);
    edits_.Connect(buffer_, "delete-range", G_CALLBACK(GCDeleteRange), this);
}

void SpokenHighlight::Follow(Narrator& narrator) {
    words_.emplace(narrator, [this](const WordInTime& word) { ShowWord(word); });
    news_.Begin(narrator.News(), [this](const ReadingNews& news) { Hear(news); });
}

void SpokenHighlight::Hear(const ReadingNews& news) {
    if (!IsReading(news.state))
        Hide();
    else if (news.stretch)
        Show(news.stretch->sourceBegin, news.stretch->sourceEnd);
    if (isFollowing_ && isShown_ && marksWords_)
        words_->Hear(news);
    else
        words_->Stop();
    ShowSelected();
}

void SpokenHighlight::GCInsertText(GtkTextBuffer*, GtkTextIter* at, char*, int length,
                                   gpointer user) {
    static_cast<SpokenHighlight*>(user)->EvEdit(*at, 0, static_cast<std::size_t>(length));
}

void SpokenHighlight::GCDeleteRange(GtkTextBuffer*, GtkTextIter* start, GtkTextIter* end,
                                    gpointer user) {
    auto* self = static_cast<SpokenHighlight*>(user);
    if (!self->isFollowing_)
        return;
    // What is before the text that is read moves its start.
    const GtkTextIter begin = self->Start();
    const GtkTextIter& from = gtk_text_iter_compare(start, &begin) < 0 ? begin : *start;
    if (gtk_text_iter_compare(&from, end) < 0)
        self->EvEdit(from, self->lines_->Bytes(from, *end), 0);
}

// Before it happens.
void SpokenHighlight::EvEdit(const GtkTextIter& at, std::size_t removed, std::size_t added) {
    const GtkTextIter begin = Start();
    // Broken lines come in the place of what was noted already.
    if (!isFollowing_ || isGrowing_ || lines_->IsBreaking() ||
        gtk_text_iter_compare(&at, &begin) < 0)
        return;
    places_.Note(lines_->Bytes(begin, at), removed, added);
    if (shownEnd_ > shownBegin_ && !places_.Now(shownBegin_, shownEnd_))
        Unmark();
}

GtkTextIter SpokenHighlight::Start() const {
    GtkTextIter start;
    gtk_text_buffer_get_iter_at_mark(buffer_, &start, start_);
    return start;
}

void SpokenHighlight::Begin(const GtkTextIter& start, bool isShown) {
    Unmark();
    gtk_text_buffer_move_mark(buffer_, start_, &start);
    gtk_text_buffer_move_mark(buffer_, shown_, &start);
    places_.Clear();
    shownBegin_ = 0;
    shownEnd_ = 0;
    isFollowing_ = true;
    isShown_ = isShown;
}

std::optional<std::size_t> SpokenHighlight::PlaceOf(const GtkTextIter& at) const {
    const GtkTextIter start = Start();
    if (!isFollowing_ || gtk_text_iter_compare(&at, &start) < 0)
        return std::nullopt;
    return places_.Then(lines_->Bytes(start, at));
}

std::optional<GtkTextIter> SpokenHighlight::PlaceNow(std::size_t begin, std::size_t end) const {
    const auto now = isFollowing_ ? places_.Now(begin, end) : std::nullopt;
    if (!now)
        return std::nullopt;
    GtkTextIter at = Start();
    lines_->Forward(at, *now);
    return at;
}

void SpokenHighlight::Show(std::size_t begin, std::size_t end) {
    if (!isFollowing_ || !isShown_ || (begin == shownBegin_ && end == shownEnd_))
        return;
    Unmark();
    const auto now = places_.Now(begin, end);
    if (now) {
        // From the stretch before, since a text may be long.
        const bool isAhead = begin >= shownBegin_ && !places_.HasEdits();
        GtkTextIter first;
        gtk_text_buffer_get_iter_at_mark(buffer_, &first, isAhead ? shown_ : start_);
        lines_->Forward(first, isAhead ? begin - shownBegin_ : *now);
        GtkTextIter last = first;
        lines_->Forward(last, end - begin);
        gtk_text_buffer_move_mark(buffer_, shown_, &first);
        TakeColors();
        gtk_text_buffer_apply_tag(buffer_, tag_, &first, &last);
        BringIntoView(first, last);
    }
    shownBegin_ = begin;
    shownEnd_ = end;
}

// In the stretch that is shown, or in the next one, which the card tells a little later.
void SpokenHighlight::ShowWord(const WordInTime& word) {
    if (!isFollowing_ || !isShown_)
        return;
    Show(word.stretchBegin, word.stretchEnd);
    if (word.begin == wordBegin_ && word.end == wordStop_)
        return;
    UnmarkWord();
    if (!marksWords_ || !places_.Now(shownBegin_, shownEnd_))
        return;
    wordBegin_ = word.begin;
    wordStop_ = word.end;
    const auto now = places_.Now(word.begin, word.end);
    if (!now || word.begin < shownBegin_ || word.begin >= word.end)
        return;
    // The mark of the stretch stays before what is typed right there.
    const bool isFromStart = places_.HasEdits();
    GtkTextIter first;
    gtk_text_buffer_get_iter_at_mark(buffer_, &first, isFromStart ? start_ : shown_);
    lines_->Forward(first, isFromStart ? *now : word.begin - shownBegin_);
    GtkTextIter last = first;
    lines_->Forward(last, word.end - word.begin);
    gtk_text_buffer_move_mark(buffer_, word_, &first);
    gtk_text_buffer_move_mark(buffer_, wordEnd_, &last);
    gtk_text_buffer_apply_tag(buffer_, wordTag_, &first, &last);
}

// With the next lines, where all of that has room; a stretch that is taller from its beginning on.
void SpokenHighlight::BringIntoView(const GtkTextIter& first, const GtkTextIter& last) {
    GtkTextIter ahead = last;
    for (int line = 0; line < kLinesAhead; ++line)
        gtk_text_view_forward_display_line(view_, &ahead);
    gtk_text_buffer_move_mark(buffer_, ahead_, &ahead);
    GdkRectangle seen;
    GdkRectangle top;
    GdkRectangle bottom;
    gtk_text_view_get_visible_rect(view_, &seen);
    gtk_text_view_get_iter_location(view_, &first, &top);
    gtk_text_view_get_iter_location(view_, &ahead, &bottom);
    const int end = bottom.y + bottom.height;
    if (top.y < seen.y)
        gtk_text_view_scroll_to_mark(view_, shown_, 0.1, FALSE, 0, 0);
    else if (end - top.y > seen.height)
        gtk_text_view_scroll_to_mark(view_, shown_, 0, TRUE, 0, 0);
    else if (end > seen.y + seen.height)
        gtk_text_view_scroll_to_mark(view_, ahead_, 0, FALSE, 0, 0);
}

// With each sentence, so that another choice or theme is seen at the next one.
void SpokenHighlight::TakeColors() {
    const HighlightColors colors = HighlightColorsOf(kHighlightSetting.Get(), GTK_WIDGET(view_));
    g_object_set(tag_, "background-gdk", &colors.ground, "foreground-gdk", &colors.letters,
                 nullptr);
    g_object_set(wordTag_, "background-gdk", &colors.wordGround, "foreground-gdk",
                 &colors.wordLetters, nullptr);
    marksWords_ = kMarkWordsSetting.Get();
}

// The colours of a selection are drawn above those of the stretch.
void SpokenHighlight::ShowSelected() {
    const bool isSelected = gtk_text_buffer_get_has_selection(buffer_) != FALSE;
    if (isSelected == isUnderlined_)
        return;
    isUnderlined_ = isSelected;
    g_object_set(tag_, "underline", isSelected ? PANGO_UNDERLINE_SINGLE : PANGO_UNDERLINE_NONE,
                 nullptr);
    g_object_set(wordTag_, "underline",
                 isSelected ? PANGO_UNDERLINE_DOUBLE : PANGO_UNDERLINE_SINGLE, nullptr);
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
    UnmarkWord();
}

void SpokenHighlight::UnmarkWord() {
    GtkTextIter first;
    GtkTextIter last;
    gtk_text_buffer_get_iter_at_mark(buffer_, &first, word_);
    gtk_text_buffer_get_iter_at_mark(buffer_, &last, wordEnd_);
    gtk_text_buffer_remove_tag(buffer_, wordTag_, &first, &last);
    wordBegin_ = wordStop_ = 0;
}
