// Shows in a text box which stretch of it is being heard, and which word where the engine tells.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <optional>
#include <string_view>

#include "app/reading/heard_words.h"
#include "app/reading/narrator.h"
#include "app/text/edited_places.h"
#include "app/text/long_lines.h"
#include "gui/signal_owner.h"

// Cursor and selection stay as they are; under a selection the stretch is underlined. The text may
// be edited meanwhile: stretches stay where their words are, and only one that was edited is not
// shown. Offsets are bytes of what LongLines::Text gave when the reading began. GUI thread.
class SpokenHighlight {
public:
    SpokenHighlight() = default;
    SpokenHighlight(const SpokenHighlight&) = delete;
    SpokenHighlight& operator=(const SpokenHighlight&) = delete;

    // Once, before the lines are attached to the view's buffer. Both are borrowed and outlive what
    // is shown.
    void Attach(GtkTextView* view, const LongLines& lines);

    // From now on it shows what is heard. A receiver of the narrator's news.
    void Follow(Narrator& narrator);

    // Where the text that will be read begins; unless it is shown, its places are only kept.
    void Begin(const GtkTextIter& start, bool isShown);
    // What is inserted until EndGrowth, at its end, belongs to that text.
    void BeginGrowth() { isGrowing_ = true; }
    void EndGrowth() { isGrowing_ = false; }
    // Which byte of that text stands there; nothing after End.
    std::optional<std::size_t> PlaceOf(const GtkTextIter& at) const;
    // And where it is now; nothing when something up to `end` was edited.
    std::optional<GtkTextIter> PlaceNow(std::size_t begin, std::size_t end) const;
    // Marks the stretch and brings it into view; nothing before Begin and after End.
    void Show(std::size_t begin, std::size_t end);
    void Hide();  // until the next Show; at the end of the reading, which may be heard again
    void End();   // nothing is marked until Begin; another text has come

private:
    void Hear(const ReadingNews& news);
    void ShowWord(const WordInTime& word);
    void Unmark();
    void UnmarkWord();
    void TakeColors();
    void ShowSelected();
    void BringIntoView(const GtkTextIter& first, const GtkTextIter& last);
    GtkTextIter Start() const;
    void EvEdit(const GtkTextIter& at, std::size_t removed, std::size_t added);

    static void GCInsertText(GtkTextBuffer* buffer, GtkTextIter* at, char* text, int length,
                             gpointer self);
    static void GCDeleteRange(GtkTextBuffer* buffer, GtkTextIter* start, GtkTextIter* end,
                              gpointer self);

    GtkTextView* view_ = nullptr;
    GtkTextBuffer* buffer_ = nullptr;
    const LongLines* lines_ = nullptr;
    GtkTextTag* tag_ = nullptr;  // this, the next and the marks are owned by the buffer
    GtkTextTag* wordTag_ = nullptr;
    GtkTextMark* start_ = nullptr;  // of the text
    GtkTextMark* shown_ = nullptr;  // begin of the stretch shown
    GtkTextMark* ahead_ = nullptr;  // some lines behind it
    GtkTextMark* word_ = nullptr;   // where the word shown begins and ends
    GtkTextMark* wordEnd_ = nullptr;
    std::size_t shownBegin_ = 0;
    std::size_t shownEnd_ = 0;
    std::size_t wordBegin_ = 0;
    std::size_t wordStop_ = 0;
    bool isFollowing_ = false;
    bool isGrowing_ = false;
    bool isShown_ = false;
    bool isUnderlined_ = false;
    bool marksWords_ = false;
    EditedPlaces places_;
    LSignalOwner edits_;
    std::optional<HeardWords> words_;
    Narrator::Subscription news_;
};
