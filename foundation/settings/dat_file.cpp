#include "foundation/settings/dat_file.h"

#include <string_view>

#include "foundation/files/text_buffer.h"
#include "foundation/numbers.h"
#include "foundation/settings/dat_file_native.h"
#include "foundation/threads/ticks.h"

namespace {

std::string CountKey(const char* prefix) {
    return std::string(prefix) + "count";
}

std::string ItemKey(const char* prefix, int index, const char* suffix) {
    return prefix + std::to_string(index) + suffix;
}

}  // namespace

void LDatFileGetValue(const char* file, const char* section, const char* key,
                      const char* defaultValue, char* out) {
    gDatFileNativeSystem.GetValue(file, section, key, defaultValue, out);
}

void LDatFileSetValue(const char* file, const char* section, const char* key, const char* value) {
    gDatFileNativeSystem.SetValue(file, section, key, value);
}

void LDatFileFlush(const char* file) {
    gDatFileNativeSystem.Flush(file);
}

void LDatFileFlush() {
    gDatFileNativeSystem.Flush(GetTickCount());
}

LDatFile::LDatFile(const char* path)
    : path_(std::string_view(path).substr(0, kTextBufferSize - 1)) {}

std::string LDatFile::GetString(const char* section, const char* key,
                                const char* defaultValue) const {
    char value[kTextBufferSize];
    LDatFileGetValue(path_.c_str(), section, key, defaultValue, value);
    return value;
}

void LDatFile::SetString(const char* section, const char* key, const char* value) {
    LDatFileSetValue(path_.c_str(), section, key, value);
}

void LDatFile::DeleteKey(const char* section, const char* key) {
    SetString(section, key, nullptr);
}

void LDatFile::DeleteSection(const char* section) {
    SetString(section, nullptr, nullptr);
}

void LDatFile::Flush() {
    LDatFileFlush(path_.c_str());
}

int LDatFile::GetLong(const char* section, const char* key, int defaultValue) const {
    const std::string text = GetString(section, key);
    return text.empty() ? defaultValue : DecimalFromText(text.c_str());
}

void LDatFile::SetLong(const char* section, const char* key, int value) {
    SetString(section, key, std::to_string(value).c_str());
}

bool LDatFile::GetBool(const char* section, const char* key, bool defaultValue) const {
    // Session files write "true"; "1" and "yes" do not count.
    return GetString(section, key, defaultValue ? "true" : "").starts_with('t');
}

LDateTime LDatFile::GetDateTime(const char* section, const char* key,
                                LDateTime defaultValue) const {
    return Parsed(GetString(section, key), defaultValue);
}

void LDatFile::SetDateTime(const char* section, const char* key, LDateTime value) {
    SetString(section, key, value.Text().c_str());
}

LDayTime LDatFile::GetDayTime(const char* section, const char* key, LDayTime defaultValue) const {
    return Parsed(GetString(section, key), defaultValue);
}

void LDatFile::SetDayTime(const char* section, const char* key, LDayTime value) {
    SetString(section, key, value.Text().c_str());
}

int LDatFile::GetListCount(const char* section, const char* prefix) const {
    return GetLong(section, CountKey(prefix).c_str(), 0);
}

void LDatFile::SetListCount(const char* section, const char* prefix, int count) {
    SetLong(section, CountKey(prefix).c_str(), count);
}

int LDatFile::AddList(const char* section, const char* prefix) {
    const int count = GetListCount(section, prefix);
    SetListCount(section, prefix, count + 1);
    return count;
}

void LDatFile::MoveListItem(const char* section, const char* prefix, const char* suffix, int from,
                            int to) {
    const std::string source = ItemKey(prefix, from, suffix);
    const std::string value = GetString(section, source.c_str());
    DeleteKey(section, source.c_str());
    SetString(section, ItemKey(prefix, to, suffix).c_str(), value.c_str());
}
