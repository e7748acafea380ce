// Text in any charset.
#include "documents/text_charset.h"
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MustBeText(DecodeText(InputOf(data, size)));
    MustBeText(DecodeMarkup(InputOf(data, size)));
    return 0;
}
