#include "documents/mobi_book.h"

#include <glib.h>

#include <string>
#include <utility>

#include "documents/document_kind.h"
#include "documents/html_text.h"
#include "documents/problems.h"
#include "documents/program_output.h"
#include "documents/text_charset.h"
#include "documents/zip_document.h"
#include "foundation/files/file_io.h"
#include "foundation/files/work_folder.h"
#include "foundation/owned_text.h"
#include "foundation/processes/child_process.h"

namespace {

// A Palm data base: 78 bytes, then 8 for each record, whose first four say where it begins. The
// first record describes the text.
constexpr std::size_t kKind = 60;
constexpr std::size_t kFirstRecord = 78;
constexpr std::size_t kEncryption = 12;  // in that record; 0: none

std::size_t NumberAt(std::string_view bytes, std::size_t at, std::size_t size) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number =
            number << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    return number;
}

bool IsProtected(std::string_view bytes) {
    const std::size_t record = NumberAt(bytes, kFirstRecord, 4);
    return record > kFirstRecord && NumberAt(bytes, record + kEncryption, 2) != 0;
}

// What the program writes into a folder of its own, of a book that it reads as "stdin".
std::string RunMobitool(const std::string& option, const std::string& ending,
                        std::string_view bytes, const ReadingWatch& watch, std::string& written) {
    if (!IsProgramInstalled("mobitool"))
        return "MOBI and Kindle books need the program mobitool: install the package "
               "libmobi-tools.";
    const WorkFolder folder("lectora-book");
    if (!folder.IsMade())
        return "There is no room for what the program mobitool writes.";
    const OwnedText quoted(g_shell_quote(folder.Path().c_str()));
    const ProgramOutcome outcome =
        RunProgram("mobitool " + option + " -o " + quoted.get() + " /dev/stdin", bytes, watch,
                   [](std::string_view) { return true; });
    if (std::string problem = ProgramProblem("mobitool", outcome, watch); !problem.empty())
        return problem;
    const UniqueFd file = OpenFileForReading((folder.Path() + "stdin" + ending).c_str());
    const bool isThere = outcome == ProgramOutcome::kDone && file.IsOpen() &&
                         ReadWholeFile(file.Get(), kLargestDocumentText, written);
    return isThere ? "" : kDamagedDocument;
}

}  // namespace

Document ReadMobi(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    if (IsProtected(bytes))
        return DocumentProblem("The book is protected against copying (DRM) and cannot be read.");
    // Palm books are mostly plain text, whose lines an EPUB does not have.
    const bool isPalm = bytes.substr(kKind).starts_with("TEXt");
    std::string book;
    if (std::string problem = isPalm ? RunMobitool("-d", ".rawml", bytes, watch, book)
                                     : RunMobitool("-e", ".epub", bytes, watch, book);
        !problem.empty())
        return DocumentProblem(std::move(problem));
    if (!isPalm)
        return ReadZipDocument(book, watch, rules);
    if (KindOf(book) == DocumentKind::kHtml)
        return ReadPage(book, watch, rules);
    Document document;
    document.text = DecodeText(book);
    return document;
}
