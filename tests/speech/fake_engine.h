// Speech engines of shell script, put in front of the real one in PATH.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <string>

#include "formats/wave_file.h"
#include "foundation/threads/progress.h"
#include "tests/support/eventually.h"
#include "tests/support/scratch_folder.h"

inline std::size_t CountFiles(const std::string& folder, const std::string& beginning = "") {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        count += entry.path().filename().string().starts_with(beginning);
    return count;
}

// Whether all processes end whose ids are the lines of a file. An ended process counts as gone,
// however long its parent takes to collect it.
inline bool ProcessesEnd(const std::string& idFile) {
    std::ifstream ids(idFile);
    for (std::string id; std::getline(ids, id);) {
        const bool ends = Eventually([&id] {
            const std::string status = ScratchFolder::ReadFile("/proc/" + id + "/stat");
            const std::size_t name = status.rfind(')');
            return name == std::string::npos || status.compare(name, 3, ") Z") == 0;
        });
        if (!ends)
            return false;
    }
    return true;
}

// What a process of a death test has found wrong is told by nobody else.
inline void TellFailures() {
    const testing::TestResult* result =
        testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result->total_part_count(); ++i) {
        const testing::TestPartResult& part = result->GetTestPartResult(i);
        if (part.failed())
            std::cerr << part << '\n';
    }
}

// Runs checks in a process of their own, because a process asks for its voices only once.
template <typename Checks>
void InFreshProcess(Checks checks) {
    // An earlier voice query had it ignored, which hides the child's end.
    ::signal(SIGCHLD, SIG_DFL);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            checks();
            TellFailures();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

// Gives up waiting for an engine once that is enough, or cancels as the user would.
class ImpatientProgress : public LSilentProgress {
public:
    explicit ImpatientProgress(
        std::function<bool()> isEnough = [] { return false; }, bool cancel = false)
        : isEnough_(std::move(isEnough)), cancel_(cancel) {}
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override {
        limit = milliseconds;
        while (!signal.WaitSignal(10))
            if (isEnough_())
                return cancel_ ? kProcessStopped : kProcessFailed;
        return kProcessDone;
    }
    std::optional<unsigned int> limit;

private:
    std::function<bool()> isEnough_;
    bool cancel_;
};

// A folder of its own; PATH leads to its "bin" folder, and only there when `alone`.
class FakeEngine : public ScratchFolder {
public:
    explicit FakeEngine(bool alone = false)
        : searched_(
              "PATH",
              (*this / "bin" + (alone ? "" : ":" + std::string(std::getenv("PATH")))).c_str()) {
        std::filesystem::create_directory(*this / "bin");
        Script("festival", "printf 'banner\\n\\nfestival> (one czech_ph)\\nfestival> '");
        LSoundSink sink = LWaveFile::OpenSinkPCM((*this / "good.wav").c_str(), 16000, 1, 16, 0);
        const int samples[1000] = {1600};
        sink->Write(samples, 1000);
    }

    // Body of a shell script; "$here" is the folder.
    void Script(const std::string& program, const std::string& body) const {
        // A shell that still runs the old script keeps reading the old file.
        WriteProgram("script", "here=" + Path() + "\n" + body + "\n");
        std::filesystem::rename(*this / "script", *this / ("bin/" + program));
    }
    // Arguments of text2wave: $3 the text file, $5 the sound file.
    void Speak(const std::string& body) const { Script("text2wave", body); }

private:
    const ScopedVariable searched_;
};
