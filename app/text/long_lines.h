// Keeps the lines of a text box short enough to be laid out at once.
//
// GTK lays out a line whole at every key press, which takes half a second a megabyte. What is
// inserted is therefore broken into lines of some thousand characters at blanks, or anywhere when
// there are none. The breaks are for showing only: Text gives what was inserted.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "gui/gobject_ref.h"

class LongLines {
public:
    static constexpr int kLongestLine = 4096;  // characters, where there are blanks; else double

    LongLines() = default;
    ~LongLines();
    LongLines(const LongLines&) = delete;
    LongLines& operator=(const LongLines&) = delete;

    // From now on breaks what is inserted into the buffer. Once.
    void Attach(GtkTextBuffer* buffer);

    std::string Text() const;  // empty before Attach
    std::string Text(const GtkTextIter& start, const GtkTextIter& end) const;
    // Characters of the text before that place, and the place behind so many.
    int Offset(const GtkTextIter& at) const;
    GtkTextIter At(int offset) const;
    // Whether the insertion under way is that of the broken text, in the place of the original.
    bool IsBreaking() const { return inserting_; }
    // Bytes of the text between the places.
    std::size_t Bytes(GtkTextIter from, const GtkTextIter& to) const;
    // Moves on by so many bytes of the text, or to its end.
    void Forward(GtkTextIter& at, std::size_t bytes) const;

private:
    struct Break {
        int offset;    // characters from the start of what is inserted, breaks included
        bool isBlank;  // stands in the place of a blank; otherwise of nothing
    };
    struct Broken {
        std::string text;
        std::vector<Break> breaks;
    };
    static Broken BreakLines(std::string_view text, int before, int behind);
    static void GCInsertText(GtkTextBuffer* buffer, GtkTextIter* at, char* text, int length,
                             gpointer self);
    void EvInsert(GtkTextIter* at, std::string_view text);
    void Insert(GtkTextIter* at, std::string_view text);

    GObjectRef<GtkTextBuffer> buffer_;
    gulong handler_ = 0;
    GtkTextTag* blank_ = nullptr;  // both owned by the buffer
    GtkTextTag* nothing_ = nullptr;
    bool inserting_ = false;
};
