// A book to read and hear at once: EPUB 3 whose sentences are marked while they are heard (media
// overlays).
#pragma once

#include <string>
#include <vector>

#include "books/book_plan.h"
#include "books/subtitles.h"
#include "foundation/threads/progress.h"

struct ReadAlongChapter {
    std::string sound;                // an MP3 file
    std::vector<SubtitleLine> lines;  // with their places in the chapter's text
};

// The text's paragraphs and headings, the sound a chapter, the plan's tags and cover. Of one that
// says nothing of its language, the language is the voice's. Empty, or why it cannot be written;
// cut where the progress is to stop.
std::string WriteReadAlong(const std::string& path, const BookPlan& plan, const std::string& text,
                           const std::string& voiceLanguage,
                           const std::vector<ReadAlongChapter>& chapters, LProgress& progress);
