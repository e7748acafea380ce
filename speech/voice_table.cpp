#include "speech/voice_table.h"

#include <algorithm>
#include <mutex>

#include "foundation/settings/setting.h"

namespace {

// The table is of the process, and so is its lock.
struct Table {
    std::mutex mutex;
    std::vector<Voice> voices;
};
Table& TheTable() {
    static Table table;
    return table;
}

template <typename Test>
int FirstVoice(Test test) {
    const std::vector<Voice> voices = KnownVoices();
    const auto found = std::ranges::find_if(voices, test);
    return found == voices.end() ? -1 : static_cast<int>(found - voices.begin());
}

}  // namespace

std::string KeyOf(const Voice& voice) {
    return voice.engine + ":" + voice.name;
}

std::string SettingsKeyOf(const Voice& voice) {
    // Festival's were kept by their names alone.
    std::string key = voice.engine == "festival" ? voice.name : KeyOf(voice);
    const auto isBad = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '='; };
    std::ranges::replace_if(key, isBad, '_');
    return key.substr(0, kTextBufferSize - 1);
}

void AddVoices(const std::vector<Voice>& voices) {
    Table& table = TheTable();
    const std::lock_guard<std::mutex> lock(table.mutex);
    for (const Voice& voice : voices) {
        const auto isSame = [&](const Voice& known) { return KeyOf(known) == KeyOf(voice); };
        if (std::ranges::none_of(table.voices, isSame))
            table.voices.push_back(voice);
    }
}

std::vector<Voice> KnownVoices() {
    Table& table = TheTable();
    const std::lock_guard<std::mutex> lock(table.mutex);
    return table.voices;
}

int CountVoices() {
    Table& table = TheTable();
    const std::lock_guard<std::mutex> lock(table.mutex);
    return static_cast<int>(table.voices.size());
}

Voice VoiceAt(int index) {
    Table& table = TheTable();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const int count = static_cast<int>(table.voices.size());
    if (count == 0)
        return {};
    return table.voices[static_cast<std::size_t>(std::clamp(index, 0, count - 1))];
}

int FindVoice(std::string_view wanted) {
    int index = FirstVoice([wanted](const Voice& voice) { return KeyOf(voice) == wanted; });
    if (index < 0)
        index = FirstVoice([wanted](const Voice& voice) { return voice.name == wanted; });
    if (index < 0)
        index = FirstVoice([wanted](const Voice& voice) { return voice.title == wanted; });
    return index;
}
