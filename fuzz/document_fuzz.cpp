// Every reader of documents but the one for PDF, which is a program of its own: of that, what makes
// text of its pages.
#include <glib.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "documents/document.h"
#include "documents/document_kind.h"
#include "documents/pdf_pages.h"
#include "documents/text_charset.h"
#include "fuzz/fuzz_file.h"

namespace {

void MustBeText(const std::string& text) {
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string text = DecodeText(bytes);
    MustBeText(text);
    std::vector<PdfPage> pages = PdfPagesOfText(text);
    DropPageHeads(pages);
    MustBeText(JoinPages(std::move(pages), {}).text);
    PdfLayout layout(false);
    layout.Feed(text);
    MustBeText(JoinPages(layout.TakePages(), {}).text);
    if (KindOf(bytes) == DocumentKind::kPdf)
        return 0;
    const Document document = ReadDocument(bytes);
    MustBeText(document.text);
    if (!document.problem.empty() && !document.text.empty())
        std::abort();
    return 0;
}
