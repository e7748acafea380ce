#include "tests/support/virtual_card.h"

#include <alsa/asoundlib.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "tests/support/eventually.h"
#include "tests/support/vcard/card_folder.h"

VirtualCards::VirtualCards() {
    folder_ = std::filesystem::temp_directory_path() / "lectora-cards-XXXXXX";
    if (::mkdtemp(folder_.data()) == nullptr)
        std::abort();
    ::setenv("ALSA_CONFIG_PATH", LECTORA_ASOUND_CONF, 1);
    ::setenv("LECTORA_VCARD", folder_.c_str(), 1);
    snd_config_update_free_global();
}

VirtualCards::~VirtualCards() {
    ::unsetenv("LECTORA_VCARD");
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string VirtualCards::Folder(int card) const {
    return folder_ + "/card" + std::to_string(card);
}

std::string VirtualCards::StreamPath(int card, int stream, const char* extension) const {
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "/stream-%03d%s", stream, extension);
    return Folder(card) + name.data();
}

void VirtualCards::Insert(int card, const std::string& settings) {
    ::mkdir(Folder(card).c_str(), 0755);
    const std::string fresh = Folder(card) + "/settings.new";
    std::FILE* file = std::fopen(fresh.c_str(), "we");
    if (file == nullptr)
        std::abort();
    std::fwrite(settings.data(), 1, settings.size(), file);
    std::fclose(file);
    // The card must never see half of it.
    std::rename(fresh.c_str(), (Folder(card) + "/settings").c_str());
}

int VirtualCards::Streams(int card) const {
    int streams = 0;
    while (::access(StreamPath(card, streams + 1, ".wav").c_str(), F_OK) == 0)
        ++streams;
    return streams;
}

std::vector<std::int16_t> VirtualCards::Received(int card, int stream) const {
    constexpr std::size_t kHeaderBytes = 44;
    const std::string bytes = ReadSmallFile(StreamPath(card, stream, ".wav"));
    if (bytes.size() <= kHeaderBytes)
        return {};
    std::vector<std::int16_t> samples((bytes.size() - kHeaderBytes) / 2);
    std::memcpy(samples.data(), bytes.data() + kHeaderBytes, samples.size() * 2);
    return samples;
}

std::vector<std::int16_t> VirtualCards::Played(int card, int stream) const {
    constexpr std::size_t kChannelsAt = 22;
    // A player tells its end without waiting for the card to be closed, which says what it played.
    std::vector<CardEvent> events;
    Eventually([&] {
        events = Events(card, stream);
        return !events.empty() && events.back().name == "close";
    });
    const std::string header = ReadSmallFile(StreamPath(card, stream, ".wav"));
    if (header.size() <= kChannelsAt || events.empty())
        return {};
    const auto channels = static_cast<std::uint8_t>(header[kChannelsAt]);
    const std::vector<std::int16_t> received = Received(card, stream);
    std::vector<std::int16_t> played;
    CardEvent from;
    // Each prepare begins anew with an empty card.
    for (const CardEvent& event : events) {
        if (event.name != "prepare" && &event != &events.back())
            continue;
        const auto first = static_cast<std::ptrdiff_t>(from.received * channels);
        const auto count = static_cast<std::ptrdiff_t>((event.played - from.played) * channels);
        played.insert(played.end(), received.begin() + first, received.begin() + first + count);
        from = event;
    }
    return played;
}

std::vector<CardEvent> VirtualCards::Events(int card, int stream) const {
    std::istringstream lines(ReadSmallFile(StreamPath(card, stream, ".log")));
    std::vector<CardEvent> events;
    std::string line;
    while (std::getline(lines, line)) {
        CardEvent event;
        std::istringstream(line) >> event.microseconds >> event.name >> event.received >>
            event.played;
        events.push_back(event);
    }
    return events;
}

std::string VirtualCards::Mixer(int card) const {
    return ReadSmallFile(Folder(card) + "/mixer");
}
