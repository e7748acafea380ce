#include "playback/card_holder.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

// What is in a folder, as far as it can be read: a card may be pulled out meanwhile. (The range-for
// over a folder would throw then.)
std::vector<std::filesystem::path> PathsIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        paths.push_back(entry->path());
    return paths;
}

// "/proc/asound/card0/pcm0p/sub0/status" is "closed", or lines of which one tells the owner.
std::string OwnerIn(const std::filesystem::path& status) {
    std::ifstream file(status);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string name;
        std::string colon;
        std::string owner;
        if (words >> name >> colon >> owner && name == "owner_pid")
            return owner;
    }
    return {};
}

bool IsPlayback(const std::string& name) {
    return name.starts_with("pcm") && name.ends_with("p");
}

}  // namespace

std::string CardHolder(int card, const std::string& kernelFolder) {
    for (const auto& pcm : PathsIn(kernelFolder + "/asound/card" + std::to_string(card))) {
        if (!IsPlayback(pcm.filename().string()))
            continue;
        for (const auto& stream : PathsIn(pcm)) {
            const std::string owner = OwnerIn(stream / "status");
            std::ifstream file(kernelFolder + "/" + owner + "/comm");
            if (std::string name; !owner.empty() && std::getline(file, name))
                return name;
        }
    }
    return {};
}
