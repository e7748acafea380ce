#include "app/text/long_lines.h"

#include <algorithm>

#include "foundation/owned_text.h"

namespace {

// A line that grows at its beginning is broken there only when it must be.
constexpr int kLongestEver = 4 * LongLines::kLongestLine;

bool IsLineEnd(char byte) {
    return byte == '\n' || byte == '\r';
}

}  // namespace

LongLines::~LongLines() {
    if (buffer_)
        g_signal_handler_disconnect(buffer_.Get(), handler_);
}

void LongLines::Attach(GtkTextBuffer* buffer) {
    buffer_ = GObjectRef<GtkTextBuffer>::Share(buffer);
    blank_ = gtk_text_buffer_create_tag(buffer, nullptr, nullptr);
    nothing_ = gtk_text_buffer_create_tag(buffer, nullptr, nullptr);
    handler_ = g_signal_connect(buffer, "insert-text", G_CALLBACK(GCInsertText), this);
}

// before and behind: characters of the line into which the text comes.
LongLines::Broken LongLines::BreakLines(std::string_view text, int before, int behind) {
    Broken out;
    int column = before;
    out.text.reserve(text.size() + text.size() / kLongestLine + 1);
    constexpr std::size_t kNone = std::string::npos;
    std::size_t blankAt = kNone;  // last blank of the line, in out.text
    int blankOffset = 0;
    int blankColumn = 0;
    int offset = 0;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at < end;) {
        if (column >= kLongestLine && blankAt != kNone) {
            out.text[blankAt] = '\n';
            out.breaks.push_back({blankOffset, true});
            column -= blankColumn + 1;
            blankAt = kNone;
        } else if (column >= 2 * kLongestLine) {
            out.text += '\n';
            out.breaks.push_back({offset++, false});
            column = 0;
        }
        const char* next = g_utf8_next_char(at);
        if (*at == ' ') {
            blankAt = out.text.size();
            blankOffset = offset;
            blankColumn = column;
        }
        out.text.append(at, next);
        ++offset;
        ++column;
        if (IsLineEnd(*at)) {
            column = 0;
            blankAt = kNone;
        }
        at = next;
    }
    if (column + behind > kLongestEver && blankAt != kNone) {
        out.text[blankAt] = '\n';
        out.breaks.push_back({blankOffset, true});
    } else if (column + behind > kLongestEver) {
        out.text += '\n';
        out.breaks.push_back({offset, false});
    }
    return out;
}

void LongLines::Insert(GtkTextIter* at, std::string_view text) {
    const int start = gtk_text_iter_get_offset(at);
    const int before = gtk_text_iter_get_line_offset(at);
    const Broken broken = BreakLines(text, before, gtk_text_iter_get_chars_in_line(at) - before);
    gtk_text_buffer_insert(buffer_.Get(), at, broken.text.data(),
                           static_cast<gint>(broken.text.size()));
    for (const Break& each : broken.breaks) {
        GtkTextIter first;
        gtk_text_buffer_get_iter_at_offset(buffer_.Get(), &first, start + each.offset);
        GtkTextIter last = first;
        gtk_text_iter_forward_char(&last);
        gtk_text_buffer_apply_tag(buffer_.Get(), each.isBlank ? blank_ : nothing_, &first, &last);
    }
}

void LongLines::GCInsertText(GtkTextBuffer*, GtkTextIter* at, char* text, int length,
                             gpointer user) {
    static_cast<LongLines*>(user)->EvInsert(at, {text, static_cast<std::size_t>(length)});
}

// Before the buffer's own insertion, in whose place that of the broken text happens.
void LongLines::EvInsert(GtkTextIter* at, std::string_view text) {
    if (inserting_ ||
        gtk_text_iter_get_chars_in_line(at) + static_cast<int>(text.size()) <= kLongestLine)
        return;
    inserting_ = true;
    Insert(at, text);
    inserting_ = false;
    g_signal_stop_emission_by_name(buffer_.Get(), "insert-text");
}

