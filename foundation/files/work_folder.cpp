#include "foundation/files/work_folder.h"

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>

WorkFolder::WorkFolder(const std::string& program) {
    const char* base = std::getenv("TMPDIR");
    path_ =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/" + program + "-XXXXXX";
    if (::mkdtemp(path_.data()) == nullptr)
        path_.clear();
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    if (!path_.empty())
        std::filesystem::remove_all(path_, ignored);
}
