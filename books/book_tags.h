// What players show of a sound file: title, author, cover and chapters.
#pragma once

#include <string>
#include <vector>

#include "books/book_joint.h"
#include "formats/sound_types.h"

struct ChapterMark {
    long long begin = 0;  // milliseconds
    long long end = 0;
    std::string title;
};

struct BookTags {
    std::string title;
    std::string author;
    std::string album;     // the book's title
    std::string language;  // a tag, "de-AT"
    int track = 0;         // 0: none
    int tracks = 0;
    std::string cover;  // the bytes of a picture file
    std::vector<ChapterMark> chapters;
    SoundLength sound;  // of M4B, whose players leave out what the encoder adds
};

// Into the finished file, whatever its name, in place of those that it has: ID3v2.4 with CHAP and
// CTOC frames, Vorbis comments with CHAPTERnnn, MP4 atoms (whose chapters ffmpeg writes:
// ChapterMetadata). WAV takes none. Why that cannot be, or empty.
std::string WriteBookTags(const std::string& path, SoundType type, const BookTags& tags);

// ffmpeg's text form of chapters.
std::string ChapterMetadata(const std::vector<ChapterMark>& chapters);
