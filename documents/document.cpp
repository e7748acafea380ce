#include "documents/document.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "documents/document_kind.h"
#include "documents/html_text.h"
#include "documents/office_text.h"
#include "documents/pdf_text.h"
#include "documents/text_charset.h"
#include "documents/zip_document.h"
#include "foundation/file_io.h"
#include "foundation/flock_timed.h"
#include "foundation/text_file.h"

namespace {

constexpr int kLockMilliseconds = 1000;

Document Problem(const std::string& sentence) {
    return {{}, sentence};
}

Document CannotOpen(const char* path, int error) {
    struct stat info;
    if (::stat(path, &info) == 0 && !S_ISREG(info.st_mode))
        return Problem(S_ISDIR(info.st_mode) ? "This is a folder, not a file."
                                             : "This is not a regular file.");
    return Problem(std::string("The file cannot be opened: ") + std::strerror(error) + ".");
}

Document ReadPage(std::string_view bytes, const ReadingWatch& watch) {
    TextFlow flow;
    std::string problem = ReadHtml(bytes, watch, flow);
    return problem.empty() ? Document{flow.Take(), {}} : Problem(problem);
}

}  // namespace

Document LoadDocument(const char* path, const StopTest& isToStop) {
    errno = 0;
    const UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return CannotOpen(path, errno);
    // Whoever saves it at this moment finishes first.
    flocktimed(file.Get(), LOCK_SH | LOCK_NB, kLockMilliseconds);
    if (FileSize(file.Get()) > kLargestTextFile)
        return Problem("The file is larger than 256 MB.");
    std::string bytes;
    errno = 0;
    if (!ReadWholeFile(file.Get(), static_cast<std::size_t>(kLargestTextFile), bytes))
        return Problem(std::string("The file cannot be read: ") + std::strerror(errno) + ".");
    return ReadDocument(bytes, isToStop);
}

Document ReadDocument(std::string_view bytes, const StopTest& isToStop) {
    const ReadingWatch watch(isToStop);
    switch (KindOf(bytes)) {
        case DocumentKind::kHtml:
            return ReadPage(bytes, watch);
        case DocumentKind::kZip:
            return ReadZipDocument(bytes, watch);
        case DocumentKind::kFlatOdt:
            return ReadFlatOdt(bytes, watch);
        case DocumentKind::kPdf:
            return ReadPdf(bytes, watch);
        case DocumentKind::kForeign:
            return Problem(ForeignKindProblem(bytes));
        case DocumentKind::kPlainText:
            break;
    }
    return {DecodeText(bytes), {}};
}
