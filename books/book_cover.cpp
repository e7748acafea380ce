#include "books/book_cover.h"

#include "foundation/files/file_io.h"

const char* PictureType(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG"))
        return "image/png";
    if (bytes.starts_with("GIF8"))
        return "image/gif";
    return bytes.starts_with("\xFF\xD8\xFF") ? "image/jpeg" : nullptr;
}

std::string ReadCover(const std::string& path, std::string& problem) {
    std::string cover;
    const UniqueFd file = OpenFileForReading(path.c_str());
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestCover, cover))
        problem = "The picture cannot be read, or is larger than 5 MB.";
    else if (PictureType(cover) == nullptr)
        problem = "A cover is a PNG, JPEG or GIF picture.";
    if (!problem.empty())
        cover.clear();
    return cover;
}
