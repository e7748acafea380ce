// What an audiobook of a document is made of.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "documents/document.h"

// Bytes of the document's text.
struct BookChapter {
    std::string title;  // never empty
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t letters = 0;  // each of which takes a voice about as long
};

// Of a chapter, in bytes, which speak for somewhat more than an hour.
constexpr std::size_t kLongestChapter = 64'000;

struct BookPlan {
    std::string title;
    std::string author;
    std::string language;  // as the document says it; may be empty
    std::string cover;     // the bytes of a picture file; empty when there is none that can be kept
    std::vector<BookChapter> chapters;      // in order, without gaps
    std::vector<DocumentHeading> headings;  // of the text
    std::string remark;                     // what is not kept, in a sentence; mostly empty
};

// The chapters are the book's own, or begin at its highest headings of which there are at least
// two; what stands before the first one is a chapter, too. Longer ones are cut at paragraphs:
// "Of the Sea (2 of 3)", or "Part 2 of 3" of a book without chapters. Titles are one line of at
// most 200 bytes. The name serves where the document has no title.
BookPlan PlanBook(const Document& document, const std::string& name);

// Under another title; a single chapter is the book.
void TitleBook(BookPlan& plan, const std::string& title);

// A title, author or language as it can stand in a tag: one line, cut within no character.
std::string AsTag(std::string_view text);

// As a name of a file, without anything that a file system or a shell may take ill.
std::string FileNameOfTitle(const std::string& title);
