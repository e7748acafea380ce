// What the user has chosen for audiobooks, from one time to the next.
#pragma once

#include <optional>
#include <string>

#include "books/book_order.h"

// How good an audiobook sounds, and how large it is.
enum class BookQuality { kSmall, kUsual, kHigh };

struct BookChoices {
    SoundType type = SoundType::kMp3;
    bool isReadAlong = false;  // an EPUB with text and sound; type is MP3 then
    BookQuality quality = BookQuality::kUsual;
    bool inChapters = false;   // a file each
    bool asListenedTo = true;  // else at each voice's own speed
    bool evensLoudness = true;
    bool byLanguage = true;  // each language by a voice of its own
    int secondsBetween = 1;  // of silence behind each chapter
    std::optional<SubtitleForm> subtitles;
    std::string folder;  // without a slash at its end
};

// A type that is kept and no audiobook can have any more is MP3.
BookChoices LoadBookChoices();
void StoreBookChoices(const BookChoices& choices);

inline constexpr char kReadAlongEnding[] = "epub";

// The types in the order in which they are offered.
inline constexpr SoundType kBookTypes[] = {SoundType::kMp3, SoundType::kM4b, SoundType::kOpus,
                                           SoundType::kFlac, SoundType::kWav};
// What stands behind the dot of its files.
inline const char* EndingOf(const BookChoices& choices) {
    return choices.isReadAlong ? kReadAlongEnding : NameOf(choices.type);
}
// In thousands of bits a second; 0: nothing to choose, or what serves speech.
int KilobitsOf(SoundType type, BookQuality quality);
inline bool HasQuality(SoundType type) {
    return KilobitsOf(type, BookQuality::kHigh) > 0;
}

inline constexpr BookQuality kBookQualities[] = {BookQuality::kSmall, BookQuality::kUsual,
                                                 BookQuality::kHigh};
inline constexpr int kMostSecondsBetween = 5;

// As lists show them.
const char* TitleOf(SoundType type);
const char* TitleOf(SubtitleForm form);
std::string QualityText(SoundType type, BookQuality quality);

// An order in that manner; document, target and engine's folder are left open.
BookOrder OrderOf(const BookChoices& choices, int voice);
