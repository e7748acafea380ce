// A settings file that may have sub-records: files in a folder named after it.
#pragma once

#include "foundation/settings/settings_file.h"

// Owner's thread only, like its base.
class LSettingsRecord : public LSettingsFile {
public:
    LSettingsRecord() = default;
    explicit LSettingsRecord(const char* path) : LSettingsFile(path) {}
    // The machine-wide record <name> of a section. Its folders are made by whoever writes it first.
    LSettingsRecord(const char* section, const char* name);
    // The present user's.
    static LSettingsRecord OfUser(const char* section, const char* name);

    // Decimal text; absent or empty is the default, junk reads as its leading number or 0.
    int GetInt(const char* key, int defaultValue);
    void SetInt(const char* key, int value);
    bool GetBool(const char* key, bool defaultValue);  // "0..." is false, any other text true
    void SetBool(const char* key, bool value);

    bool TestSubRecordExists(const char* name) const;
    // Points out at the sub-record; creates the folder, not the file.
    void OpenSubRecord(const char* name, LSettingsRecord& out) const;
    // The same with the file, empty; true when it was not there before.
    bool CreateSubRecord(const char* name, LSettingsRecord& out) const;
    void DeleteSubRecord(const char* name);  // the sub-record's own sub-records stay
};
