// Speaking one chapter of a book into a file.
#pragma once

#include <string>
#include <vector>

#include "books/book_levels.h"
#include "books/book_plan.h"
#include "books/chapter_remarks.h"
#include "books/subtitles.h"
#include "foundation/threads/progress.h"

struct BookOrder;

struct ChapterSpeech {
    bool isStopped = false;
    std::string problem;              // why there is no sound; empty when there is
    std::vector<SubtitleLine> lines;  // where the order wants subtitles, by sentence
    std::vector<VoiceTurn> voices;
    ChapterRemarks remarks;
    int rate = 0;
    int frames = 0;  // behind the lead
};

struct SpeechFile {
    std::string path;
    int rate = 0;           // of the book; 0: not known yet, the first voice's
    std::vector<int> lead;  // samples to begin with, which count for no times
};

// One channel, with so many seconds of silence behind it; that alone when it holds nothing that can
// be said. It may be a section. The fraction told is that of the whole book.
ChapterSpeech SpeakBookChapter(const BookOrder& order, const BookChapter& chapter, double silence,
                               const SpeechFile& file, LProgress& progress);
