// Speaking one chapter of a book into a file.
#pragma once

#include <string>
#include <vector>

#include "books/book_levels.h"
#include "books/book_plan.h"
#include "books/subtitles.h"
#include "foundation/threads/progress.h"
#include "speech/piece_runs.h"

struct BookOrder;

// What its user is to know of a chapter, gathered from its sections.
struct ChapterRemarks {
    bool isSilent = true;
    bool isAnything = false;           // was left out
    std::vector<LeftOutUnit> leftOut;  // by the engine, bytes of the chapter
    std::string voices;                // which speak instead of others
};

// In some sentences; empty for nothing.
std::string TextOf(const ChapterRemarks& remarks, const BookOrder& order,
                   const BookChapter& chapter);

struct ChapterSpeech {
    bool isStopped = false;
    std::string problem;              // why there is no sound; empty when there is
    std::vector<SubtitleLine> lines;  // where the order wants subtitles, by sentence
    std::vector<VoiceTurn> voices;
    int rate = 0;
    int frames = 0;  // behind the lead
};

struct SpeechFile {
    std::string path;
    int rate = 0;           // of the book; 0: not known yet, the first voice's
    std::vector<int> lead;  // samples to begin with, which count for no times
};

// One channel, with so many seconds of silence behind it; that alone when it holds nothing that can
// be said. It may be a section, whose remarks go to the others of its chapter. The fraction told is
// that of the whole book.
ChapterSpeech SpeakBookChapter(const BookOrder& order, const BookChapter& chapter, double silence,
                               const SpeechFile& file, ChapterRemarks& remarks,
                               LProgress& progress);
