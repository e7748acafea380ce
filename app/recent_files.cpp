#include "app/recent_files.h"

#include <glib.h>

#include <algorithm>

#include "foundation/owned_text.h"
#include "foundation/settings.h"
#include "foundation/text_buffer.h"

namespace {

constexpr char kSection[] = "RecentFiles";

std::string Key(int number) {
    return "File" + std::to_string(number);
}

void Store(const std::vector<std::string>& files) {
    for (int number = 0; number < RecentFiles::kMost; ++number) {
        const bool isFree = number >= static_cast<int>(files.size());
        LUserSettingSetString(kSection, Key(number).c_str(),
                              isFree ? nullptr : files[static_cast<std::size_t>(number)].c_str());
    }
}

bool CanBeKept(const std::string& path) {
    const auto isControl = [](unsigned char byte) { return byte < ' ' || byte == 0x7F; };
    return path.size() < kTextBufferSize && std::none_of(path.begin(), path.end(), isControl);
}

}  // namespace

std::vector<std::string> RecentFiles::List() {
    std::vector<std::string> files;
    for (int number = 0; number < kMost; ++number) {
        std::string path = LUserSettingGet(kSection, Key(number).c_str());
        if (!path.empty())
            files.push_back(std::move(path));
    }
    return files;
}

void RecentFiles::Add(const std::string& path) {
    const OwnedText absolute(g_canonicalize_filename(path.c_str(), nullptr));
    if (!CanBeKept(absolute.get()))
        return;
    std::vector<std::string> files = List();
    std::erase(files, absolute.get());
    files.insert(files.begin(), absolute.get());
    if (files.size() > kMost)
        files.pop_back();
    Store(files);
}

void RecentFiles::Remove(const std::string& path) {
    std::vector<std::string> files = List();
    std::erase(files, path);
    Store(files);
}
