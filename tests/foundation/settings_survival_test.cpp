// What the settings hold when several processes write, are killed, or find no room.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <csignal>
#include <map>
#include <optional>
#include <random>
#include <thread>

#include "foundation/dat_file.h"
#include "foundation/dat_file_native.h"
#include "foundation/settings.h"
#include "foundation/unique_fd.h"
#include "tests/foundation/forked.h"
#include "tests/foundation/scratch_folder.h"

namespace {

// The format's rules once more, as any other program would follow them: first key wins.
std::map<std::string, std::string> ParseLocked(const std::string& path) {
    const UniqueFd file(open(path.c_str(), O_RDONLY));
    flock(file.Get(), LOCK_SH);
    std::string text;
    char block[65536];
    for (ssize_t got; (got = read(file.Get(), block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(got));
    flock(file.Get(), LOCK_UN);
    std::map<std::string, std::string> entries;
    std::string line;
    text += '\n';
    for (const char c : text) {
        if (c != '\r' && c != '\n') {
            if (!line.empty() || static_cast<unsigned char>(c) >= 33)
                line += c;
            continue;
        }
        const std::size_t sign = std::min(line.find('='), line.size());
        const std::size_t value = std::min(line.find_first_not_of('=', sign), line.size());
        if (sign > 0)
            entries.emplace(line.substr(0, sign), line.substr(value));
        line.clear();
    }
    return entries;
}

std::string KeyOf(int index) {
    return "key" + std::to_string(index);
}

// A value that shows whether it is whole and whose it is.
std::string ValueOf(int index, int length) {
    return std::to_string(index) + ":" + std::to_string(length) + ":" +
           std::string(static_cast<std::size_t>(length), 'v');
}

bool IsWhole(const std::string& value, int index) {
    const std::size_t colon = value.find(':');
    return colon != std::string::npos &&
           value == ValueOf(index, std::atoi(value.c_str() + colon + 1));
}

void ExpectWhole(const std::string& path, int keys) {
    const auto entries = ParseLocked(path);
    EXPECT_EQ(entries.size(), static_cast<std::size_t>(keys));
    for (int i = 0; i < keys; ++i) {
        const auto entry = entries.find(KeyOf(i));
        ASSERT_TRUE(entry != entries.end()) << KeyOf(i);
        ASSERT_TRUE(IsWhole(entry->second, i)) << KeyOf(i) << "=" << entry->second;
    }
}

void Fill(const std::string& path, int keys) {
    LSettingsFile file(path.c_str());
    for (int i = 0; i < keys; ++i)
        file.SetString(KeyOf(i).c_str(), ValueOf(i, i % 23).c_str());
}

TEST(SettingsSurvival, FourProcessesLoseNoKeyOfEachOther) {
    constexpr int kProcesses = 4;
    constexpr int kKeys = 1000;
    const ScratchFolder folder;
    std::vector<pid_t> writers;
    writers.reserve(kProcesses);
    for (int writer = 0; writer < kProcesses; ++writer) {
        writers.push_back(StartForked([&] {
            LSettingsSectionList list(folder.Path().c_str());
            int lost = 0;
            for (int i = 0; i < kKeys; ++i) {
                const int mine = i * kProcesses + writer;
                list.SetString("Shared", KeyOf(mine).c_str(), ValueOf(mine, 5).c_str());
                const int earlier = i / 3 * kProcesses + writer;
                char out[260];
                list.GetString("Shared", KeyOf(earlier).c_str(), "", out);
                lost += out != ValueOf(earlier, 5);
            }
            return lost > 255 ? 255 : lost;
        }));
    }
    std::atomic<bool> done = false;
    std::size_t reads = 0;
    std::thread reader([&] {
        for (std::size_t known = 0; !done; ++reads) {
            const std::size_t count = ParseLocked(folder / "shared").size();
            EXPECT_GE(count, known) << "a key was gone for a while";
            known = count;
            usleep(2000);
        }
    });
    for (const pid_t writer : writers)
        EXPECT_EQ(WaitForked(writer), 0);
    done = true;
    reader.join();
    EXPECT_GT(reads, 5u);
    ExpectWhole(folder / "shared", kProcesses * kKeys);
}

TEST(SettingsSurvival, KilledWritersLeaveEveryOtherKey) {
    constexpr int kKeys = 600;
    const ScratchFolder folder;
    const std::string path = folder / "s";
    Fill(path, kKeys);
    std::mt19937 random(20);
    int changed = 0;
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        const auto seed = random();
        const std::string before = folder.Read("s");
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const UniqueFd started(ends[0]);
        UniqueFd start(ends[1]);
        const pid_t writer = StartForked([&] {
            std::mt19937 choice(seed);
            LSettingsFile file(path.c_str());
            for (bool first = true;; first = false) {
                const int i = static_cast<int>(choice() % kKeys);
                file.SetString(KeyOf(i).c_str(),
                               ValueOf(i, static_cast<int>(choice() % 200)).c_str());
                if (first && write(start.Get(), "", 1) != 1)
                    return 1;
            }
            return 0;
        });
        start.Reset();
        char byte;
        EXPECT_EQ(read(started.Get(), &byte, 1), 1);
        usleep(static_cast<unsigned>(random() % 2500));
        kill(writer, SIGKILL);
        WaitForked(writer);
        ExpectWhole(path, kKeys);
        changed += folder.Read("s") != before;
    }
    EXPECT_GT(changed, 100);
    // What the killed left over goes with the next write.
    LSettingsFile(path.c_str()).SetString("key0", "0:1:v");
    EXPECT_EQ(folder.Read("s").find("\r\n\r\n"), std::string::npos);
    EXPECT_EQ(folder.Read("s").find("\n="), std::string::npos);
}

// Runs body in a child that is killed at its given system call; false when it ended before.
template <typename Body>
std::optional<bool> KilledAtCall(int call, Body body) {
    const pid_t child = StartForked([&] {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            return 2;
        raise(SIGSTOP);
        body();
        return 0;
    });
    int status = 0;
    waitpid(child, &status, 0);
    for (int stop = 0; WIFSTOPPED(status) && stop < 2 * call; ++stop) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status) == 2 ? std::nullopt : std::optional(false);
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return true;
}

TEST(SettingsSurvival, IsWholeWhicheverSystemCallIsTheLast) {
    constexpr int kKeys = 500;
    const struct {
        const char* about;
        const char* key;
        int length;  // of the new value, -1 deletes
        int keysAfter;
    } changes[] = {{"grows near the start", "key1", 120, kKeys},
                   {"shrinks", "key22", 1, kKeys},
                   {"a new key", "key500", 200, kKeys + 1},
                   {"a key goes", "key3", -1, kKeys - 1}};
    for (const auto& change : changes) {
        SCOPED_TRACE(change.about);
        const int index = std::atoi(change.key + 3);
        const std::string value = ValueOf(index, std::max(change.length, 0));
        bool ended = false;
        for (int call = 1; !ended && !HasFailure(); ++call) {
            SCOPED_TRACE(call);
            const ScratchFolder folder;
            const std::string path = folder / "s";
            Fill(path, kKeys);
            const std::string before = folder.Read("s");
            const std::optional<bool> killed = KilledAtCall(call, [&] {
                LSettingsFile(path.c_str())
                    .SetString(change.key, change.length < 0 ? nullptr : value.c_str());
            });
            if (!killed)
                GTEST_SKIP() << "tracing a child is not permitted here";
            ended = !*killed;
            auto entries = ParseLocked(path);
            const auto changed = entries.find(change.key);
            if (changed != entries.end()) {
                EXPECT_TRUE(IsWhole(changed->second, index)) << changed->second;
            }
            entries.erase(change.key);
            EXPECT_EQ(entries.size(), static_cast<std::size_t>(kKeys) - (index < kKeys));
            for (const auto& [key, text] : entries)
                EXPECT_TRUE(IsWhole(text, std::atoi(key.c_str() + 3))) << key << "=" << text;
            // Our own reader sees the same and the next write tidies up.
            LSettingsFile next(path.c_str());
            next.SetString("other", "1");
            next.SetString("other", nullptr);
            const std::string tidy = folder.Read("s");
            EXPECT_EQ(ParseLocked(path).size(), std::count(tidy.begin(), tidy.end(), '='));
            if (ended) {
                EXPECT_EQ(ParseLocked(path).size(), static_cast<std::size_t>(change.keysAfter));
                EXPECT_NE(tidy, before);
            }
        }
    }
}

// Killed at each system call and at random moments, a data file is all old or all new.
TEST(DatFileSurvival, IsTheOldOrTheNewFileWhoeverIsKilled) {
    constexpr int kKeys = 300;
    const ScratchFolder folder;
    const std::string path = folder / "d";
    const auto setAll = [&](LDatFileNativeSystem& cache, int version) {
        for (int i = 0; i < kKeys; ++i)
            cache.SetValue(path.c_str(), i % 2 ? "Odd" : "Even", KeyOf(i).c_str(),
                           ValueOf(version, (i + version * 37) % 150).c_str());
        cache.Flush(path.c_str());
    };
    const auto versionNow = [&] {
        LDatFileNativeSystem cache;
        int version = -1;
        for (int i = 0; i < kKeys; ++i) {
            char out[260];
            cache.GetValue(path.c_str(), i % 2 ? "Odd" : "Even", KeyOf(i).c_str(), "", out);
            const int found = std::atoi(out);
            EXPECT_TRUE(i == 0 || found == version) << KeyOf(i) << "=" << out;
            EXPECT_EQ(out, ValueOf(found, (i + found * 37) % 150));
            version = found;
        }
        return version;
    };
    LDatFileNativeSystem first;
    first.SetValue(path.c_str(), "Even", "pad", "");
    setAll(first, 1);
    int version = 1;
    bool ended = false;
    for (int call = 1; !ended && !HasFailure(); ++call) {
        const auto killed = KilledAtCall(call, [&] {
            LDatFileNativeSystem cache;
            setAll(cache, version + 1);
        });
        if (!killed)
            GTEST_SKIP() << "tracing a child is not permitted here";
        ended = !*killed;
        const int now = versionNow();
        EXPECT_TRUE(now == version || now == version + 1);
        version = now;
    }
    EXPECT_TRUE(ended);
    for (unsigned round = 0; round < 100 && !HasFailure(); ++round) {
        const pid_t writer = StartForked([&] {
            LDatFileNativeSystem cache;
            for (std::size_t length = round;; ++length) {  // moves every line of the file
                const std::string pad(length % 200, 'p');
                cache.SetValue(path.c_str(), "Even", "pad", pad.c_str());
                cache.Flush(path.c_str());
            }
            return 0;
        });
        usleep(500 + round * 37);
        kill(writer, SIGKILL);
        WaitForked(writer);
        EXPECT_EQ(versionNow(), version);
    }
    // A whole save afterwards leaves nothing else behind.
    LDatFileNativeSystem last;
    setAll(last, 1);
    EXPECT_EQ(folder.Read("d").find(';'), std::string::npos);
    EXPECT_TRUE(folder.Read("d").ends_with("\r\n\r\n"));
}

bool MountSmallDisk(const std::string& path) {
    const int spaces = getuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS;
    return unshare(spaces) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", path.c_str(), "tmpfs", 0, "size=64k") == 0;
}

// No file of this process can grow past the size.
void LimitFiles(std::size_t size) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size;
    setrlimit(RLIMIT_FSIZE, &limit);
}

