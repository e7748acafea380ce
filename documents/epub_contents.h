// Pages of contents among a book's chapters, which say again what its headings say.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// A page of nothing but links to other places in the book, below a title.
struct EpubContents {
    std::size_t begin = 0;  // in the page, in bytes
    bool isMarked = false;  // it calls itself the contents
    std::vector<std::string> titles;

    bool AreThere() const { return !titles.empty(); }
};

// Whether a whole page is one.
EpubContents ContentsIn(std::string_view page);

// On the last sheet of a page that is a whole book of old Kindles: converters put them there,
// behind the book.
EpubContents ContentsOnLastSheet(std::string_view page);

// Whether nearly all of these titles stand in the texts, as paragraphs of their own. The terms of
// an index do not.
bool AreTitlesIn(const std::vector<std::string_view>& texts, const EpubContents& contents);
