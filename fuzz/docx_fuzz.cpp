// DOCX documents: text, styles, numbers of lists, footnotes.
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> parts = PartsOf(InputOf(data, size), 4);
    TryArchive({{"word/document.xml", parts[0]},
                {"word/styles.xml", parts[1]},
                {"word/numbering.xml", parts[2]},
                {"word/footnotes.xml", parts[3]}});
    return 0;
}
