// The contents of documents: chapters and headings, each below those it belongs to.
#include <gtest/gtest.h>

#include <string>

#include "documents/document_outline.h"

namespace {

// "0 One*, 1 Part": depth and title of each entry, a chapter with a star.
std::string Shown(const Document& document) {
    std::string shown;
    std::size_t before = 0;
    for (const OutlineEntry& entry : OutlineOf(document)) {
        EXPECT_GE(entry.begin, before);
        before = entry.begin;
        shown += (shown.empty() ? "" : ", ") + std::to_string(entry.depth) + " " + entry.title +
                 (entry.isChapter ? "*" : "");
    }
    return shown;
}

void AddHeading(Document& document, int level, const std::string& title) {
    const std::size_t begin = document.text.size();
    document.text += title;
    document.headings.push_back({begin, document.text.size(), level});
    document.text += "\n\nWords.\n\n";
}

TEST(Outline, HeadingsStandBelowEachOtherWhateverTheirLevels) {
    const Document page = ReadDocument(
        "<h1>Ferries</h1><p>Words.</p><h3>Early</h3><h4>Sail</h4><h2>Later</h2><h2></h2><p>Steam."
        "<h5>Deep</h5><h2>Now</h2>");
    EXPECT_EQ(Shown(page), "0 Ferries, 1 Early, 2 Sail, 1 Later*, 2 Deep, 1 Now*");
    EXPECT_EQ(Shown(ReadDocument("Plain words alone.")), "");

    Document book;
    book.chapters.push_back({0, "Cover"});
    book.text = "A picture.\n\n";
    for (const char* title : {"One", "Two"}) {
        book.chapters.push_back({book.text.size(), title});
        AddHeading(book, 2, title);
        AddHeading(book, 3, "Part");
        AddHeading(book, 4, "Of it");
        book.chapters.push_back({book.text.size(), ""});  // a file that goes on with the chapter
        AddHeading(book, 3, std::string(300, 'x'));
    }
    book.chapters.push_back({book.text.size(), ""});
    AddHeading(book, 1, "Named by\nits heading");
    const std::string cut = std::string(100, 'x') + "...";
    EXPECT_EQ(Shown(book), "0 Cover*, 0 One*, 1 Part, 2 Of it, 0 " + cut +
                               "*, 0 Two*, 1 Part, 2 Of it, 0 " + cut +
                               "*, 0 Named by its heading*");
}

TEST(Outline, OfMoreThanCanBeLookedThroughTheDeepestGo) {
    Document document;
    for (int i = 0; i < 3000; ++i) {
        AddHeading(document, 1, "Chapter");
        AddHeading(document, 2, "Section");
    }
    EXPECT_EQ(OutlineOf(document).size(), 3000U);
    for (int i = 0; i < 3000; ++i)
        AddHeading(document, 1, "Chapter");
    EXPECT_EQ(OutlineOf(document).size(), 5000U);
}

}  // namespace
