// Where places of a document stand in the text box while it is edited.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <vector>

#include "app/text/long_lines.h"

// Places are bytes of what LongLines::Text gives. GUI thread.
class MarkedPlaces {
public:
    // Once; both outlive this object.
    void Attach(GtkTextBuffer* buffer, const LongLines& lines);
    void Set(const std::vector<std::size_t>& places);  // in order; of the text that has just come
    void Add(const std::vector<std::size_t>& places);  // behind those that are there
    std::vector<std::size_t> Places() const;           // now
    std::size_t Size() const { return marks_.size(); }
    GtkTextIter At(std::size_t number) const;  // one of them

private:
    GtkTextBuffer* buffer_ = nullptr;
    const LongLines* lines_ = nullptr;
    std::vector<GtkTextMark*> marks_;  // owned by the buffer
};
