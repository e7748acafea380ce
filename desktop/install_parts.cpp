#include "desktop/install_parts.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "foundation/files/machine_root.h"

namespace fs = std::filesystem;

namespace {

struct Place {
    const char* what;
    std::string_view folder;
};

// The first folder that a file lies in counts.
constexpr Place kPlaces[] = {
    {"The program", "/opt/quillon/lectora/bin"},
    {"Pictures and help pages", "/opt/quillon/lectora/share"},
    {"MP3 component", "/opt/quillon/components"},
    {"Commands", "/usr/bin"},
    {"Menu entries", "/usr/share/applications"},
    {"Icons", "/usr/share/icons"},
    {"Software catalogue entry", "/usr/share/metainfo"},
    {"Manual pages", "/usr/share/man"},
    {"Documents", "/usr/share/doc"},
    {"Other files", ""},
};

}  // namespace

std::vector<LInstallPart> InstallParts(const std::string& tree) {
    std::vector<LInstallPart> parts;
    for (const Place& place : kPlaces)
        parts.push_back({place.what, MachinePath(place.folder), 0});
    std::error_code error;
    for (fs::recursive_directory_iterator at(tree, error), end; !error && at != end;
         at.increment(error)) {
        const fs::file_status status = at->symlink_status(error);
        if (!fs::is_regular_file(status) && !fs::is_symlink(status))
            continue;
        const std::string path = at->path().string().substr(tree.size());
        const auto* const place = std::ranges::find_if(kPlaces, [&](const Place& each) {
            return path.starts_with(std::string(each.folder) + "/");
        });
        // A link takes a block as well.
        const std::int64_t bytes =
            fs::is_symlink(status) ? 1 : static_cast<std::int64_t>(at->file_size(error));
        parts[static_cast<std::size_t>(place - kPlaces)].bytes += bytes;
    }
    std::erase_if(parts, [](const LInstallPart& part) { return part.bytes == 0; });
    return error ? std::vector<LInstallPart>() : parts;
}

std::string SizeText(std::int64_t bytes) {
    constexpr double kKilo = 1000;
    char text[32];
    const double size = static_cast<double>(bytes);
    if (size < kKilo * kKilo)
        std::snprintf(text, sizeof text, "%.0f kB", std::max(1.0, size / kKilo));
    else
        std::snprintf(text, sizeof text, "%.1f MB", size / kKilo / kKilo);
    return text;
}
