// Foreign configuration files of "[section]" and "key=value" lines.
//
// Files are cached and changed in memory; they are written by a flush or when the process ends. Any
// thread. Nothing reports errors: a file that cannot be read is empty; one that cannot be written
// keeps its old content, and the change waits in memory for the next flush.
#pragma once

#include <string>

#include "foundation/date_time.h"

// out holds 260 bytes.
void LDatFileGetValue(const char* file, const char* section, const char* key,
                      const char* defaultValue, char* out);
// A null value deletes the key, a null key the whole section.
void LDatFileSetValue(const char* file, const char* section, const char* key, const char* value);
void LDatFileFlush(const char* file);  // that file, now; it stays cached
void LDatFileFlush();                  // all; files idle for ten minutes leave the cache

// Names a data file; holds nothing but the path.
class LDatFile {
public:
    explicit LDatFile(const char* path);  // cut at 259

    std::string GetString(const char* section, const char* key,
                          const char* defaultValue = "") const;
    void SetString(const char* section, const char* key, const char* value);
    void DeleteKey(const char* section, const char* key);
    void DeleteSection(const char* section);
    void Flush();

    // An absent or empty value is the default for all of these.
    int GetLong(const char* section, const char* key, int defaultValue) const;
    void SetLong(const char* section, const char* key, int value);
    // True for what begins with "t".
    bool GetBool(const char* section, const char* key, bool defaultValue) const;
    LDateTime GetDateTime(const char* section, const char* key, LDateTime defaultValue) const;
    void SetDateTime(const char* section, const char* key, LDateTime value);
    LDayTime GetDayTime(const char* section, const char* key, LDayTime defaultValue) const;
    void SetDayTime(const char* section, const char* key, LDayTime value);

    // Levels and sound times come from a folder above this one, so their types are the caller's:
    // Level has SetText(text) and Value() in whole decibels, Time has SetText(text) and
    // _GetText(out) of at most kTimeTextSize characters.
    static constexpr int kTimeTextSize = 262;
    static constexpr int kSilentLevel = -127;
    template <typename Level>
    Level GetDB(const char* section, const char* key, Level defaultValue) const {
        return Parsed(GetString(section, key), defaultValue);
    }
    template <typename Level>
    void SetDB(const char* section, const char* key, Level level) {
        const int decibels = level.Value();
        SetString(section, key,
                  decibels > kSilentLevel ? (std::to_string(decibels) + "dB").c_str() : "--dB");
    }
    template <typename Time>
    Time GetSoundTime(const char* section, const char* key, Time defaultValue) const {
        return Parsed(GetString(section, key), defaultValue);
    }
    template <typename Time>
    void SetSoundTime(const char* section, const char* key, Time time) {
        char text[kTimeTextSize];
        time._GetText(text);
        SetString(section, key, text);
    }

    // A list is the keys <prefix><index><suffix> with their number under <prefix>count.
    int GetListCount(const char* section, const char* prefix) const;
    void SetListCount(const char* section, const char* prefix, int count);
    int AddList(const char* section, const char* prefix);  // zero-based index of the new item
    void MoveListItem(const char* section, const char* prefix, const char* suffix, int from,
                      int to);

private:
    template <typename Value>
    static Value Parsed(const std::string& text, Value defaultValue) {
        if (text.empty())
            return defaultValue;
        Value value;
        value.SetText(text.c_str());
        return value;
    }

    std::string path_;
};
