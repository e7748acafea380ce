// One section of the settings: a file of key=value lines, shared between processes.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "foundation/settings/settings_entries.h"

// Each access opens the file, locks it and loads it again when its time or size changed, so what
// other processes wrote is seen. Nothing reports errors: a file that cannot be opened reads as the
// default, and what is set is lost. Keys are lowered and end at
// "=" or a line break; an empty one is not written. Not for several threads at once.
class LSettingsFile {
public:
    LSettingsFile() = default;
    explicit LSettingsFile(const char* path) { ChangeFilePath(path); }
    LSettingsFile(const LSettingsFile& other) : path_(other.path_) {}  // the path, nothing cached
    LSettingsFile& operator=(const LSettingsFile& other);

    void ChangeFilePath(const char* path);  // cut at 259; drops what is cached
    const char* Path() const { return path_.c_str(); }

    // out holds 260 bytes; receives the value or the default (cut to 259).
    void GetString(const char* key, const char* defaultValue, char* out);
    void SetString(const char* key,
                   const char* value);      // null deletes; an equal value is not written
    bool TestFieldExists(const char* key);  // the only look-up that ignores case

    // Over an open descriptor of the file that the caller has locked.
    void Load(int fd);
    void Save(int fd);
    void ReloadIfChanged(int fd);

private:
    struct Stamps {
        std::uint32_t time = 0;  // seconds; both 0 when nothing is cached
        std::uint32_t size = 0;
        bool operator==(const Stamps&) const = default;
    };
    static Stamps StampsOf(int fd);
    void Forget();
    void SaveOver(int fd, const std::string& oldText);

    std::string path_;
    LSettingsEntries entries_;
    Stamps stamps_;
};
