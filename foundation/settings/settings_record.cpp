#include "foundation/settings/settings_record.h"
#include "foundation/files/settings_folders.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <string>
#include <tuple>

#include "foundation/files/store_file.h"
#include "foundation/files/text_buffer.h"
#include "foundation/numbers.h"
#include "foundation/settings/settings.h"

namespace {

// P_/<name>, without making the folder.
void SubRecordPath(char (&out)[kTextBufferSize], const char* path, const char* name) {
    char folder[kTextBufferSize];
    LSettingGetSubListPath(folder, path);
    LSettingSectionFile(out, folder, name);
}

std::string RecordPath(const std::string& store, const char* section, const char* name) {
    char sectionFile[kTextBufferSize];
    char path[kTextBufferSize];
    LSettingSectionFile(sectionFile, store.c_str(), section);
    SubRecordPath(path, sectionFile, name);
    return path;
}

}  // namespace

LSettingsRecord::LSettingsRecord(const char* section, const char* name) {
    ChangeFilePath(RecordPath(MachineSettingsFolder(), section, name).c_str());
}

LSettingsRecord LSettingsRecord::OfUser(const char* section, const char* name) {
    return LSettingsRecord(RecordPath(UserSettingsFolder(), section, name).c_str());
}

int LSettingsRecord::GetInt(const char* key, int defaultValue) {
    char text[kTextBufferSize];
    GetString(key, "", text);
    return *text ? DecimalFromText(text) : defaultValue;
}

void LSettingsRecord::SetInt(const char* key, int value) {
    SetString(key, std::to_string(value).c_str());
}

bool LSettingsRecord::GetBool(const char* key, bool defaultValue) {
    char text[kTextBufferSize];
    GetString(key, "", text);
    return *text ? *text != '0' : defaultValue;
}

void LSettingsRecord::SetBool(const char* key, bool value) {
    SetString(key, value ? "1" : "0");
}

bool LSettingsRecord::TestSubRecordExists(const char* name) const {
    char path[kTextBufferSize];
    SubRecordPath(path, Path(), name);
    return access(path, F_OK) == 0;
}

void LSettingsRecord::OpenSubRecord(const char* name, LSettingsRecord& out) const {
    char path[kTextBufferSize];
    LSettingSubListSection(path, Path(), name);
    out.ChangeFilePath(path);
}

bool LSettingsRecord::CreateSubRecord(const char* name, LSettingsRecord& out) const {
    OpenSubRecord(name, out);
    const UniqueFd file = OpenStoreFile(out.Path(), O_RDWR | O_CREAT | O_EXCL);
    if (!file.IsOpen())
        return false;
    // A reader may have come in between: the lock orders it, the cut empties what it cannot have
    // written.
    static_cast<void>(flock(file.Get(), LOCK_EX | LOCK_NB));
    std::ignore = ftruncate(file.Get(), 0);
    return true;
}

void LSettingsRecord::DeleteSubRecord(const char* name) {
    char path[kTextBufferSize];
    char folder[kTextBufferSize];
    SubRecordPath(path, Path(), name);
    unlink(path);
    LSettingGetSubListPath(folder, path);
    rmdir(folder);
}
