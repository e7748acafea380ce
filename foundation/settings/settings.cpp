#include "foundation/settings/settings.h"
#include "foundation/files/settings_folders.h"

#include "foundation/ascii.h"
#include "foundation/files/file.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/store_file.h"
#include "foundation/files/text_buffer.h"
#include "foundation/numbers.h"

LLocalSettings gLLocalSettings;
LUserSettings gLUserSettings;

LSettingsSectionList::LSettingsSectionList(const char* folder) : folder_(folder) {}

LUserSettings::LUserSettings() : LSettingsSectionList(UserSettingsFolder().c_str()) {}

LLocalSettings::LLocalSettings() : LSettingsSectionList(MachineSettingsFolder().c_str()) {}

LSettingsFile* LSettingsSectionList::FindSection(const char* section) {
    const std::string_view name = std::string_view(section).substr(0, kSettingsTextLimit);
    for (Section& known : sections_) {
        if (EqualsNoCase(known.name, name))
            return &known.file;
    }
    return nullptr;
}

LSettingsFile& LSettingsSectionList::OpenSection(const char* section) {
    if (LSettingsFile* known = FindSection(section))
        return *known;
    char path[kTextBufferSize];
    LSettingSectionFile(path, folder_.c_str(), section);
    const std::string_view name = std::string_view(section).substr(0, kSettingsTextLimit);
    sections_.push_front({std::string(name), LSettingsFile(path)});
    return sections_.front().file;
}

void LSettingsSectionList::GetString(const char* section, const char* key, const char* defaultValue,
                                     char* out) {
    const std::lock_guard lock(mutex_);
    OpenSection(section).GetString(key, defaultValue, out);
}

void LSettingsSectionList::SetString(const char* section, const char* key, const char* value) {
    const std::lock_guard lock(mutex_);
    OpenSection(section).SetString(key, value);
}

bool LSettingsSectionList::CouldOnlyRootWrite(const char* section) const {
    char path[kTextBufferSize];
    LSettingSectionFile(path, folder_.c_str(), section);
    return ::CouldOnlyRootWrite(path);
}

void LSettingsSectionList::DeleteItem(const char* section, const char* key) {
    const std::lock_guard lock(mutex_);
    if (LSettingsFile* file = FindSection(section))
        file->SetString(key, nullptr);
}

void _LUserSettingGetString(const char* section, const char* key, const char* defaultValue,
                            char* out) {
    gLUserSettings.GetString(section, key, defaultValue, out);
}

void LUserSettingSetString(const char* section, const char* key, const char* value) {
    gLUserSettings.SetString(section, key, value);
}

void LUserSettingDeleteItem(const char* section, const char* key) {
    gLUserSettings.DeleteItem(section, key);
}

std::string LUserSettingGet(const char* section, const char* key, const char* defaultValue) {
    char value[kTextBufferSize];
    gLUserSettings.GetString(section, key, defaultValue, value);
    return value;
}

int LUserSettingGetInt(const char* section, const char* key, int defaultValue) {
    const std::string value = LUserSettingGet(section, key);
    return value.empty() ? defaultValue : DecimalFromText(value.c_str());
}

void LUserSettingSetInt(const char* section, const char* key, int value) {
    LUserSettingSetString(section, key, std::to_string(value).c_str());
}

void _LSettingGetString(const char* section, const char* key, const char* defaultValue, char* out) {
    gLLocalSettings.GetString(section, key, defaultValue, out);
}

void LSettingSetString(const char* section, const char* key, const char* value) {
    gLLocalSettings.SetString(section, key, value);
}

void LSettingDeleteItem(const char* section, const char* key) {
    gLLocalSettings.DeleteItem(section, key);
}

void LSettingGetPassword(const char* section, const char* key, const char* defaultValue,
                         char* out) {
    gLLocalSettings.GetString(section, key, defaultValue, out);
}

std::string LSettingGet(const char* section, const char* key, const char* defaultValue) {
    char value[kTextBufferSize];
    gLLocalSettings.GetString(section, key, defaultValue, value);
    return value;
}

void LSettingsGetUserFolder(char* out) {
    CopyText(out, kTextBufferSize, UserSettingsFolder());
    MakeStoreFolder(out);
}

void LSettingsGetSharedFolder(char* out) {
    LFile::GetSharedDataFolderApp(out);
    MakeStoreFolder(out);
}

void LSettingSectionFile(char* out, const char* folder, const char* section) {
    CopyText(out, kTextBufferSize, folder);
    LFile::_FilePathCat(out, ToLower(section).c_str());
}

void LSettingGetSubListPath(char* out, const char* path) {
    CopyText(out, kTextBufferSize, std::string(path) + "_");
}

void LSettingSubListSection(char* out, const char* path, const char* name) {
    char folder[kTextBufferSize];
    LSettingGetSubListPath(folder, path);
    MakeStoreFolder(folder);
    LSettingSectionFile(out, folder, name);
}
