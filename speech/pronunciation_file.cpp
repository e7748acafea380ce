#include "speech/pronunciation_file.h"

#include <errno.h>
#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/files/file_io.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/private_file.h"
#include "foundation/files/store_file.h"
#include "foundation/log/log.h"
#include "speech/pronunciation_pattern.h"

namespace {

constexpr const char* kOwnFile = "pronunciations.txt";
constexpr const char* kMachineFile = "/etc/lectora/pronunciations.txt";
constexpr const char* kNoFile = "-";
constexpr std::size_t kLargestList = 32 << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kHead =
    "# What Lectora says differently: text, said as, for (language or voice), how (case, "
    "pattern);\n# columns between tabs.\n";

std::string_view WithoutBlanks(std::string_view text) {
    constexpr std::string_view kWhite = " \r\n";
    const std::size_t first = std::min(text.find_first_not_of(kWhite), text.size());
    const std::size_t last = text.find_last_not_of(kWhite);
    return last == std::string_view::npos ? "" : text.substr(first, last + 1 - first);
}

bool IsUsable(std::string_view text) {
    return text.size() <= kMostPronunciationBytes &&
           g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE &&
           std::ranges::none_of(text, [](unsigned char byte) { return byte < ' '; });
}

// A word may begin with the sign as well.
bool IsComment(std::string_view line) {
    return line.starts_with("# ") || (line.starts_with('#') && line.find('\t') == line.npos);
}

// A line with its end, which the last one of a file may lack.
std::string_view TakeLine(std::string_view& file) {
    const std::string_view line = file.substr(0, std::min(file.find('\n'), file.size() - 1) + 1);
    file.remove_prefix(line.size());
    return line;
}

bool SaysSomething(std::string_view line) {
    return line.find_first_not_of(" \t\r\n") != line.npos && !IsComment(line);
}

// Calls for each line that says something, without its end.
template <typename Take>
void ForEachLine(std::string_view file, Take take) {
    if (file.starts_with(kByteOrderMark))
        file.remove_prefix(kByteOrderMark.size());
    while (!file.empty()) {
        std::string_view line = TakeLine(file);
        if (line.ends_with('\n'))
            line.remove_suffix(1);
        if (SaysSomething(line))
            take(line);
    }
}

// The column, which is taken off the line. Quotation marks around it go, two of them stand for one.
std::string TakeColumn(std::string_view& line, char separator) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (!line.starts_with('"')) {
        const std::size_t end = std::min(line.find(separator), line.size());
        std::string column(WithoutBlanks(line.substr(0, end)));
        line.remove_prefix(std::min(end + 1, line.size()));
        return column;
    }
    std::string column;
    std::size_t at = 1;
    for (; at < line.size(); ++at) {
        if (line[at] == '"' && (at + 1 == line.size() || line[at + 1] != '"'))
            break;
        at += line[at] == '"' ? 1 : 0;
        column += line[at];
    }
    const std::size_t end = std::min(line.find(separator, at), line.size());
    line.remove_prefix(std::min(end + 1, line.size()));
    return column;
}

char SeparatorOf(std::string_view file) {
    constexpr std::array kSeparators = {'\t', '=', ';', ','};
    std::array<std::size_t, kSeparators.size()> lines{};
    ForEachLine(file, [&](std::string_view line) {
        for (std::size_t i = 0; i < kSeparators.size(); ++i)
            lines[i] += line.find(kSeparators[i]) == std::string_view::npos ? 0 : 1;
    });
    return kSeparators[static_cast<std::size_t>(std::ranges::max_element(lines) - lines.begin())];
}

std::string StateOf(const std::string& path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return kNoFile;
    return std::to_string(status.st_ino) + "." + std::to_string(status.st_size) + "." +
           std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
}

PronunciationList ReadList(const std::string& path, const UniqueFd& file, int openError) {
    PronunciationList list;
    std::string text;
    if (!file.IsOpen()) {
        list.error = openError == ENOENT ? 0 : openError;
    } else if (!ReadWholeFile(file.Get(), kLargestList, text)) {
        struct stat status = {};
        const bool isLarge =
            ::fstat(file.Get(), &status) == 0 && status.st_size > static_cast<off_t>(kLargestList);
        list.error = isLarge ? EFBIG : EIO;
    } else {
        list = ParsePronunciations(text);
    }
    if (list.error != 0)
        LOGWARNF("Speech: %s cannot be read: %s", path.c_str(), g_strerror(list.error));
    if (list.leftOut > 0)
        LOGWARNF("Speech: %zu lines of %s say nothing that can be used", list.leftOut,
                 path.c_str());
    return list;
}

