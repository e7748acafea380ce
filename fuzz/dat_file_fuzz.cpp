// Data files: loading, and that a saved file loads as the same file.
#include <cstdlib>
#include <string>

#include "foundation/files/text_file.h"
#include "foundation/settings/dat_file_native.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile file(data, size);
    std::string saved[2];
    for (std::string& text : saved) {
        LDatFileNativeFile native(file.Path(), 0);
        native.Load();
        native.SetValue("section", "key", "value", 0);
        native.Save();
        LStringLongTemplate<char> loaded;
        if (LoadText(file.Path(), loaded))
            text = loaded.View();
    }
    if (saved[0] != saved[1] || saved[0].find("=value\r\n") == std::string::npos)
        std::abort();
    return 0;
}
