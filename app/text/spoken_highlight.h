// Shows in a text box which stretch of it is being heard.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>

#include "app/reading/narrator.h"
#include "app/text/long_lines.h"

// Cursor and selection stay as they are. Offsets are bytes of what LongLines::Text gives. GUI
// thread.
class SpokenHighlight {
public:
    SpokenHighlight() = default;
    SpokenHighlight(const SpokenHighlight&) = delete;
    SpokenHighlight& operator=(const SpokenHighlight&) = delete;

    // Once. Both are borrowed and outlive what is shown.
    void Attach(GtkTextView* view, const LongLines& lines);

    // From now on it shows what is heard. A receiver of the narrator's news.
    void Follow(Narrator& narrator);

    void Begin(const GtkTextIter& start);  // where the text that will be read begins
    // Marks the stretch and brings it into view; nothing before Begin and after End.
    void Show(std::size_t begin, std::size_t end);
    void Hide();  // until the next Show; at the end of the reading, which may be heard again
    void End();   // nothing is marked until Begin; at the end of the text as it was

private:
    void Hear(const ReadingNews& news);
    void Unmark();

    GtkTextView* view_ = nullptr;
    GtkTextBuffer* buffer_ = nullptr;
    const LongLines* lines_ = nullptr;
    GtkTextTag* tag_ = nullptr;     // this and the marks are owned by the buffer
    GtkTextMark* start_ = nullptr;  // of the text
    GtkTextMark* shown_ = nullptr;  // begin of the stretch shown
    std::size_t shownBegin_ = 0;
    std::size_t shownEnd_ = 0;
    bool isFollowing_ = false;
    Narrator::Subscription news_;
};
