// What the joining of encoded parts has in common.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "books/book_joint.h"
#include "books/codec_frames.h"

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

constexpr const char* kDamagedPart = "a finished chapter is damaged";

// The next time it is made anew.
void NoteDamage(const BookPart& part, BookJoint& joint);

// Whether so many frames of a codec hold that sound, and what players leave out behind it.
bool IsLongEnough(std::int64_t frames, const CodecFrame& codec, const SoundLength& length);

// Into the open file; what goes wrong is in the joint.
void JoinMp3(const std::vector<BookPart>& parts, const SoundLength& length, std::FILE* out,
             LProgress& progress, BookJoint& joint);
void JoinAdts(const std::vector<BookPart>& parts, const SoundLength& length, std::FILE* out,
              LProgress& progress, BookJoint& joint);
void JoinOpus(const std::vector<BookPart>& parts, std::FILE* out, LProgress& progress,
              BookJoint& joint);
