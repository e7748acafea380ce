// Readers of headerless files. The first two bytes choose encoding and channels, the rest is the
// file.
#include "formats/raw_file.h"
#include "fuzz/fuzz_file.h"

namespace {
LRawSettings gSettings;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    gSettings = {8000, data[1], data[0] % 10};
    ExerciseSource(FuzzFile(data + 2, size - 2), size - 2,
                   [](const char* path) { return LRawFile::OpenSource(path, gSettings); });
    return 0;
}
