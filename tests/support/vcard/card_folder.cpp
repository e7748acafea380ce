#include "tests/support/vcard/card_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "foundation/files/unique_fd.h"

namespace {

bool ParseFault(std::istringstream& line, CardFault& fault) {
    static const std::array<std::pair<const char*, CardFault::Kind>, 9> kinds = {{
        {"busy", CardFault::Kind::kBusy},
        {"vanish", CardFault::Kind::kVanish},
        {"underrun", CardFault::Kind::kUnderrun},
        {"break", CardFault::Kind::kBreak},
        {"suspend", CardFault::Kind::kSuspend},
        {"again", CardFault::Kind::kAgain},
        {"stall", CardFault::Kind::kStall},
        {"hang", CardFault::Kind::kHang},
        {"deaf", CardFault::Kind::kDeaf},
    }};
    std::string word;
    line >> word;
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const auto& kind) { return word == kind.first; });
    if (found == kinds.end())
        return false;
    fault.kind = found->second;
    line >> fault.frame;
    return true;
}

bool ParseElement(const std::string& rest, CardElement& element) {
    // The name may hold blanks; the two numbers stand last.
    const std::size_t lastBlank = rest.find_last_of(' ');
    if (lastBlank == std::string::npos || lastBlank == 0)
        return false;
    const std::size_t middleBlank = rest.find_last_of(' ', lastBlank - 1);
    if (middleBlank == std::string::npos)
        return false;
    element.name = rest.substr(0, middleBlank);
    element.minimum = std::atol(rest.c_str() + middleBlank);
    element.maximum = std::atol(rest.c_str() + lastBlank);
    return true;
}

std::vector<unsigned int> ParseNumbers(std::istringstream& line) {
    std::vector<unsigned int> numbers;
    unsigned int number = 0;
    while (line >> number)
        numbers.push_back(number);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

void ParseLine(const std::string& text, CardSettings& settings) {
    std::istringstream line(text);
    std::string word;
    line >> word >> std::ws;
    if (word == "name") {
        std::getline(line, settings.name);
    } else if (word == "rates") {
        settings.rates = ParseNumbers(line);
    } else if (word == "channels") {
        settings.channels = ParseNumbers(line);
    } else if (word == "speed") {
        line >> settings.speed;
    } else if (word == "server") {
        line >> settings.serverMilliseconds;
        settings.name.clear();
    } else if (word == "element") {
        std::string rest;
        std::getline(line, rest);
        CardElement element;
        if (ParseElement(rest, element))
            settings.elements.push_back(element);
    } else if (word == "fault") {
        CardFault fault;
        if (ParseFault(line, fault))
            settings.faults.push_back(fault);
    }
}

}  // namespace

const CardFault* CardSettings::FindFault(CardFault::Kind kind) const {
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [&](const CardFault& fault) { return fault.kind == kind; });
    return found != faults.end() ? &*found : nullptr;
}

CardSettings ParseCardSettings(const std::string& text) {
    CardSettings settings;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line))
        ParseLine(line, settings);
    if (!(settings.speed > 0))
        settings.speed = 1;
    return settings;
}

CardFolder::CardFolder(int card) {
    const char* cards = std::getenv("LECTORA_VCARD");
    path_ = std::string(cards != nullptr ? cards : "/nonexistent") + "/card" + std::to_string(card);
}

bool CardFolder::Exists() const {
    return ::access((path_ + "/settings").c_str(), R_OK) == 0;
}

const CardSettings& CardFolder::Settings() {
    const std::string file = path_ + "/settings";
    struct stat now = {};
    if (::stat(file.c_str(), &now) == 0 &&
        (now.st_ino != read_.st_ino || now.st_size != read_.st_size ||
         now.st_mtim.tv_sec != read_.st_mtim.tv_sec ||
         now.st_mtim.tv_nsec != read_.st_mtim.tv_nsec)) {
        read_ = now;
        settings_ = ParseCardSettings(ReadSmallFile(file));
    }
    return settings_;
}

std::string ReadSmallFile(const std::string& path) {
    std::string text;
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> block{};
    ssize_t count = 0;
    while (fd.IsOpen() && (count = ::read(fd.Get(), block.data(), block.size())) > 0)
        text.append(block.data(), static_cast<std::size_t>(count));
    return text;
}
