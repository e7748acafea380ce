// A folder of a test's own, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

class ScratchFolder {
public:
    ScratchFolder() {
        char name[] = "/tmp/lectora-test-XXXXXX";
        path_ = ::mkdtemp(name);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& Path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    static std::string ReadFile(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream text;
        // Iterators would throw where the process that the file tells of ends while it is read.
        text << file.rdbuf();
        return std::move(text).str();
    }
    std::string Read(const std::string& name) const { return ReadFile(path_ + "/" + name); }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(path_ + "/" + name, std::ios::binary) << text;
    }
    // A shell script that can be run as a program.
    std::string WriteProgram(const std::string& name, const std::string& script) const {
        Write(name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(path_ + "/" + name, std::filesystem::perms::owner_all);
        return path_ + "/" + name;
    }
    bool Has(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path_ + "/" + name));
    }

private:
    std::string path_;
};

// Sets (or with null unsets) an environment variable for its own lifetime.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            had_ = true;
            old_ = old;
        }
        Set(value);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() { Set(had_ ? old_.c_str() : nullptr); }

private:
    void Set(const char* value) const {
        if (value)
            ::setenv(name_, value, 1);
        else
            ::unsetenv(name_);
    }
    const char* name_;
    bool had_ = false;
    std::string old_;
};
