// What the command line of lectora-say says of an audiobook.
#pragma once

#include <optional>
#include <string>

#include "books/subtitles.h"

// What an audiobook is to be like (books/book_run.h).
struct BookWish {
    bool isWanted = false;
    bool inChapters = false;   // a file each
    bool isReadAlong = false;  // an EPUB with text and sound (books/read_along.h)
    bool isOnlyPlanned = false;
    bool asBegun = false;            // one that was begun in another manner goes on in that
    int kilobits = 0;                // a second; 0: what serves speech
    std::optional<int> speed = 100;  // percent of the voices' own; none: as each is listened to
    int secondsBetween = 1;
    bool evensLoudness = true;
    std::optional<SubtitleForm> subtitles;
    std::optional<std::string> title;
    std::optional<std::string> author;
    std::optional<std::string> cover;  // a picture's file; empty: none
};

enum BookOption : int {
    kAudiobook = 512,
    kBitRate,
    kSubtitles,
    kSpeed,
    kSilence,
    kOwnLevel,
    kTitle,
    kAuthor,
    kCover,
    kPlan,
    kAsBegun,
    kBookOptionsEnd
};

// As -t has it, and a file's name behind its dot.
inline constexpr char kReadAlongName[] = "epub";

// False when value (null for none) is not one that the option takes.
bool TakeBookOption(int option, const char* value, BookWish& wish);

extern const char kBookHelp[];
