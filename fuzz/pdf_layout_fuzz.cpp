// What "pdftotext" tells of a document, made into running text; it comes in any pieces.
#include "documents/pdf_pages.h"
#include "documents/text_charset.h"
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = DecodeText(InputOf(data, size));
    const std::size_t piece = size % 61 + 1;
    for (const DocumentRules& rules : RulesToTry()) {
        PdfLayout layout(rules.referenceMarks);
        for (std::size_t at = 0; at < text.size(); at += piece)
            layout.Feed(std::string_view(text).substr(at, piece));
        std::vector<PdfPage> pages = layout.TakePages();
        if (!rules.pageHeads)
            DropPageHeads(pages);
        MustBeSound(JoinPages(std::move(pages), rules));
    }
    return 0;
}
