// The text of a document, whatever kind of file it is in, and its structure.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// All positions are bytes of Document::text.
struct DocumentHeading {
    std::size_t begin;
    std::size_t end;
    int level;  // 1 is the highest, 6 the lowest
};

struct DocumentChapter {
    std::size_t begin;
    std::string title;  // may be empty
};

// The text is in this language up to the next such place.
struct DocumentLanguage {
    std::size_t begin;
    std::string tag;  // as the document says it, "de-AT"; empty where it says nothing

    bool operator==(const DocumentLanguage&) const = default;
};

struct Document {
    std::string text;     // UTF-8 without NUL; empty when there is a problem
    std::string problem;  // why it cannot be read, in a sentence for the user; empty when it was
    std::string remark;  // what is missing of a document that was read, in a sentence; mostly empty

    std::string title;
    std::string author;
    std::string cover;                        // the bytes of a picture file
    std::vector<DocumentHeading> headings;    // in order, like all of these
    std::vector<DocumentChapter> chapters;    // of books: their files, by their own contents
    std::vector<std::size_t> pages;           // where each begins, of documents that have pages
    std::vector<DocumentLanguage> languages;  // none: it says nothing of its language
    bool hasSurroundings = false;             // a web page's menus and the like were left out,
    std::size_t surroundingWords = 0;         // so many words of them
    bool isRecognised = false;                // in pictures, which took its time
};

// What is left out.
struct DocumentRules {
    bool wholePage = false;       // of a web page also what surrounds its article
    bool referenceMarks = false;  // the numbers that point to notes and sources
    bool notes = true;            // footnotes and endnotes themselves
    bool code = true;             // listings
    bool captions = true;         // of pictures and tables
    bool pageHeads = false;       // the same line above or below every page, and page numbers
};

// Asked now and then during long work; true ends it.
using StopTest = std::function<bool()>;

// Reads a whole regular file of at most kLargestTextFile bytes, or what is at a web address
// ("https://..."). Kinds are known by what the file holds; its name counts only where that says
// nothing. A document without a word in it is a problem. Any thread.
Document LoadDocument(const char* path, const StopTest& isToStop = {},
                      const DocumentRules& rules = {});

// The same from memory, of a file of this name.
Document ReadDocument(std::string_view bytes, const StopTest& isToStop = {},
                      const DocumentRules& rules = {}, std::string_view name = {});
