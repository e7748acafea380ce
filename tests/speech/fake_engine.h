// Speech engines of shell script, put in front of the real one in PATH.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "formats/wave_file.h"

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline std::size_t CountFiles(const std::string& folder, const std::string& beginning = "") {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        count += entry.path().filename().string().starts_with(beginning);
    return count;
}

template <typename Condition>
bool Eventually(Condition condition) {
    for (int i = 0; i < 2000 && !condition(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}

// An ended process counts as gone, however long its parent takes to collect it.
inline bool IsGone(const std::string& process) {
    const std::string status = ReadFile("/proc/" + process + "/stat");
    const std::size_t name = status.rfind(')');
    return name == std::string::npos || status.compare(name, 3, ") Z") == 0;
}

// Runs checks in a process of their own, because a process asks for its voices only once.
template <typename Checks>
void InFreshProcess(Checks checks) {
    ::signal(SIGCHLD,
             SIG_DFL);  // an earlier voice query had it ignored, which hides the child's end
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            checks();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

// A folder of its own; PATH leads to its "bin" folder, and only there when `alone`.
class FakeEngine {
public:
    explicit FakeEngine(bool alone = false) {
        char name[] = "/tmp/lectora-speech-XXXXXX";
        folder_ = ::mkdtemp(name);
        std::filesystem::create_directory(folder_ + "/bin");
        const char* path = std::getenv("PATH");
        path_ = path ? path : "/usr/bin:/bin";
        ::setenv("PATH", (folder_ + "/bin" + (alone ? "" : ":" + path_)).c_str(), 1);
        Script("festival", "printf 'banner\\n\\nfestival> (one two)\\nfestival> '");
        LSoundSink sink = LWaveFile::OpenSinkPCM((folder_ + "/good.wav").c_str(), 16000, 1, 16, 0);
        const int samples[1000] = {1600};
        sink->Write(samples, 1000);
    }
    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;
    ~FakeEngine() {
        ::setenv("PATH", path_.c_str(), 1);
        std::filesystem::remove_all(folder_);
    }

    const std::string& Folder() const { return folder_; }

    // Body of a shell script; "$here" is the folder.
    void Script(const std::string& program, const std::string& body) const {
        const std::string path = folder_ + "/bin/" + program;
        // A shell that still runs the old script keeps reading the old file.
        const std::string fresh = folder_ + "/script";
        std::ofstream(fresh) << "#!/bin/sh\nhere=" << folder_ << "\n" << body << "\n";
        ::chmod(fresh.c_str(), 0755);
        std::filesystem::rename(fresh, path);
    }
    // Arguments of text2wave: $3 the text file, $5 the sound file.
    void Speak(const std::string& body) const { Script("text2wave", body); }

private:
    std::string folder_;
    std::string path_;
};
