// What its user is to know of a chapter, gathered from its sections.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "books/book_plan.h"
#include "speech/piece_runs.h"

struct BookOrder;

struct ChapterRemarks {
    bool isSilent = true;
    bool isAnything = false;           // was left out
    std::vector<LeftOutUnit> leftOut;  // by the engine, bytes of the chapter
    std::string voices;                // which speak instead of others

    void Add(const ChapterRemarks& section);
};

// As they are kept between runs, of that chapter.
std::string StoreRemarks(const ChapterRemarks& remarks);
ChapterRemarks LoadRemarks(const std::string& stored, const BookChapter& chapter);

// In some sentences; empty for nothing.
std::string TextOf(const ChapterRemarks& remarks, const BookOrder& order,
                   const BookChapter& chapter);

// For what begins so many bytes behind the text's beginning.
SpeakingRules RulesFrom(const BookOrder& order, std::size_t begin);
