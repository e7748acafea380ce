// What was done to a text box, to be undone and done again: typing word by word, and what replaced
// the whole text as one step.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/text/long_lines.h"
#include "app/text/text_facts.h"

// GUI thread.
class TextHistory {
public:
    // Older steps are forgotten beyond this; the newest one never is, so that no text that was
    // replaced is lost.
    static constexpr std::size_t kMostBytes = 64 * 1024 * 1024;
    static constexpr std::size_t kMostSteps = 10000;

    TextHistory() = default;
    ~TextHistory();
    TextHistory(const TextHistory&) = delete;
    TextHistory& operator=(const TextHistory&) = delete;

    // Once, before the lines are attached to the same buffer; they outlive this object.
    void Attach(GtkTextBuffer* buffer, const LongLines& lines);

    // What is known of the text comes back with it: `now` is asked before a step of more than a
    // character, and what it said is handed back after that step was reverted; isWhole: the step
    // replaced all of the text.
    void KeepFacts(std::function<TextFacts()> now,
                   std::function<void(const TextFacts& facts, bool isWhole)> restore) {
        facts_ = std::move(now);
        restore_ = std::move(restore);
    }

    // What the newest step brought is a part of a text that grows: what is inserted from
    // BeginGrowth to EndGrowth, at the end of the text, belongs to that step.
    void LastStepGrows();
    void BeginGrowth() { isGrowing_ = true; }
    void EndGrowth() { isGrowing_ = false; }

    // What stands in the buffer now has no history.
    void BeginAnew() {
        done_.clear();
        undone_.clear();
    }
    bool CanUndo() const { return !done_.empty(); }
    bool CanRedo() const { return !undone_.empty(); }
    void Undo() { Revert(done_, undone_); }  // puts the cursor behind what has changed
    void Redo() { Revert(undone_, done_); }

private:
    // `length` characters at `offset` stand where `text` stood; in the text as LongLines gives it.
    struct Edit {
        int offset;
        int length;
        std::string text;
    };
    enum class Kind { kTyped, kErased, kOther };
    struct Step {
        Kind kind;
        bool endsWithBlank;
        std::vector<Edit> edits;
        bool grows = false;
        bool isWhole = false;
        std::optional<TextFacts> before = {};
        std::optional<TextFacts> after = {};  // once it was undone
    };
    using Steps = std::deque<Step>;

    static void GCInsertText(GtkTextBuffer* buffer, GtkTextIter* at, char* text, int length,
                             gpointer self);
    static void GCDeleteRange(GtkTextBuffer* buffer, GtkTextIter* start, GtkTextIter* end,
                              gpointer self);
    static void GCBeginAction(GtkTextBuffer* buffer, gpointer self);
    static void GCEndAction(GtkTextBuffer* buffer, gpointer self);

    void EvInsert(const GtkTextIter& at, std::string_view text);
    void EvDelete(const GtkTextIter& start, const GtkTextIter& end);
    void EvBeginAction();
    void EvEndAction();
    void Note(Edit edit, Kind kind, bool blank);
    bool GoesOn(const Edit& edit, Kind kind, bool blank) const;
    static bool Join(Edit& last, const Edit& next);
    void Grow(int characters);
    void Forget();
    GtkTextIter End() const;
    void Revert(Steps& from, Steps& to);
    void Exchange(Edit& edit);

    GObjectRef<GtkTextBuffer> buffer_;
    const LongLines* lines_ = nullptr;
    std::function<TextFacts()> facts_;
    std::function<void(const TextFacts& facts, bool isWhole)> restore_;
    Steps done_;             // newest last
    Steps undone_;           // undone last at the end
    int actions_ = 0;        // begun and not ended; what happens within is one step
    bool isInStep_ = false;  // the newest step belongs to the present action
    bool isGrowing_ = false;
    bool isReverting_ = false;  // what changes is no new step
    bool canGoOn_ = false;      // typing may go on in the newest step
};
