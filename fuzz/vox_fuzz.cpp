// Dialogic ADPCM reader.
#include "formats/raw_file.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ExerciseSource(FuzzFile(data, size), size,
                   [](const char* path) { return LRawFile::OpenSourceADPCM(path, 6000, 2); });
    return 0;
}
