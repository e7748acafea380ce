#include "foundation/settings/file_rewrite.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "foundation/files/file_io.h"
#include "foundation/settings/settings_entries.h"

// How a killed process leaves a settings file whole.
//
// The kernel copies a write page by page and may stop between pages when the process is killed;
// within a page it does not. So a change inside one page is one write. A change that moves lines
// across pages is made so that the file reads right after each page:
//   1. Behind the old text, from a page of their own on, go copies of all lines that change or
//      move, none of them crossing a page. Readers take the first of a key, so the old lines still
//      count.
//   2. The old lines are blanked, last page first: of two lines with one key the first counts to
//      the end. Each blanked page ends with "=", so that the rest of a line that crosses into the
//      next page is a line with an empty key, which readers drop; that rest is blanked after the
//      line's beginning. Now the copies count.
//   3. The new lines are written over the blanks, last page first: a line that crosses pages is
//      dropped in the same way until its beginning is down too.
//   4. The file is cut behind the new lines, which takes the copies away. What a killed process
//      left over goes with the next change, which compares with what the file really holds.
namespace {

// A data file of more than a page has its whole new text written behind the old one first, between
// these lines, and only then over it. They hold no "=" and no "[", so other readers ignore them.
constexpr std::string_view kRewriteBegins = "\r\n; The file is what follows, up to the end.\r\n";
constexpr std::string_view kRewriteEnds = "; The end.\r\n";

constexpr std::size_t kPage = 4096;  // divides the page size of every machine

std::size_t PageEnd(std::size_t offset) {
    return (offset / kPage + 1) * kPage;
}

bool WriteAt(int fd, std::string_view bytes, std::size_t offset) {
    return WriteFullyAt(fd, bytes, static_cast<std::int64_t>(offset)) == 0;
}

bool TruncateTo(int fd, std::size_t size) {
    int result;
    do {
        result = ftruncate(fd, static_cast<off_t>(size));
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

// Blanks that no reader takes for content.
std::string Blanks(std::size_t count) {
    std::string blanks(count % 2, '\n');
    while (blanks.size() < count)
        blanks += "\r\n";
    return blanks;
}

// False only when the file system says that there is no room; one that cannot reserve is written to
// all the same.
bool ReserveRoom(int fd, std::size_t oldSize, std::size_t newSize) {
    if (newSize <= oldSize)
        return true;
    int result;
    do {
        result = fallocate(fd, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(oldSize),
                           static_cast<off_t>(newSize - oldSize));
    } while (result != 0 && errno == EINTR);
    if (result == 0 || (errno != ENOSPC && errno != EDQUOT && errno != EFBIG))
        return true;
    TruncateTo(fd, oldSize);  // gives back the part that could be had
    return false;
}

std::size_t CommonPrefix(std::string_view a, std::string_view b) {
    const std::size_t size = std::min(a.size(), b.size());
    std::size_t at = 0;
    while (at + kPage <= size && std::memcmp(&a[at], &b[at], kPage) == 0)
        at += kPage;
    while (at < size && a[at] == b[at])
        ++at;
    return at;
}

// A change that moves nothing and stays inside one page: written where it is. False when it is
// none.
bool IsInsideOnePage(std::string_view oldText, std::string_view newText, std::size_t& from,
                     std::size_t& to) {
    if (oldText.size() != newText.size())
        return false;
    from = CommonPrefix(oldText, newText);
    to = newText.size();
    while (oldText[to - 1] == newText[to - 1])
        --to;
    return to <= PageEnd(from);
}

// Start of the line in which the texts first differ.
std::size_t FirstChangedLine(std::string_view oldText, std::string_view newText) {
    const std::size_t common = CommonPrefix(oldText, newText);
    const std::size_t lineEnd =
        common == 0 ? std::string_view::npos : oldText.rfind('\n', common - 1);
    return lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
}

// Writes new text from the offset on over the old, blanks over what is left of the old, and cuts.
bool OverwriteFrom(int fd, std::string_view oldText, std::string_view newText, std::size_t from) {
    std::string bytes(newText.substr(from));
    if (oldText.size() > newText.size())
        bytes += Blanks(oldText.size() - newText.size());
    if (!WriteAt(fd, bytes, from)) {
        WriteAt(fd, oldText.substr(from), from);
        TruncateTo(fd, oldText.size());
        return false;
    }
    return newText.size() >= oldText.size() || TruncateTo(fd, newText.size());
}

bool WriteBehind(int fd, std::string_view oldText, std::string_view behind) {
    if (!ReserveRoom(fd, oldText.size(), oldText.size() + behind.size()))
        return false;
    if (WriteAt(fd, behind, oldText.size()))
        return true;
    TruncateTo(fd, oldText.size());
    return false;
}

// The lines, with blanks wherever the next one would cross a page; begins on a page.
std::string CopiesOf(std::string_view lines) {
    std::string copies(LSettingsEntries::kCopiesFollow);
    while (!lines.empty()) {
        const std::size_t length = std::min(lines.find('\n'), lines.size() - 1) + 1;
        const std::size_t room = PageEnd(copies.size()) - copies.size();
        if (length > room)
            copies += Blanks(room);
        copies += lines.substr(0, length);
        lines.remove_prefix(length);
    }
    return copies;
}

// Start of the first line that begins on the page, the page's end when none does.
std::size_t FirstLineOn(std::string_view text, std::size_t page, std::size_t pageEnd) {
    if (page >= text.size())
        return page;
    const std::size_t lineEnd = text.substr(0, pageEnd).find_first_of("\r\n", page - 1);
    return lineEnd == std::string_view::npos ? pageEnd : std::min(lineEnd + 1, pageEnd);
}

bool BlankPagesBackwards(int fd, std::string_view oldText, std::size_t from, std::size_t to) {
    std::size_t blankFrom = to;  // what lies behind is blanked
    std::size_t end = to;
    while (end > from) {
        const std::size_t page = std::max(from, (end - 1) / kPage * kPage);
        const std::size_t lines = page == from ? from : FirstLineOn(oldText, page, end);
        if (lines < end) {
            std::string blanks = Blanks(end - lines);
            blanks.back() = '=';
            if (!WriteAt(fd, blanks, lines))
                return false;
            // The rest of the last of these lines.
            for (std::size_t rest = blankFrom; rest > end;) {
                const std::size_t start = std::max(end, (rest - 1) / kPage * kPage);
                if (!WriteAt(fd, Blanks(rest - start), start))
                    return false;
                rest = start;
            }
            blankFrom = lines;
        }
        end = page;
    }
    return true;
}

bool WritePagesBackwards(int fd, std::string_view text, std::size_t from) {
    std::size_t end = text.size();
    while (end > from) {
        const std::size_t start = std::max(from, (end - 1) / kPage * kPage);
        if (!WriteAt(fd, text.substr(start, end - start), start))
            return false;
        end = start;
    }
    return true;
}

bool RewriteAcrossPages(int fd, std::string_view oldText, std::string_view newText,
                        std::size_t from) {
    const std::size_t copiesAt = PageEnd(std::max(oldText.size(), newText.size()));
    // The blanks also end a last line that has no line end of its own.
    const std::string behind = Blanks(copiesAt - oldText.size()) + CopiesOf(newText.substr(from));
    if (oldText.size() + behind.size() > kLargestReadableFile || !WriteBehind(fd, oldText, behind))
        return false;
    return BlankPagesBackwards(fd, oldText, from, copiesAt) &&
           WritePagesBackwards(fd, newText, from) && TruncateTo(fd, newText.size());
}

}  // namespace

bool RewriteFile(int fd, std::string_view oldText, std::string_view newText) {
    if (oldText == newText)
        return true;
    const std::size_t end = std::max(oldText.size(), newText.size());
    if (end <= kPage)
        return ReserveRoom(fd, oldText.size(), newText.size()) &&
               OverwriteFrom(fd, oldText, newText, 0);
    std::string behind = Blanks(end - oldText.size());
    behind.append(kRewriteBegins).append(newText).append(kRewriteEnds);
    if (oldText.size() + behind.size() > kLargestDataFile || !WriteBehind(fd, oldText, behind))
        return false;
    return WriteAt(fd, std::string(newText) + Blanks(end - newText.size()), 0) &&
           TruncateTo(fd, newText.size());
}

std::string_view WholeTextOf(std::string_view content) {
    for (;;) {
        const std::size_t begin = content.rfind(kRewriteBegins);
        if (begin == std::string_view::npos)
            return content;
        const std::string_view text = content.substr(begin + kRewriteBegins.size());
        const std::size_t end = text.rfind(kRewriteEnds);
        if (end != std::string_view::npos && (end == 0 || text[end - 1] == '\n'))
            return text.substr(0, end);
        content = content.substr(0, begin);  // killed before the old text was touched
    }
}

bool RewriteSettingsLines(int fd, std::string_view oldText, std::string_view newText) {
    if (oldText == newText)
        return true;
    if (newText.size() > kLargestStoredFile)
        return false;
    std::size_t from = 0;
    std::size_t to = 0;
    if (IsInsideOnePage(oldText, newText, from, to))
        return WriteAt(fd, newText.substr(from, to - from), from);
    from = FirstChangedLine(oldText, newText);
    const std::size_t end = std::max(oldText.size(), newText.size());
    if (end <= PageEnd(from))
        return ReserveRoom(fd, oldText.size(), newText.size()) &&
               OverwriteFrom(fd, oldText, newText, from);
    return RewriteAcrossPages(fd, oldText, newText, from);
}
