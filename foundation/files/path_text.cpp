#include "foundation/files/path_text.h"

namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

std::string_view FilePart(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

std::string FileOfPath(std::string_view path) {
    return std::string(FilePart(path));
}

std::string FolderOfPath(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == kNotFound)
        return "";
    return std::string(path.substr(0, slash == 0 ? 1 : slash));
}

std::string EndingOfPath(std::string_view path) {
    const std::string_view file = FilePart(path);
    const std::size_t dot = file.rfind('.');
    return std::string(dot == kNotFound || dot == 0 ? "" : file.substr(dot));
}
