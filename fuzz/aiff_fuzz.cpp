// AIFF reader.
#include "formats/aiff_file.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ExerciseSource(FuzzFile(data, size), size, LAifFile::OpenSource);
    return 0;
}
