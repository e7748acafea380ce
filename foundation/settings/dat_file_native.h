// The cache of sectioned text files ("[section]" lines over "key=value" lines) behind LDatFile.
#pragma once

#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

// Names and keys are found without regard to case and keep the case in which they were first
// stored. Texts are cut at 259 characters.
class LDatFileNativeSection {
public:
    explicit LDatFileNativeSection(std::string_view name) : name_(name) {}
    LDatFileNativeSection(const LDatFileNativeSection&) = delete;
    LDatFileNativeSection& operator=(const LDatFileNativeSection&) = delete;

    const std::string& Name() const { return name_; }
    const std::string* Find(std::string_view key) const;  // null when absent
    void SetValue(std::string_view key, std::string_view value);
    void DeleteKey(std::string_view key);
    void AppendTo(std::string& text) const;

private:
    using Entry = std::pair<std::string, std::string>;

    std::string name_;
    std::list<Entry> entries_;                                           // file order
    std::unordered_map<std::string, std::list<Entry>::iterator> index_;  // by lowered key
};

// One file: loaded whole, changed in memory, saved whole. Not for several threads at once.
class LDatFileNativeFile {
public:
    LDatFileNativeFile(std::string_view path, std::uint32_t now) : path_(path), lastAccess_(now) {}

    const std::string& Path() const { return path_; }
    bool IsIdle(std::uint32_t now, std::uint32_t milliseconds) const {
        return now - lastAccess_ >= milliseconds;  // unsigned: right across a wrap of the counter
    }

    void Load();  // what is missing or cannot be read is an empty file
    // What is dirty. A failure leaves the old content, and the file dirty; true when nothing is
    // left to save.
    bool Save();

    const std::string* GetValue(std::string_view section, std::string_view key, std::uint32_t now);
    // Texts end at a line break. A null value deletes the key, a null key the section. Even what
    // changes nothing makes the file dirty.
    void SetValue(std::string_view section, const char* key, const char* value, std::uint32_t now);

private:
    void Parse(std::string_view text);
    LDatFileNativeSection* Find(std::string_view section);
    LDatFileNativeSection& FindOrAppend(std::string_view section);
    std::string Text() const;

    std::string path_;
    std::uint32_t lastAccess_;  // milliseconds of the tick counter
    bool dirty_ = false;
    bool unreadable_ = false;  // there, but its content is not known: never written over
    std::list<LDatFileNativeSection> sections_;  // file order
    std::unordered_map<std::string, std::list<LDatFileNativeSection>::iterator> index_;
};

// Any thread. Destruction, at process exit, saves what is dirty.
class LDatFileNativeSystem {
public:
    static constexpr std::uint32_t kIdleMilliseconds = 600000;

    LDatFileNativeSystem() = default;
    LDatFileNativeSystem(const LDatFileNativeSystem&) = delete;
    LDatFileNativeSystem& operator=(const LDatFileNativeSystem&) = delete;
    ~LDatFileNativeSystem();

    // out holds 260 bytes.
    void GetValue(const char* file, const char* section, const char* key, const char* defaultValue,
                  char* out);
    void SetValue(const char* file, const char* section, const char* key, const char* value);
    void Flush(const char* file);
    // Saves all and takes idle files out; one that cannot be saved stays, and the log tells.
    void Flush(std::uint32_t now);
    bool IsCached(const char* file);

private:
    LDatFileNativeFile* Find(std::string_view file);
    LDatFileNativeFile& Open(const char* file, std::uint32_t now);

    std::mutex mutex_;
    std::list<LDatFileNativeFile> files_;  // newest first
};

extern LDatFileNativeSystem gDatFileNativeSystem;
