// What is to become an audiobook, and how.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "books/book_plan.h"
#include "books/subtitles.h"
#include "formats/sound_types.h"
#include "speech/speech_pieces.h"

struct BookOrder {
    BookPlan plan;
    std::string text;  // of the document
    int voice = 0;
    SpeakingRules rules;
    SoundType type = SoundType::kMp3;
    int kilobits = 0;           // a second; 0: what serves speech
    std::string target;         // a file, or with a slash at its end a folder of chapters
    bool overwrites = false;    // else a target that is there is a problem
    bool evensLoudness = true;  // else as the voice has it
    double secondsBetween = 1;  // of silence behind each chapter
    std::optional<SubtitleForm> subtitles;
    bool isReadAlong = false;  // an EPUB with text and sound, which is MP3 (read_along.h)
    std::string engineFolder;  // for the engine's own files, with its slash

    bool HasFileAChapter() const { return isReadAlong || target.back() == '/'; }  // of sound
    bool NeedsTimes() const { return subtitles || isReadAlong; }  // of its sentences
};

// Where chapters of an order with so many of them go: "07 Of the Sea.mp3".
std::string ChapterFileName(const BookOrder& order, std::size_t index);
