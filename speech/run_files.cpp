#include "speech/run_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>

#include "foundation/files/unique_fd.h"

namespace {

constexpr std::string_view kSoundBeginning = ".speech";
constexpr std::string_view kSoundEnd = ".wav";
constexpr std::string_view kTimesEnd = ".tim";  // as long
constexpr std::size_t kTextNameLength = 7;      // "0XXXXXX"
constexpr std::size_t kSoundNameLength =
    kSoundBeginning.size() + kTextNameLength + 7 + kSoundEnd.size();
constexpr time_t kDeadSeconds = 600;

// `pattern` ends in XXXXXX and the suffix.
std::string MakePrivateFile(std::string pattern, std::size_t suffixLength) {
    const UniqueFd file(::mkostemps(pattern.data(), static_cast<int>(suffixLength), O_CLOEXEC));
    return file.IsOpen() ? pattern : std::string();
}

bool IsNameOfRun(std::string_view name) {
    return name.size() == kSoundNameLength && name.starts_with(kSoundBeginning) &&
           (name.ends_with(kSoundEnd) || name.ends_with(kTimesEnd)) &&
           name[kSoundBeginning.size()] == '0' &&
           name[kSoundBeginning.size() + kTextNameLength] == '-';
}

void RemoveDead(const std::string& path, time_t now) {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_uid == ::geteuid() && status.st_mtime < now - kDeadSeconds)
        ::unlink(path.c_str());
}

bool IsFirstLookAt(const std::string& folder) {
    static std::mutex mutex;
    static std::set<std::string> seen;
    const std::lock_guard<std::mutex> lock(mutex);
    return seen.insert(folder).second;
}

}  // namespace

std::string FolderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? "./" : std::string(path.substr(0, slash + 1));
}

std::string MakeRunTextFile() {
    return MakePrivateFile(std::string(kRunTextFolder) + "0XXXXXX", 0);
}

std::string MakeRunSoundFile(const std::string& folder, const std::string& textPath) {
    const std::string textName = textPath.substr(textPath.rfind('/') + 1);
    return MakePrivateFile(
        folder + std::string(kSoundBeginning) + textName + "-XXXXXX" + std::string(kSoundEnd),
        kSoundEnd.size());
}

std::string MakeRunTimesFile(const std::string& soundPath) {
    const std::string path =
        soundPath.substr(0, soundPath.size() - kSoundEnd.size()) + std::string(kTimesEnd);
    const UniqueFd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return file.IsOpen() ? path : std::string();
}

void RemoveFilesOfDeadRuns(const std::string& folder) {
    if (!IsFirstLookAt(folder))
        return;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
    if (!entries)
        return;
    const time_t now = ::time(nullptr);
    while (const dirent* entry = ::readdir(entries.get())) {
        const std::string name = entry->d_name;
        if (!IsNameOfRun(name))
            continue;
        RemoveDead(folder + name, now);
        RemoveDead(kRunTextFolder + name.substr(kSoundBeginning.size(), kTextNameLength), now);
    }
}
