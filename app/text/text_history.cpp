#include "app/text/text_history.h"

#include <algorithm>
#include <utility>

namespace {

int Characters(std::string_view text) {
    return static_cast<int>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size())));
}

bool IsBlank(std::string_view text) {
    return text == " " || text == "\n" || text == "\t";
}

}  // namespace

TextHistory::~TextHistory() {
    if (buffer_)
        g_signal_handlers_disconnect_matched(buffer_.Get(), G_SIGNAL_MATCH_DATA, 0, 0, nullptr,
                                             nullptr, this);
}

void TextHistory::Attach(GtkTextBuffer* buffer, const LongLines& lines) {
    buffer_ = GObjectRef<GtkTextBuffer>::Share(buffer);
    lines_ = &lines;
    g_signal_connect(buffer, "insert-text", G_CALLBACK(GCInsertText), this);
    g_signal_connect(buffer, "delete-range", G_CALLBACK(GCDeleteRange), this);
    g_signal_connect(buffer, "begin-user-action", G_CALLBACK(GCBeginAction), this);
    g_signal_connect(buffer, "end-user-action", G_CALLBACK(GCEndAction), this);
}

void TextHistory::GCInsertText(GtkTextBuffer*, GtkTextIter* at, char* text, int length,
                               gpointer user) {
    static_cast<TextHistory*>(user)->EvInsert(*at, {text, static_cast<std::size_t>(length)});
}

void TextHistory::GCDeleteRange(GtkTextBuffer*, GtkTextIter* start, GtkTextIter* end,
                                gpointer user) {
    static_cast<TextHistory*>(user)->EvDelete(*start, *end);
}

void TextHistory::GCBeginAction(GtkTextBuffer*, gpointer user) {
    static_cast<TextHistory*>(user)->EvBeginAction();
}

void TextHistory::GCEndAction(GtkTextBuffer*, gpointer user) {
    static_cast<TextHistory*>(user)->EvEndAction();
}

void TextHistory::EvInsert(const GtkTextIter& at, std::string_view text) {
    // Broken into lines, the same text comes a second time.
    if (isReverting_ || text.empty() || lines_->IsBreaking())
        return;
    const int characters = Characters(text);
    if (isGrowing_) {
        Grow(characters);
        return;
    }
    Note({lines_->Offset(at), characters, ""}, characters == 1 ? Kind::kTyped : Kind::kOther,
         IsBlank(text));
}

void TextHistory::EvDelete(const GtkTextIter& start, const GtkTextIter& end) {
    if (isReverting_)
        return;
    const std::string deleted = lines_->Text(start, end);
    if (!deleted.empty())
        Note({lines_->Offset(start), 0, deleted},
             Characters(deleted) == 1 ? Kind::kErased : Kind::kOther, IsBlank(deleted));
}

void TextHistory::EvBeginAction() {
    if (actions_++ == 0)
        isInStep_ = false;
}

void TextHistory::EvEndAction() {
    --actions_;
    isInStep_ = false;
}

void TextHistory::Note(Edit edit, Kind kind, bool blank) {
    undone_.clear();
    if (isInStep_ || GoesOn(edit, kind, blank)) {
        Step& step = done_.back();
        step.endsWithBlank = blank;
        if (!Join(step.edits.back(), edit)) {
            step.edits.push_back(std::move(edit));
            step.kind = Kind::kOther;
        }
    } else {
        const int replaced = edit.length > 0 ? 0 : Characters(edit.text);
        done_.push_back({kind, blank, {std::move(edit)}});
        if (facts_ && kind == Kind::kOther) {
            done_.back().before = facts_();
            done_.back().isWhole = lines_->Offset(End()) == replaced;
        }
        Forget();
    }
    isInStep_ = actions_ > 0;
    canGoOn_ = true;
}

void TextHistory::LastStepGrows() {
    if (!done_.empty())
        done_.back().grows = true;
}

// What was edited since then reverts as before: all of it stands before what is added. But what was
// known of the text then knows nothing of this.
void TextHistory::Grow(int characters) {
    for (Step& step : undone_)
        step.before = step.after = std::nullopt;
    for (auto step = done_.rbegin(); step != done_.rend(); ++step) {
        if (step->grows) {
            step->edits.back().length += characters;
            return;
        }
        step->before.reset();
    }
}

GtkTextIter TextHistory::End() const {
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer_.Get(), &end);
    return end;
}

// A word and the blanks behind it are one step.
bool TextHistory::GoesOn(const Edit& edit, Kind kind, bool blank) const {
    if (!canGoOn_ || done_.empty() || kind == Kind::kOther || done_.back().kind != kind)
        return false;
    const Step& step = done_.back();
    if (kind == Kind::kTyped && step.endsWithBlank && !blank)
        return false;
    Edit last = {step.edits.back().offset, step.edits.back().length, ""};
    return Join(last, edit);
}

bool TextHistory::Join(Edit& last, const Edit& next) {
    if (next.text.empty() && next.offset == last.offset + last.length) {
        last.length += next.length;
    } else if (last.length == 0 && next.length == 0 &&
               next.offset + Characters(next.text) == last.offset) {
        last.text.insert(0, next.text);
        last.offset = next.offset;
    } else if (last.length == 0 && next.length == 0 && next.offset == last.offset) {
        last.text += next.text;
    } else {
        return false;
    }
    return true;
}

void TextHistory::Forget() {
    std::size_t bytes = 0;
    std::size_t kept = 0;
    for (auto step = done_.rbegin(); step != done_.rend() && kept < kMostSteps; ++step, ++kept) {
        for (const Edit& edit : step->edits)
            bytes += edit.text.size();
        bytes += step->before ? step->before->Bytes() : 0;
        if (kept > 0 && bytes > kMostBytes)
            break;
    }
    done_.erase(done_.begin(), done_.end() - static_cast<std::ptrdiff_t>(kept));
}

void TextHistory::Revert(Steps& from, Steps& to) {
    if (from.empty())
        return;
    Step step = std::move(from.back());
    from.pop_back();
    std::reverse(step.edits.begin(), step.edits.end());
    const bool isUndone = &from == &done_;
    if (isUndone && step.before)
        step.after = facts_();
    isReverting_ = true;
    gtk_text_buffer_begin_user_action(buffer_.Get());
    for (Edit& edit : step.edits)
        Exchange(edit);
    gtk_text_buffer_end_user_action(buffer_.Get());
    isReverting_ = false;
    canGoOn_ = false;
    to.push_back(std::move(step));
    const Step& reverted = to.back();
    if (const auto& facts = isUndone ? reverted.before : reverted.after)
        restore_(*facts, reverted.isWhole);
}

void TextHistory::Exchange(Edit& edit) {
    GtkTextIter start = lines_->At(edit.offset);
    GtkTextIter end = lines_->At(edit.offset + edit.length);
    std::string text = lines_->Text(start, end);
    gtk_text_buffer_delete(buffer_.Get(), &start, &end);
    if (!edit.text.empty())
        gtk_text_buffer_insert(buffer_.Get(), &start, edit.text.data(),
                               static_cast<gint>(edit.text.size()));
    gtk_text_buffer_place_cursor(buffer_.Get(), &start);
    edit.length = Characters(edit.text);
    edit.text = std::move(text);
}
