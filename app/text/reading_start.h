// Where in the text box a reading begins: with what is selected, at the cursor, or at the beginning
// of the text.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <functional>
#include <string>

#include "app/text/long_lines.h"
#include "gui/signal_owner.h"

enum class ReadFrom { kBeginning, kCursor, kSelection };

// What is to be read, and where in the box its first byte stands.
struct TextToRead {
    std::string text;
    GtkTextIter start;
    std::size_t begin = 0;   // byte of the text at which the reading begins
    std::size_t offset = 0;  // of the text's first byte in all of the text
};

// The cursor counts once it was placed since the text came: a text that has just been typed, loaded
// or fetched is read from its beginning. GUI thread.
class ReadingStart {
public:
    // Once; buffer and lines outlive this object. changed: Which() may be another now.
    void Attach(GtkTextBuffer* buffer, const LongLines& lines, std::function<void()> changed);
    void TextCame() { isPlaced_ = false; }
    bool IsPlaced() const { return isPlaced_; }

    ReadFrom Which() const;
    TextToRead Take(ReadFrom from) const;
    // All of the text, from there on: the cursor, or where the selection begins.
    TextToRead FromCursor() const;
    TextToRead From(const GtkTextIter& place) const;

private:
    bool HasWordsBefore(GtkTextIter at) const;
    static void GCMarkSet(GtkTextBuffer* buffer, GtkTextIter* at, GtkTextMark* mark, gpointer self);
    static void GCChanged(GtkTextBuffer* buffer, gpointer self);
    void EvMarkSet(const GtkTextMark* mark);
    void EvChanged();

    GtkTextBuffer* buffer_ = nullptr;
    const LongLines* lines_ = nullptr;
    std::function<void()> changed_;
    bool isPlaced_ = false;
    LSignalOwner marks_;
    LSignalOwner changes_;
};