class FullDisk : public ::testing::TestWithParam<bool> {};

TEST_P(FullDisk, KeepsTheOldContent) {
    const ScratchFolder folder;
    const int result = RunForked([&] {
        // Where mounting is not permitted both runs are of the size limit.
        const bool limited = GetParam() || !MountSmallDisk(folder.Path());
        Fill(folder / "s", 500);
        folder.Write("d", "[A]\r\nk=" + std::string(250, 'v') + "\r\n\r\n");
        folder.Write("empty", "");
        const std::string settings = folder.Read("s");
        const std::string data = folder.Read("d");
        const UniqueFd filler(open((folder / "filler").c_str(), O_WRONLY | O_CREAT, 0666));
        const std::string block(512, 'f');
        while (!limited && write(filler.Get(), block.data(), block.size()) > 0) {
        }
        if (limited)
            LimitFiles(settings.size());
        LSettingsFile file((folder / "s").c_str());
        for (int i = 0; i < 40; ++i)
            file.SetString(("new" + std::to_string(i)).c_str(), std::string(250, 'n').c_str());
        file.SetString("key1", std::string(250, 'n').c_str());
        if (limited)
            LimitFiles(data.size());
        LDatFile foreign((folder / "d").c_str());
        for (int i = 0; i < 40; ++i)
            foreign.SetString("A", std::to_string(i).c_str(), std::string(250, 'n').c_str());
        foreign.Flush();
        if (limited)
            LimitFiles(0);
        LSettingsFile((folder / "empty").c_str()).SetString("k", "v");
        char out[260];
        file.GetString("key1", "", out);
        // Keys that fit into the last page may have been added; nothing that was there is gone.
        const bool kept = folder.Read("s").starts_with(settings) && out == ValueOf(1, 1);
        return !kept ? 1 : folder.Read("d") != data ? 2 : folder.Read("empty") != "" ? 3 : 0;
    });
    EXPECT_EQ(result, 0);
}

INSTANTIATE_TEST_SUITE_P(SettingsSurvival, FullDisk, ::testing::Bool());

}  // namespace
