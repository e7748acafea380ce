// What an EPUB book says about itself: which of its files are chapters, their order and titles.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "documents/zip_index.h"

struct EpubChapter {
    std::string address;  // as the book writes it
    std::string name;     // in the archive; empty when it is missing there
};

struct EpubBook {
    std::vector<EpubChapter> chapters;  // in reading order
    std::string contentsPage;           // its name in the archive; empty when there is none
    std::map<std::string, std::string, std::less<>> titles;  // of chapters, by name in the archive
    std::string cover;                                       // the picture's name in the archive
    std::string title;
    std::string author;
    std::string language;
};

// Contents pages and what is shown beside the text are no chapters.
EpubBook ReadEpubPackage(const ZipIndex& index);

// Titles out of a contents page of today's books, "nav.xhtml".
void ReadEpubContents(std::string_view page, const ZipIndex& index, EpubBook& book);

// The names of the files that are encrypted.
std::vector<std::string> EpubEncryptedFiles(const ZipIndex& index);
