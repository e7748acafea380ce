// One value of a settings store: section, key, type and default in one constant, so that no call
// spells them. A folder keeps its constants in one header of its own, settings_keys.h:
//
//   constexpr UserSetting<int> kBitRate{"MP3", "BitRate", 128};
//
//   encoder.SetBitRate(kBitRate.Get());
//   kBitRate.Set(192);
//
// A LayeredSetting is the user's where the user has chosen, else the machine's, where an
// administrator may have set a default. An AdministratorSetting counts only where nobody but root
// could have written it.
//
// Types: int (decimal text; empty is the default), bool ("1" and "0"; empty reads as off) and
// const char* (at most 259 bytes; Get answers a std::string). Any thread; each access goes to the
// file.
#pragma once

#include <string>
#include <type_traits>

#include "foundation/files/text_buffer.h"
#include "foundation/numbers.h"
#include "foundation/settings/settings.h"

template <typename Store, typename T>
struct StoredSetting {
    static_assert(std::is_same_v<T, int> || std::is_same_v<T, bool> ||
                  std::is_same_v<T, const char*>);
    using Value = std::conditional_t<std::is_same_v<T, const char*>, std::string, T>;

    const char* section;
    const char* key;
    T defaultValue;

    Value Get() const {
        if constexpr (std::is_same_v<T, int>) {
            const std::string text = Text("");
            return text.empty() ? defaultValue : DecimalFromText(text.c_str());
        } else if constexpr (std::is_same_v<T, bool>) {
            const std::string text = Text(defaultValue ? "1" : "0");
            return !text.empty() && text != "0";
        } else {
            return Text(defaultValue);
        }
    }

    void Set(const Value& value) const {
        if constexpr (std::is_same_v<T, int>)
            Store::Set(section, key, std::to_string(value).c_str());
        else if constexpr (std::is_same_v<T, bool>)
            Store::Set(section, key, value ? "1" : "0");
        else
            Store::Set(section, key, value.c_str());
    }

    // Afterwards the default holds. Also in a section that this process has not used before.
    void Delete() const { Store::Set(section, key, nullptr); }

private:
    std::string Text(const char* fallback) const {
        char text[kTextBufferSize];
        Store::Get(section, key, fallback, text);
        return text;
    }
};

struct UserSettingsStore {
    static void Get(const char* section, const char* key, const char* fallback, char* out) {
        gLUserSettings.GetString(section, key, fallback, out);
    }
    static void Set(const char* section, const char* key, const char* value) {
        gLUserSettings.SetString(section, key, value);
    }
};
struct MachineSettingsStore {
    static void Get(const char* section, const char* key, const char* fallback, char* out) {
        gLLocalSettings.GetString(section, key, fallback, out);
    }
    static void Set(const char* section, const char* key, const char* value) {
        gLLocalSettings.SetString(section, key, value);
    }
};
struct LayeredSettingsStore : UserSettingsStore {
    static void Get(const char* section, const char* key, const char* fallback, char* out) {
        char machines[kTextBufferSize];
        MachineSettingsStore::Get(section, key, fallback, machines);
        UserSettingsStore::Get(section, key, machines, out);
    }
};
struct AdministratorSettingsStore : MachineSettingsStore {
    static void Get(const char* section, const char* key, const char* fallback, char* out) {
        if (gLLocalSettings.CouldOnlyRootWrite(section))
            MachineSettingsStore::Get(section, key, fallback, out);
        else
            CopyText(out, kTextBufferSize, fallback);
    }
};

template <typename T>
using UserSetting = StoredSetting<UserSettingsStore, T>;
template <typename T>
using MachineSetting = StoredSetting<MachineSettingsStore, T>;
template <typename T>
using LayeredSetting = StoredSetting<LayeredSettingsStore, T>;
template <typename T>
using AdministratorSetting = StoredSetting<AdministratorSettingsStore, T>;
