// The pieces in which a book is spoken and encoded.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

struct BookOrder;

// What stands on the disk as WAV at once, and is encoded at once, beside others: a chapter, or a
// part of one.
struct BookSection {
    std::size_t chapter = 0;
    std::size_t begin = 0;  // bytes of the text
    std::size_t end = 0;
    bool beginsFile = true;  // of sound: the book's or its chapter's
    bool endsChapter = true;
};

// Bytes of a section of a text of so many.
double LongestSection(double size);

// In order, without gaps.
std::vector<BookSection> SectionsOf(const BookOrder& order);

// Where the parts of a stretch of the text end when none is to be longer than that: behind a
// paragraph, else a line, a sentence, a word. The parts are about equally long.
std::vector<std::size_t> EndsOfParts(std::string_view text, std::size_t begin, std::size_t end,
                                     std::size_t longest);
