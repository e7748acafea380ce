// The two settings stores: per user ("$HOME/.quillon/lectora") and machine-wide
// ("/opt/quillon/lectora/etc"). The machine's is root's to write: what stands there is the
// administrator's default. Their folders are made by whoever writes first.
#pragma once

#include <forward_list>
#include <mutex>
#include <string>

#include "foundation/settings/settings_file.h"

// A folder of section files. Any thread: one mutex is held across each whole operation. `out` holds
// 260 bytes.
class LSettingsSectionList {
public:
    explicit LSettingsSectionList(const char* folder);
    LSettingsSectionList(const LSettingsSectionList&) = delete;
    LSettingsSectionList& operator=(const LSettingsSectionList&) = delete;

    void GetString(const char* section, const char* key, const char* defaultValue, char* out);
    void SetString(const char* section, const char* key, const char* value);  // null deletes
    // Does nothing in a section that was not read or set through this list before: callers read
    // before they delete.
    void DeleteItem(const char* section, const char* key);
    // Of a section of the machine's (store_file.h).
    bool CouldOnlyRootWrite(const char* section) const;

private:
    struct Section {
        std::string name;  // as first given
        LSettingsFile file;
    };
    LSettingsFile* FindSection(const char* section);
    LSettingsFile& OpenSection(const char* section);

    std::mutex mutex_;
    std::string folder_;
    std::forward_list<Section> sections_;  // newest first
};

class LUserSettings : public LSettingsSectionList {
public:
    LUserSettings();
};
class LLocalSettings : public LSettingsSectionList {
public:
    LLocalSettings();
};

extern LLocalSettings gLLocalSettings;  // built first, both before main
extern LUserSettings gLUserSettings;

// --- per user
void _LUserSettingGetString(const char* section, const char* key, const char* defaultValue,
                            char* out);
void LUserSettingSetString(const char* section, const char* key, const char* value);
void LUserSettingDeleteItem(const char* section, const char* key);
std::string LUserSettingGet(const char* section, const char* key, const char* defaultValue = "");
int LUserSettingGetInt(const char* section, const char* key, int defaultValue);
void LUserSettingSetInt(const char* section, const char* key, int value);

// --- machine-wide
void _LSettingGetString(const char* section, const char* key, const char* defaultValue, char* out);
void LSettingSetString(const char* section, const char* key, const char* value);
void LSettingDeleteItem(const char* section, const char* key);
// Kept as plain text.
void LSettingGetPassword(const char* section, const char* key, const char* defaultValue, char* out);
std::string LSettingGet(const char* section, const char* key, const char* defaultValue = "");

// --- where files stand; `out` holds 260 bytes
void LSettingsGetUserFolder(char* out);    // created when missing
void LSettingsGetSharedFolder(char* out);  // created when missing
void LSettingSectionFile(char* out, const char* folder, const char* section);
void LSettingGetSubListPath(char* out, const char* path);
// Creates the sub-list folder.
void LSettingSubListSection(char* out, const char* path, const char* name);
