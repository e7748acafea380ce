// EPUB books: package, contents, two chapters.
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> parts = PartsOf(InputOf(data, size), 4);
    TryArchive({{"META-INF/container.xml", "<container><rootfile full-path='b.opf'/></container>"},
                {"b.opf", parts[0]},
                {"nav.xhtml", parts[1]},
                {"toc.ncx", parts[1]},
                {"a.xhtml", parts[2]},
                {"b.xhtml", parts[3]}});
    return 0;
}
