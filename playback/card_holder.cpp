#include "playback/card_holder.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using Folder = std::filesystem::directory_iterator;

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
    std::error_code error;
    for (const auto& pcm : Folder(kernelFolder + "/asound/card" + std::to_string(card), error)) {
        if (!IsPlayback(pcm.path().filename().string()))
            continue;
        for (const auto& stream : Folder(pcm.path(), error)) {
            const std::string owner = OwnerIn(stream.path() / "status");
            std::ifstream file(kernelFolder + "/" + owner + "/comm");
            if (std::string name; !owner.empty() && std::getline(file, name))
                return name;
        }
    }
    return {};
}
