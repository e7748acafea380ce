// Speaking one chapter of a book into a file.
#pragma once

#include <string>
#include <vector>

#include "books/book_plan.h"
#include "books/subtitles.h"
#include "foundation/threads/progress.h"

struct BookOrder;

struct ChapterSpeech {
    bool isStopped = false;
    std::string problem;              // why there is no sound; empty when there is
    std::string remark;               // what was left out, in a sentence
    std::vector<SubtitleLine> lines;  // where the order wants subtitles, by sentence
};

// One channel of the voice's rate at `path`, with so many seconds of silence behind it; that alone
// when it holds nothing that can be said. The fraction told is that of the whole book.
ChapterSpeech SpeakBookChapter(const BookOrder& order, const BookChapter& chapter, double silence,
                               const std::string& path, LProgress& progress);
