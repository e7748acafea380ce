// Files of every kind but those that programs of their own read, and which kind they are.
#include "documents/document_kind.h"
#include "fuzz/document_check.h"

namespace {

bool IsReadByProgram(DocumentKind kind) {
    switch (kind) {
        case DocumentKind::kPdf:
        case DocumentKind::kRtf:
        case DocumentKind::kDjvu:
        case DocumentKind::kMarkdown:
        case DocumentKind::kMobi:
        case DocumentKind::kPicture:
            return true;
        default:
            return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = InputOf(data, size);
    if (!IsReadByProgram(KindOf(bytes)))
        for (const DocumentRules& rules : RulesToTry())
            MustBeSound(ReadDocument(bytes, {}, rules));
    return 0;
}
