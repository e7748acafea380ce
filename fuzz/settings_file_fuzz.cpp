// Settings files: loading, looking up, and that what was set is there when the file is loaded
// again.
#include <cstdlib>
#include <string>

#include "foundation/settings/settings_file.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzFile file(data, size);
    char value[260];
    LSettingsFile settings(file.Path());
    const std::string key(reinterpret_cast<const char*>(data), size < 20 ? size : 20);
    settings.GetString(key.c_str(), "default", value);
    settings.TestFieldExists(key.c_str());
    settings.SetString("some key", "some value");
    settings.SetString("gone", nullptr);
    LSettingsFile again(file.Path());
    again.GetString("Some Key", "", value);
    if (std::string(value) != "some value")
        std::abort();
    return 0;
}
