// Pages of plain text, as recognition gives them.
#include "documents/pdf_pages.h"
#include "documents/text_charset.h"
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const DocumentRules& rules : RulesToTry()) {
        std::vector<PdfPage> pages = PdfPagesOfText(DecodeText(InputOf(data, size)));
        if (!rules.pageHeads)
            DropPageHeads(pages);
        MustBeSound(JoinPages(std::move(pages), rules));
    }
    return 0;
}
