// PPTX presentations: their order, two slides, and what the first one shows of another file.
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> parts = PartsOf(InputOf(data, size), 6);
    TryArchive({{"ppt/presentation.xml", parts[0]},
                {"ppt/_rels/presentation.xml.rels", parts[1]},
                {"ppt/s.xml", parts[2]},
                {"ppt/t.xml", parts[3]},
                {"ppt/_rels/s.xml.rels", parts[4]},
                {"ppt/charts/chart1.xml", parts[5]}});
    return 0;
}
