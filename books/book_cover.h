// The picture of a book.
#pragma once

#include <string>
#include <string_view>

// Players load the whole of it, and the frames of MP3 tags hold no more than 256 MB in any case.
constexpr std::size_t kLargestCover = 5'000'000;

// PNG, JPEG or GIF; null for anything else.
const char* PictureType(std::string_view bytes);

// Empty, and problem a sentence: what is in the file can be no cover.
std::string ReadCover(const std::string& path, std::string& problem);
