#include "speech/pronunciation_file.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "foundation/files/file_io.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/private_file.h"
#include "foundation/files/store_file.h"
#include "foundation/log/log.h"
#include "speech/pronunciation_pattern.h"

namespace {

constexpr const char* kOwnFile = "pronunciations.txt";
constexpr const char* kMachineFile = "/etc/lectora/pronunciations.txt";
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

// Calls for each line that says something.
template <typename Take>
void ForEachLine(std::string_view file, Take take) {
    if (file.starts_with(kByteOrderMark))
        file.remove_prefix(kByteOrderMark.size());
    while (!file.empty()) {
        const std::size_t end = std::min(file.find('\n'), file.size());
        const std::string_view line = file.substr(0, end);
        file.remove_prefix(std::min(end + 1, file.size()));
        if (line.find_first_not_of(" \t\r") != line.npos && !IsComment(line))
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
        return "-";
    return std::to_string(status.st_ino) + "." + std::to_string(status.st_size) + "." +
           std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
}

std::string OwnPath() {
    return HomeFolder() + "/.quillon/lectora/" + kOwnFile;
}

std::vector<Pronunciation> ReadList(const std::string& path, const UniqueFd& file) {
    std::string text;
    std::size_t leftOut = 0;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestList, text)) {
        if (StateOf(path) != "-")
            LOGWARNF("Speech: %s can be written by others or cannot be read", path.c_str());
        return {};
    }
    std::vector<Pronunciation> entries = ParsePronunciations(text, leftOut);
    if (leftOut > 0)
        LOGWARNF("Speech: %zu lines of %s say nothing that can be used", leftOut, path.c_str());
    return entries;
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

std::vector<Pronunciation> ParsePronunciations(std::string_view file, std::size_t& leftOut) {
    std::vector<Pronunciation> entries;
    leftOut = 0;
    ForEachLine(file, [&](std::string_view line) {
        std::array<std::string_view, 4> columns;
        for (std::string_view& column : columns) {
            const std::size_t end = std::min(line.find('\t'), line.size());
            column = WithoutBlanks(line.substr(0, end));
            line.remove_prefix(std::min(end + 1, line.size()));
        }
        if (columns[0].empty() || !std::ranges::all_of(columns, IsUsable)) {
            ++leftOut;
            return;
        }
        entries.push_back({std::string(columns[0]), std::string(columns[1]),
                           std::string(columns[2]),
                           columns[3].find("pattern") != std::string_view::npos,
                           columns[3].find("case") != std::string_view::npos});
    });
    return entries;
}

std::string FormatPronunciations(const std::vector<Pronunciation>& entries) {
    std::string file = kHead;
    for (const Pronunciation& entry : entries) {
        std::string how = entry.heedsCase ? "case" : "";
        if (entry.isPattern)
            how += how.empty() ? "pattern" : " pattern";
        std::string line = entry.text + '\t' + entry.said + '\t' + entry.where + '\t' + how;
        line.erase(std::max(line.find_last_not_of('\t'), entry.text.size()) + 1);
        file += line + '\n';
    }
    return file;
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

std::vector<Pronunciation> LoadOwnPronunciations() {
    const std::string path = OwnPath();
    return ReadList(path, OpenStoreFile(path.c_str(), O_RDONLY));
}

std::vector<Pronunciation> LoadMachinePronunciations() {
    const std::string path = MachinePath(kMachineFile);
    return ReadList(path,
                    CouldOnlyRootWrite(path) ? OpenStoreFile(path.c_str(), O_RDONLY) : UniqueFd());
}

int StoreOwnPronunciations(const std::vector<Pronunciation>& entries) {
    return WritePrivateFile(kOwnFile, FormatPronunciations(entries));
}

std::string PronunciationFilesState() {
    return StateOf(OwnPath()) + " " + StateOf(MachinePath(kMachineFile));
}
