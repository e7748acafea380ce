#include "speech/voice_table.h"

#include <glib.h>

#include <algorithm>
#include <mutex>

#include "foundation/settings/setting.h"
#include "speech/language_voices.h"
#include "speech/text_language.h"
#include "speech/voice_finder.h"

namespace {

constexpr UserSetting<const char*> kVoiceSetting{"Settings", "Voice", ""};
// Earlier versions kept the place in the engine's list, which changes with what is installed.
constexpr UserSetting<int> kVoiceNumberSetting{"Settings", "TextToSpeechVoice", -1};

// The table is of the process, and so is its lock.
struct Table {
    std::mutex mutex;
    std::vector<Voice> voices;
};
Table& TheTable() {
    static Table table;
    return table;
}

// As much of it as a setting holds.
std::string StoredKey(const Voice& voice) {
    return KeyOf(voice).substr(0, kTextBufferSize - 1);
}

template <typename Test>
int FirstVoice(Test test) {
    const std::vector<Voice> voices = KnownVoices();
    const auto found = std::ranges::find_if(voices, test);
    return found == voices.end() ? -1 : static_cast<int>(found - voices.begin());
}

int FirstOfUsersLanguage() {
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name) {
        const std::string_view locale = *name;  // "de_AT.UTF-8"
        const std::size_t dash = locale.find('_');
        const std::string_view region =
            dash == std::string_view::npos ? "" : locale.substr(dash + 1, 2);
        if (const int index = FindVoiceOfLanguage(LanguageOnly(locale), region); index >= 0)
            return index;
    }
    return FindVoiceOfLanguage("en", "");
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

int ChosenVoice() {
    const std::string stored = kVoiceSetting.Get();
    int index = -1;
    if (!stored.empty()) {
        index = FirstVoice([&](const Voice& voice) { return StoredKey(voice) == stored; });
    } else if (const int number = kVoiceNumberSetting.Get();
               number >= 0 && number < CountVoices()) {
        index = number;
        KeepChosenVoice(index);
    }
    if (index < 0)
        index = FirstOfUsersLanguage();
    return index < 0 && CountVoices() > 0 ? 0 : index;
}

void KeepChosenVoice(int index) {
    if (index < 0 || index >= CountVoices())
        return;
    const Voice voice = VoiceAt(index);
    kVoiceSetting.Set(StoredKey(voice));
    KeepVoiceForLanguage(voice);
    KeepVoiceUsed(voice);
}
