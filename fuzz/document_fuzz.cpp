// Every reader of documents but those that are programs of their own: of these, what makes text of
// pages.
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

bool IsReadByProgram(DocumentKind kind) {
    switch (kind) {
        case DocumentKind::kPdf:
        case DocumentKind::kRtf:
        case DocumentKind::kDjvu:
        case DocumentKind::kMarkdown:
        case DocumentKind::kPicture:
            return true;
        default:
            return false;
    }
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
    if (IsReadByProgram(KindOf(bytes)))
        return 0;
    const DocumentRules all = {true, true, true, true, true, true};
    const DocumentRules least = {false, false, false, false, false, false};
    for (const DocumentRules& rules : {DocumentRules(), all, least}) {
        const Document document = ReadDocument(bytes, {}, rules);
        MustBeText(document.text);
        if (!document.problem.empty() && !document.text.empty())
            std::abort();
    }
    return 0;
}
