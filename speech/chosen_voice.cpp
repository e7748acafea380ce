#include "speech/chosen_voice.h"

#include <glib.h>

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/settings/setting.h"
#include "speech/language_voices.h"
#include "speech/text_language.h"
#include "speech/voice_finder.h"
#include "speech/voice_table.h"

namespace {

constexpr UserSetting<const char*> kVoiceSetting{"Settings", "Voice", ""};
// Earlier versions kept the place in the engine's list, which changes with what is installed.
constexpr UserSetting<int> kVoiceNumberSetting{"Settings", "TextToSpeechVoice", -1};

// As much of it as a setting holds.
std::string StoredKey(const Voice& voice) {
    return KeyOf(voice).substr(0, kTextBufferSize - 1);
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

int ChosenVoice() {
    const std::string stored = kVoiceSetting.Get();
    int index = -1;
    if (!stored.empty()) {
        const std::vector<Voice> voices = KnownVoices();
        const auto found = std::ranges::find(voices, stored, StoredKey);
        index = found == voices.end() ? -1 : static_cast<int>(found - voices.begin());
    } else if (const int number = kVoiceNumberSetting.Get();
               number >= 0 && number < CountVoices()) {
        index = number;
        KeepChosenVoice(index);
    }
    if (index < 0)
        index = FirstOfUsersLanguage();
    return index < 0 && CountVoices() > 0 ? 0 : index;
}

bool IsChosenVoiceMissing() {
    const std::string stored = kVoiceSetting.Get();
    const std::vector<Voice> voices = KnownVoices();
    return !stored.empty() && std::ranges::find(voices, stored, StoredKey) == voices.end();
}

void KeepChosenVoice(int index) {
    if (index < 0 || index >= CountVoices())
        return;
    const Voice voice = VoiceAt(index);
    kVoiceSetting.Set(StoredKey(voice));
    KeepVoiceForLanguage(voice);
    KeepVoiceUsed(voice);
}
