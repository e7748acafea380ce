#include "app/text/recent_files.h"

#include <glib.h>

#include <algorithm>

#include "documents/web_address.h"
#include "foundation/files/private_file.h"
#include "foundation/owned_text.h"
#include "foundation/settings/settings.h"

namespace {

// Paths, newest first, each behind a zero byte: the one that no path holds.
constexpr const char* kFile = "recent-files";
constexpr std::size_t kMostBytes = 1 << 20;

void Store(const std::vector<std::string>& files) {
    std::string content;
    for (const std::string& file : files)
        content.append(1, '\0').append(file);
    WritePrivateFile(kFile, content);
}

// As they were kept before they had a file of their own.
std::vector<std::string> ListOfSettings() {
    std::vector<std::string> files;
    for (int number = 0; number < RecentFiles::kMost; ++number) {
        std::string path =
            LUserSettingGet("RecentFiles", ("File" + std::to_string(number)).c_str());
        if (!path.empty())
            files.push_back(std::move(path));
    }
    return files;
}

}  // namespace

std::vector<std::string> RecentFiles::List() {
    std::string content;
    if (!ReadPrivateFile(kFile, kMostBytes, content))
        return ListOfSettings();
    std::vector<std::string> files;
    for (std::size_t at = 0; at < content.size() && files.size() < kMost;) {
        const std::size_t end = std::min(content.find('\0', at + 1), content.size());
        files.push_back(content.substr(at + 1, end - at - 1));
        at = end;
    }
    return files;
}

void RecentFiles::Add(const std::string& path) {
    const OwnedText absolute(g_canonicalize_filename(path.c_str(), nullptr));
    const std::string file = IsWebAddress(path) ? path : absolute.get();
    std::vector<std::string> files = List();
    std::erase(files, file);
    files.insert(files.begin(), file);
    if (files.size() > kMost)
        files.pop_back();
    Store(files);
}

void RecentFiles::Remove(const std::string& path) {
    std::vector<std::string> files = List();
    std::erase(files, path);
    Store(files);
}
