#include "desktop/installation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <tuple>
#include <vector>

#include "desktop/desktop_databases.h"
#include "desktop/desktop_shortcut.h"
#include "desktop/install_list.h"
#include "desktop/start_on_login.h"
#include "desktop/users_data.h"
#include "foundation/files/file.h"
#include "foundation/files/file_io.h"
#include "foundation/files/lock_file.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/publish_file.h"
#include "foundation/files/settings_folders.h"
#include "foundation/files/text_buffer.h"
#include "foundation/settings/settings.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kHome = "/opt/quillon/lectora";
constexpr const char* kProgram = "/opt/quillon/lectora/bin/lectora";
constexpr const char* kWrittenBeside = ".lectora-new";

std::string Because(const std::string& what, int error) {
    std::string text = what + ": " + std::strerror(error) + ".";
    if (error == EACCES || error == EPERM)
        text += " Please run it as root.";
    return text;
}

struct TreeEntry {
    std::string path;  // from the tree's top, begins with "/"
    bool isFolder;
};

// Sorted, so that a folder comes before what is in it. Neither files nor folders nor links: left
// out.
std::vector<TreeEntry> EntriesOf(const std::string& tree, std::error_code& error) {
    std::vector<TreeEntry> entries;
    for (fs::recursive_directory_iterator at(tree, error), end; !error && at != end;
         at.increment(error)) {
        const fs::file_status status = at->symlink_status(error);
        if (fs::is_directory(status) || fs::is_regular_file(status) || fs::is_symlink(status))
            entries.push_back({at->path().string().substr(tree.size()), fs::is_directory(status)});
    }
    std::sort(entries.begin(), entries.end(),
              [](const TreeEntry& a, const TreeEntry& b) { return a.path < b.path; });
    return entries;
}