std::string LongLines::Text() const {
    if (!buffer_)
        return "";
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer_.Get(), &start, &end);
    return Text(start, end);
}

std::string LongLines::Text(const GtkTextIter& start, const GtkTextIter& end) const {
    std::string text;
    GtkTextIter at = start;
    while (gtk_text_iter_compare(&at, &end) < 0) {
        GtkTextIter next = at;
        if (!gtk_text_iter_forward_to_tag_toggle(&next, nullptr) ||
            gtk_text_iter_compare(&next, &end) > 0)
            next = end;
        // Breaks touch once the user has deleted what was between them.
        if (gtk_text_iter_has_tag(&at, blank_))
            text.append(
                std::size_t(gtk_text_iter_get_offset(&next) - gtk_text_iter_get_offset(&at)), ' ');
        else if (!gtk_text_iter_has_tag(&at, nothing_))
            text += OwnedText(gtk_text_iter_get_text(&at, &next)).get();
        at = next;
    }
    return text;
}

int LongLines::Offset(const GtkTextIter& at) const {
    int breaks = 0;
    GtkTextIter from;
    gtk_text_buffer_get_start_iter(buffer_.Get(), &from);
    while (gtk_text_iter_compare(&from, &at) < 0) {
        GtkTextIter next = from;
        if (!gtk_text_iter_forward_to_tag_toggle(&next, nothing_) ||
            gtk_text_iter_compare(&next, &at) > 0)
            next = at;
        if (gtk_text_iter_has_tag(&from, nothing_))
            breaks += gtk_text_iter_get_offset(&next) - gtk_text_iter_get_offset(&from);
        from = next;
    }
    return gtk_text_iter_get_offset(&at) - breaks;
}

GtkTextIter LongLines::At(int offset) const {
    GtkTextIter at;
    gtk_text_buffer_get_start_iter(buffer_.Get(), &at);
    while (!gtk_text_iter_is_end(&at)) {
        GtkTextIter next = at;
        gtk_text_iter_forward_to_tag_toggle(&next, nothing_);  // or to the end
        if (!gtk_text_iter_has_tag(&at, nothing_)) {
            const int count = gtk_text_iter_get_offset(&next) - gtk_text_iter_get_offset(&at);
            if (offset <= count) {
                gtk_text_iter_forward_chars(&at, offset);
                break;
            }
            offset -= count;
        }
        at = next;
    }
    return at;
}

std::size_t LongLines::Bytes(GtkTextIter from, const GtkTextIter& to) const {
    std::size_t bytes = 0;
    while (gtk_text_iter_get_line(&from) < gtk_text_iter_get_line(&to)) {
        GtkTextIter end = from;
        if (!gtk_text_iter_ends_line(&end))
            gtk_text_iter_forward_to_line_end(&end);
        const int left =
            gtk_text_iter_get_bytes_in_line(&from) - gtk_text_iter_get_line_index(&from);
        bytes += static_cast<std::size_t>(left - (gtk_text_iter_has_tag(&end, nothing_) ? 1 : 0));
        if (!gtk_text_iter_forward_line(&from))
            return bytes;
    }
    const int rest = gtk_text_iter_get_line_index(&to) - gtk_text_iter_get_line_index(&from);
    return bytes + static_cast<std::size_t>(std::max(rest, 0));
}

void LongLines::Forward(GtkTextIter& at, std::size_t bytes) const {
    while (true) {
        const int index = gtk_text_iter_get_line_index(&at);
        GtkTextIter end = at;
        if (!gtk_text_iter_ends_line(&end))
            gtk_text_iter_forward_to_line_end(&end);
        int left = gtk_text_iter_get_bytes_in_line(&at) - index;
        if (gtk_text_iter_has_tag(&end, nothing_))
            --left;
        if (bytes < static_cast<std::size_t>(left)) {
            gtk_text_iter_set_line_index(&at, index + static_cast<int>(bytes));
            return;
        }
        bytes -= static_cast<std::size_t>(left);
        if (!gtk_text_iter_forward_line(&at))
            return;
    }
}
