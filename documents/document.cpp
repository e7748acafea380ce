#include "documents/document.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "documents/document_kind.h"
#include "documents/fiction_book.h"
#include "documents/growing_document.h"
#include "documents/html_text.h"
#include "documents/mail_text.h"
#include "documents/mobi_book.h"
#include "documents/pdf_text.h"
#include "documents/problems.h"
#include "documents/program_document.h"
#include "documents/recognised_text.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "documents/web_address.h"
#include "documents/web_page.h"
#include "documents/zip_document.h"
#include "foundation/files/file_io.h"
#include "foundation/files/flock_timed.h"
#include "foundation/files/text_file.h"

namespace {

constexpr int kLockMilliseconds = 1000;

Document CannotOpen(const char* path, int error) {
    struct stat info;
    if (::stat(path, &info) == 0 && !S_ISREG(info.st_mode))
        return DocumentProblem(S_ISDIR(info.st_mode) ? "This is a folder, not a file."
                                                     : "This is not a regular file.");
    return DocumentProblem(std::string("The file cannot be opened: ") + std::strerror(error) + ".");
}

bool HoldsWords(std::string_view text) {
    return text.find_first_not_of(kWhiteSpace) != std::string_view::npos;
}

Document ReadKind(DocumentKind kind, std::string_view bytes, const ReadingWatch& watch,
                  const DocumentRules& rules) {
    switch (kind) {
        case DocumentKind::kHtml:
            return ReadPage(bytes, watch, rules);
        case DocumentKind::kZip:
            return ReadZipDocument(bytes, watch, rules);
        case DocumentKind::kFlatOdt:
            return ReadFlatOdt(bytes, watch, rules);
        case DocumentKind::kFictionBook:
            return ReadFictionBook(bytes, watch, rules);
        case DocumentKind::kPdf:
            return ReadPdf(bytes, watch, rules);
        case DocumentKind::kRtf:
            return ReadRtf(bytes, watch, rules);
        case DocumentKind::kDjvu:
            return ReadDjvu(bytes, watch, rules);
        case DocumentKind::kMarkdown:
            return ReadMarkdown(bytes, watch, rules);
        case DocumentKind::kMail:
            return ReadMail(bytes, watch, rules);
        case DocumentKind::kMobi:
            return ReadMobi(bytes, watch, rules);
        case DocumentKind::kPicture:
            return ReadPicture(bytes, watch, rules);
        case DocumentKind::kForeign:
            return DocumentProblem(ForeignKindProblem(bytes));
        case DocumentKind::kPlainText:
            break;
    }
    Document document;
    document.text = DecodeText(bytes);
    return document;
}

Document Read(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules,
              std::string_view name) {
    Document document = ReadKind(KindOf(bytes, name), bytes, watch, rules);
    if (document.problem.empty() && !HoldsWords(document.text))
        document = DocumentProblem("There is no text in it.");
    return document;
}

Document Load(const char* path, const StopTest& isToStop, const DocumentRules& rules,
              const BeginningTaker* take) {
    if (IsWebAddress(path)) {
        const WebPage page = FetchWebPage(path, isToStop);
        return page.problem.empty()
                   ? Read(page.bytes, ReadingWatch(isToStop, take), rules, page.name)
                   : DocumentProblem(page.problem);
    }
    errno = 0;
    const UniqueFd file = OpenFileForReading(path);
    if (!file.IsOpen())
        return CannotOpen(path, errno);
    // Whoever saves it at this moment finishes first.
    flocktimed(file.Get(), LOCK_SH | LOCK_NB, kLockMilliseconds);
    if (FileSize(file.Get()) > kLargestTextFile)
        return DocumentProblem("The file is larger than 256 MB.");
    std::string bytes;
    errno = 0;
    if (!ReadWholeFile(file.Get(), static_cast<std::size_t>(kLargestTextFile), bytes))
        return DocumentProblem(std::string("The file cannot be read: ") + std::strerror(errno) +
                               ".");
    return Read(bytes, ReadingWatch(isToStop, take), rules, path);
}

}  // namespace

Document LoadDocument(const char* path, const StopTest& isToStop, const DocumentRules& rules) {
    return Load(path, isToStop, rules, nullptr);
}

Document LoadGrowingDocument(const char* path, const StopTest& isToStop, const DocumentRules& rules,
                             const BeginningTaker& take) {
    return Load(path, isToStop, rules, &take);
}

Document ReadDocument(std::string_view bytes, const StopTest& isToStop, const DocumentRules& rules,
                      std::string_view name) {
    return Read(bytes, ReadingWatch(isToStop), rules, name);
}