// False when nothing can be made of the line.
bool ParseEntry(std::string_view line, Pronunciation& entry) {
    std::array<std::string_view, 4> columns;
    for (std::string_view& column : columns) {
        const std::size_t end = std::min(line.find('\t'), line.size());
        column = WithoutBlanks(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    if (columns[0].empty() || !std::ranges::all_of(columns, IsUsable))
        return false;
    entry = {std::string(columns[0]), std::string(columns[1]), std::string(columns[2]),
             columns[3].find("pattern") != std::string_view::npos,
             columns[3].find("case") != std::string_view::npos};
    return true;
}

std::string LineOf(const Pronunciation& entry) {
    std::string how = entry.heedsCase ? "case" : "";
    if (entry.isPattern)
        how += how.empty() ? "pattern" : " pattern";
    std::string line = entry.text + '\t' + entry.said + '\t' + entry.where + '\t' + how;
    line.erase(std::max(line.find_last_not_of('\t'), entry.text.size()) + 1);
    return line + '\n';
}

}  // namespace

std::string ProblemOf(const Pronunciation& entry) {
    if (WithoutBlanks(entry.text).empty())
        return "Please type the text that is to be said differently.";
    if (IsComment(entry.text + '\t'))
        return "A text cannot begin with \"# \".";
    for (const std::string& column : {entry.text, entry.said, entry.where})
        if (!IsUsable(column))
            return "This is too long, or holds signs that no text has.";
    return entry.isPattern ? PronunciationPattern(entry).Problem() : "";
}

PronunciationList ParsePronunciations(std::string_view file) {
    PronunciationList list;
    for (const std::string_view own : {kByteOrderMark, std::string_view(kHead)})
        if (file.starts_with(own))
            file.remove_prefix(own.size());
    while (!file.empty()) {
        const std::string_view line = TakeLine(file);
        Pronunciation entry;
        if (SaysSomething(line) && ParseEntry(line, entry)) {
            entry.above = std::exchange(list.below, {});
            list.entries.push_back(std::move(entry));
            continue;
        }
        list.leftOut += SaysSomething(line) ? 1 : 0;
        list.below += line;
        if (!line.ends_with('\n'))
            list.below += '\n';
    }
    return list;
}

std::string FormatPronunciationList(const PronunciationList& list) {
    std::string file = kHead;
    for (const Pronunciation& entry : list.entries)
        file += entry.above + LineOf(entry);
    return file + list.below;
}

std::string FormatPronunciations(const std::vector<Pronunciation>& entries) {
    std::string lines;
    for (const Pronunciation& entry : entries)
        lines += LineOf(entry);
    return lines;
}

void RemovePronunciation(PronunciationList& list, std::size_t entry) {
    std::string above = std::move(list.entries[entry].above);
    list.entries.erase(list.entries.begin() + static_cast<std::ptrdiff_t>(entry));
    std::string& next = entry < list.entries.size() ? list.entries[entry].above : list.below;
    next.insert(0, above);
}

std::vector<Pronunciation> ImportPronunciations(std::string_view file, std::size_t& leftOut) {
    const char separator = SeparatorOf(file);
    std::vector<Pronunciation> entries;
    leftOut = 0;
    ForEachLine(file, [&](std::string_view line) {
        const bool hasTwo = line.find(separator) != std::string_view::npos;
        Pronunciation entry;
        entry.text = TakeColumn(line, separator);
        entry.said = TakeColumn(line, separator);
        if (hasTwo && ProblemOf(entry).empty())
            entries.push_back(std::move(entry));
        else
            ++leftOut;
    });
    return entries;
}

std::string OwnPronunciationsPath() {
    return HomeFolder() + "/.quillon/lectora/" + kOwnFile;
}

PronunciationList LoadOwnPronunciations() {
    const std::string path = OwnPronunciationsPath();
    errno = EACCES;  // where the system had nothing against it
    const UniqueFd file = OpenStoreFile(path.c_str(), O_RDONLY);
    const int error = errno;
    return ReadList(path, file, error);
}

PronunciationList LoadMachinePronunciations() {
    const std::string path = MachinePath(kMachineFile);
    if (StateOf(path) != kNoFile && !CouldOnlyRootWrite(path))
        return ReadList(path, UniqueFd(), EACCES);
    errno = EACCES;
    const UniqueFd file = OpenStoreFile(path.c_str(), O_RDONLY);
    const int error = errno;
    return ReadList(path, file, error);
}

int StoreOwnPronunciations(const PronunciationList& list) {
    if (list.error != 0)
        return list.error;
    const std::string file = FormatPronunciationList(list);
    return file.size() > kLargestList ? EFBIG : WritePrivateFile(kOwnFile, file);
}

std::string PronunciationFilesState() {
    return StateOf(OwnPronunciationsPath()) + " " + StateOf(MachinePath(kMachineFile));
}
