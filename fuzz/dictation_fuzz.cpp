// Dictation header. The file's size stands in its header, so it is put there as well: otherwise
// hardly any input would get past it.
#include <algorithm>
#include <vector>

#include "formats/dictation_header.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> bytes(data, data + size);
    for (int pass = 0; pass < 2; pass++) {
        const FuzzFile file(bytes.data(), bytes.size());
        for (const bool quiet : {false, true}) {
            LStringLongTemplate<char> text;
            ReadDCTHeader(file.Path(), text, quiet);
            if (text.Length() > 8 * size + 1000)
                std::abort();
        }
        for (std::size_t i = 2; i < std::min<std::size_t>(bytes.size(), 6); i++)
            bytes[i] = static_cast<std::uint8_t>(size >> (8 * (i - 2)));
    }
    return 0;
}
