#include "app/text/document_structure.h"

#include <algorithm>
#include <utility>

namespace {

// Each has a mark in the text box, which every edit looks at.
constexpr std::size_t kMostPages = 20000;

}  // namespace

void DocumentStructure::Attach(GtkTextBuffer* buffer, const LongLines& lines) {
    places_.Attach(buffer, lines);
    pages_.Attach(buffer, lines);
    changes_.Connect(buffer, "changed", G_CALLBACK(GCChanged), this);
}

// Whatever replaces a text empties the box first.
void DocumentStructure::GCChanged(GtkTextBuffer* buffer, gpointer user) {
    if (gtk_text_buffer_get_char_count(buffer) == 0)
        static_cast<DocumentStructure*>(user)->Clear();
}

void DocumentStructure::Set(const Document& document) {
    Change(OutlineOf(document), document.pages);
}

void DocumentStructure::Restore(KeptStructure kept) {
    if (!kept.outline.empty() || !kept.pages.empty())
        Change(std::move(kept.outline), std::move(kept.pages));
}

KeptStructure DocumentStructure::Now() const {
    KeptStructure now{.outline = outline_, .pages = Pages()};
    for (std::size_t i = 0; const std::size_t place : Places())
        now.outline[i++].begin = place;
    return now;
}

void DocumentStructure::Clear() {
    if (!outline_.empty() || PageCount() > 0)
        Change({}, {});
}

void DocumentStructure::Change(std::vector<OutlineEntry> outline, std::vector<std::size_t> pages) {
    pages.resize(std::min(pages.size(), kMostPages));
    outline_ = std::move(outline);
    std::vector<std::size_t> places;
    places.reserve(outline_.size());
    for (const OutlineEntry& entry : outline_)
        places.push_back(entry.begin);
    places_.Set(places);
    pages_.Set(pages);
    if (changed_)
        changed_();
}

std::vector<std::size_t> DocumentStructure::ChapterPlaces() const {
    const std::vector<std::size_t> places = Places();
    std::vector<std::size_t> chapters;
    for (std::size_t i = 0; i < outline_.size(); ++i)
        if (outline_[i].isChapter)
            chapters.push_back(places[i]);
    return chapters;
}
