#include "app/text/document_structure.h"

#include <algorithm>
#include <utility>

#include "foundation/first_words.h"
#include "gui/display_text.h"

namespace {

// Each has a mark in the text box, which every edit looks at.
constexpr std::size_t kMostPages = 20000;

}  // namespace

void DocumentStructure::Attach(GtkTextBuffer* buffer, const LongLines& lines) {
    places_.Attach(buffer, lines);
    pages_.Attach(buffer, lines);
    languages_.Attach(buffer, lines);
    changes_.Connect(buffer, "changed", G_CALLBACK(GCChanged), this);
}

// Whatever replaces a text empties the box first.
void DocumentStructure::GCChanged(GtkTextBuffer* buffer, gpointer user) {
    if (gtk_text_buffer_get_char_count(buffer) == 0)
        static_cast<DocumentStructure*>(user)->Clear();
}

void DocumentStructure::Set(const Document& document, bool isPart) {
    Change({.title = BeginningOf(DisplayText(document.title), 20, 100),
            .outline = OutlineOf(document),
            .pages = document.pages,
            .languages = document.languages,
            .isPart = isPart,
            .isRecognised = document.isRecognised});
}

void DocumentStructure::Grow(const Document& more, std::size_t begin, bool isPart) {
    isPart_ = isPart;
    std::vector<std::size_t> pages;
    for (const std::size_t page : more.pages)
        if (PageCount() + pages.size() < kMostPages)
            pages.push_back(begin + page);
    pages_.Add(pages);
    if (changed_)
        changed_();
}

void DocumentStructure::Restore(KeptStructure kept) {
    if (kept != Now())
        Change(std::move(kept));
}

void DocumentStructure::Clear() {
    Restore({});
}

KeptStructure DocumentStructure::Now() const {
    KeptStructure now{.title = title_, .outline = outline_, .pages = Pages()};
    for (std::size_t i = 0; const std::size_t place : Places())
        now.outline[i++].begin = place;
    now.languages = Languages();
    now.isPart = isPart_;
    now.isRecognised = isRecognised_;
    return now;
}

std::vector<DocumentLanguage> DocumentStructure::Languages() const {
    std::vector<DocumentLanguage> languages;
    for (const std::size_t place : languages_.Places())
        languages.push_back({place, languageTags_[languages.size()]});
    return languages;
}

void DocumentStructure::Change(KeptStructure structure) {
    structure.pages.resize(std::min(structure.pages.size(), kMostPages));
    title_ = std::move(structure.title);
    isPart_ = structure.isPart;
    isRecognised_ = structure.isRecognised;
    outline_ = std::move(structure.outline);
    std::vector<std::size_t> places;
    places.reserve(outline_.size());
    for (const OutlineEntry& entry : outline_)
        places.push_back(entry.begin);
    places_.Set(places);
    pages_.Set(structure.pages);
    places.clear();
    languageTags_.clear();
    for (DocumentLanguage& language : structure.languages) {
        places.push_back(language.begin);
        languageTags_.push_back(std::move(language.tag));
    }
    languages_.Set(places);
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