// 0 or the errno.
int CopyContent(const char* from, const char* to) {
    const UniqueFd source = OpenFileForReading(from);
    struct stat status = {};
    if (!source.IsOpen() || ::fstat(source.Get(), &status) != 0)
        return errno;
    ::unlink(to);  // what a run before left
    const UniqueFd target = OpenRegularFile(to, O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (!target.IsOpen())
        return errno;
    std::vector<char> block(std::size_t{1} << 16);
    for (int error = 0;;) {
        const std::size_t got = ReadFully(source.Get(), block.data(), block.size(), &error);
        if (error == 0 && got > 0)
            error = WriteFully(target.Get(), block.data(), got);
        if (error != 0)
            return error;
        if (got < block.size())
            break;
    }
    // Programs stay programs; nothing is placed that others could change.
    const mode_t mode = (status.st_mode & 0111) != 0 ? 0755 : 0644;
    return ::fchmod(target.Get(), mode) == 0 ? 0 : errno;
}

int CopyBeside(const std::string& from, const std::string& target) {
    const std::string written = target + kWrittenBeside;
    std::error_code error;
    if (!fs::is_symlink(from, error))
        return CopyContent(from.c_str(), written.c_str());
    ::unlink(written.c_str());
    fs::copy_symlink(from, written, error);
    return error.value();
}

// One installation: everything is written beside its place first, because that is where room and
// permission run out, and only then named.
class Installer {
public:
    Installer(std::string tree, const InstallProgress& progress)
        : tree_(std::move(tree)), progress_(progress) {}

    std::string Run() {
        std::error_code error;
        entries_ = EntriesOf(tree_, error);
        if (error || entries_.empty())
            return "There is nothing to install in " + tree_ + ".";
        before_.Load();
        std::string trouble = FindForeignFile();
        if (trouble.empty())
            trouble = WriteBeside();
        if (trouble.empty())
            trouble = NameAll();
        if (!trouble.empty()) {
            TakeBack();
            return trouble;
        }
        RemoveWhatIsNoLongerPartOfIt();
        return std::string();
    }

private:
    static bool Exists(const std::string& path) {
        struct stat status = {};
        return ::lstat(path.c_str(), &status) == 0;
    }

    std::string FindForeignFile() const {
        for (const TreeEntry& entry : entries_) {
            const std::string target = MachinePath(entry.path);
            std::error_code error;
            if (entry.isFolder ? Exists(target) && !fs::is_directory(target, error)
                               : Exists(target) && !before_.HasFile(entry.path))
                return target + " exists, and Lectora has not placed it.";
        }
        return std::string();
    }

    // The files are written first and named then: two equal parts of the work.
    double Fraction(const TreeEntry& entry, int part) const {
        const auto index = static_cast<double>(&entry - entries_.data());
        return (part + index / static_cast<double>(entries_.size())) / 2;
    }

    std::string WriteBeside() {
        // What is listed may be there already or not yet: after a crash in the middle of this, all
        // of it can be taken away.
        placed_ = before_;
        for (const TreeEntry& entry : entries_) {
            const std::string target = MachinePath(entry.path);
            if (entry.isFolder) {
                if (::mkdir(target.c_str(), 0755) == 0) {
                    ::chmod(target.c_str(), 0755);  // whatever the mask is
                    newFolders_.push_back(target);
                } else if (errno != EEXIST) {
                    return Because(target, errno);
                }
                if (!newFolders_.empty() && newFolders_.back() == target)
                    placed_.AddFolder(entry.path);
                continue;
            }
            if (progress_ && !progress_(target, Fraction(entry, 0)))
                return "The installation was stopped.";
            placed_.AddFile(entry.path);
            if (const int error = CopyBeside(tree_ + entry.path, target))
                return Because(target, error);
        }
        // These two are made before anything else of the program runs.
        placed_.AddFolder("/opt/quillon");
        placed_.AddFolder(kHome);
        return std::string();
    }

    std::string NameAll() {
        if (const int error = placed_.Save())
            return Because(LInstallList::Path(), error);
        for (const TreeEntry& entry : entries_) {
            const std::string target = MachinePath(entry.path);
            if (entry.isFolder)
                continue;
            if (progress_)
                progress_(target, Fraction(entry, 1));  // too late to stop: half an update is none
            const bool isNew = !Exists(target);
            std::error_code isLink;
            const std::string written = target + kWrittenBeside;
            const int error = fs::is_symlink(written, isLink)
                                  ? (::rename(written.c_str(), target.c_str()) == 0 ? 0 : errno)
                                  : PublishFile(written.c_str(), target.c_str(), true);
            if (error != 0)
                return Because(target, error);
            if (isNew)
                newFiles_.push_back(target);
        }
        return std::string();
    }

    void TakeBack() {
        for (const TreeEntry& entry : entries_) {
            if (!entry.isFolder)
                ::unlink((MachinePath(entry.path) + kWrittenBeside).c_str());
        }
        for (const std::string& file : newFiles_)
            ::unlink(file.c_str());
        if (before_.Paths().empty())
            ::unlink(LInstallList::Path().c_str());
        else
            before_.Save();
        for (auto folder = newFolders_.rbegin(); folder != newFolders_.rend(); ++folder)
            ::rmdir(folder->c_str());
    }

    void RemoveWhatIsNoLongerPartOfIt() {
        LInstallList now;
        for (const TreeEntry& entry : entries_) {
            if (!entry.isFolder)
                now.AddFile(entry.path);
        }
        for (const std::string& path : placed_.Paths()) {
            if (path.ends_with('/'))
                now.AddFolder(path.substr(0, path.size() - 1));
            else if (!now.HasFile(path))
                ::unlink(MachinePath(path).c_str());
        }
        now.Save();  // where that fails the longer list stands: it names files that are gone
    }

    std::string tree_;
    const InstallProgress& progress_;
    std::vector<TreeEntry> entries_;
    LInstallList before_;
    LInstallList placed_;
    std::vector<std::string> newFolders_;
    std::vector<std::string> newFiles_;
};

// Held while the machine's files are changed.
bool LockMachine(LLockFile& lock) {
    char folder[kTextBufferSize];
    LFile::GetSharedDataFolderApp(folder);  // makes the folder above it
    return lock.Lock(MachinePath("/opt/quillon/lectora/install.run").c_str());
}

// Older versions let every user write to the machine-wide settings. From above downwards, so that
// nobody exchanges what is being looked at.
void KeepOthersFromWriting(int parent, const char* name) {
    const UniqueFd at(::openat(parent, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!at.IsOpen() || ::fstat(at.Get(), &status) != 0 ||
        !(S_ISDIR(status.st_mode) || S_ISREG(status.st_mode)))
        return;
    ::fchmod(at.Get(), status.st_mode & 0755);
    if (!S_ISDIR(status.st_mode))
        return;
    std::ignore = ::fchown(at.Get(), ::geteuid(), ::getegid());
    std::error_code error;
    const std::string folder = "/proc/self/fd/" + std::to_string(at.Get());
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        KeepOthersFromWriting(at.Get(), entry->path().filename().c_str());
}

constexpr const char* kBusy =
    "The program's folder cannot be written, or another installation is running. Please run it as "
    "root.";

// What the list does not name, but the program has put somewhere for its users.
void RemoveWhatUsersHave(RemovalChoice choice) {
    SetAllUserRun(false);
    RemoveDesktopShortcuts();
    if (choice.usersData)
        RemoveUsersData();
}

// Those that this and the settings make, where nothing is installed and they are empty.
void RemoveEmptyFolders() {
    if (IsInstalled())
        return;
    for (const char* folder : {"/opt/quillon/lectora/etc", kHome, "/opt/quillon"})
        ::rmdir(MachinePath(folder).c_str());
}

std::string RemovePlacedFiles(const LInstallList& list) {
    std::string trouble;
    for (const std::string& path : list.Paths()) {
        const std::string target = MachinePath(path);
        if (!path.ends_with('/') && ::unlink(target.c_str()) != 0 && errno != ENOENT &&
            trouble.empty())
            trouble = Because(target, errno);
    }
    return trouble;
}

}  // namespace

std::string InstallTree(const std::string& tree, const InstallProgress& progress) {
    LLockFile lock;
    std::string trouble = LockMachine(lock) ? Installer(tree, progress).Run() : kBusy;
    if (!trouble.empty()) {
        lock.Unlock();
        RemoveEmptyFolders();
        return trouble;
    }
    // A mask that keeps new folders from others would keep the program from them.
    for (const char* folder : {"/opt/quillon", kHome})
        ::chmod(MachinePath(folder).c_str(), 0755);
    KeepOthersFromWriting(AT_FDCWD, MachineSettingsFolder().c_str());
    RefreshDesktopDatabases();
    return std::string();
}

bool IsInstalled() {
    return LInstallList().Load();
}

std::string RemoveInstallation(RemovalChoice choice) {
    LInstallList list;
    if (!list.Load()) {
        std::error_code error;
        return fs::exists(MachinePath(kProgram), error)
                   ? "Lectora came as a package of the system. Please remove it with: apt remove "
                     "lectora"
                   : "Lectora has not been installed here.";
    }
    {
        LLockFile lock;
        if (!LockMachine(lock))
            return kBusy;
        RemoveWhatUsersHave(choice);
        std::string trouble = RemovePlacedFiles(list);
        if (!trouble.empty())
            return trouble;  // the list stays, to try again
        ::unlink(LInstallList::Path().c_str());
    }
    char settings[kTextBufferSize];
    LFile::GetSharedDataFolderApp(settings);
    if (choice.machineSettings)
        LFile::DeleteFolderTree(settings);
    ::rmdir(settings);
    // Backwards: what is in a folder goes before it.
    for (auto path = list.Paths().rbegin(); path != list.Paths().rend(); ++path) {
        if (path->ends_with('/'))
            ::rmdir(MachinePath(*path).c_str());  // refuses what others put something into
    }
    RemoveEmptyFolders();
    RefreshDesktopDatabases();
    return std::string();
}

std::string OwnTree() {
    std::error_code error;
    const std::string self = fs::read_symlink("/proc/self/exe", error).string();
    if (!self.ends_with(kProgram))
        return std::string();
    const std::string tree = self.substr(0, self.size() - std::string_view(kProgram).size());
    return tree.empty() ? "/" : tree;
}

bool IsOwnTreeInPlace() {
    const std::string tree = OwnTree();
    const std::string root = MachinePath("/");
    return tree == "/" ? root == "/" : tree + "/" == root;
}
