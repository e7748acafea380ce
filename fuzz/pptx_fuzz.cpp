// PPTX presentations: their order, and two slides.
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> parts = PartsOf(InputOf(data, size), 4);
    TryArchive({{"ppt/presentation.xml", parts[0]},
                {"ppt/_rels/presentation.xml.rels", parts[1]},
                {"ppt/s.xml", parts[2]},
                {"ppt/t.xml", parts[3]}});
    return 0;
}
