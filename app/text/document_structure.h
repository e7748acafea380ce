// The structure of the document in the text box while it is edited: its outline, its pages, and
// what it says of its language.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "app/text/marked_places.h"
#include "app/text/structure_text.h"
#include "documents/document_outline.h"
#include "gui/signal_owner.h"

// GUI thread.
class DocumentStructure {
public:
    // Once; both outlive this object.
    void Attach(GtkTextBuffer* buffer, const LongLines& lines);
    // Told whenever there is another structure, also within a change of the text.
    void Tell(std::function<void()> changed) { changed_ = std::move(changed); }

    void Set(const Document& document, bool isPart);  // whose text has just come
    // More pages have come, at that byte of the text.
    void Grow(const Document& more, std::size_t begin, bool isPart);
    void Restore(KeptStructure kept);  // likewise, as it was before
    KeptStructure Now() const;
    void Clear();  // a text that has none has come

    bool IsPart() const { return isPart_; }              // the rest of the document has not come
    bool IsRecognised() const { return isRecognised_; }  // in pictures, which took its time
    const std::string& Title() const { return title_; }  // the document's own; may be empty
    std::vector<DocumentLanguage> Languages() const;     // where they are now
    // Their places are those in the text as it came.
    const std::vector<OutlineEntry>& Outline() const { return outline_; }
    // Of the outline's entries, of its chapters alone, and of the pages, now.
    std::vector<std::size_t> Places() const { return places_.Places(); }
    std::vector<std::size_t> ChapterPlaces() const;
    std::vector<std::size_t> Pages() const { return pages_.Places(); }
    std::size_t PageCount() const { return pages_.Size(); }
    GtkTextIter EntryAt(std::size_t number) const { return places_.At(number); }
    GtkTextIter PageAt(std::size_t number) const { return pages_.At(number); }

private:
    void Change(KeptStructure structure);
    static void GCChanged(GtkTextBuffer* buffer, gpointer self);

    std::function<void()> changed_;
    std::string title_;
    bool isPart_ = false;
    bool isRecognised_ = false;
    std::vector<OutlineEntry> outline_;
    MarkedPlaces places_;
    MarkedPlaces pages_;
    MarkedPlaces languages_;
    std::vector<std::string> languageTags_;
    LSignalOwner changes_;
};
