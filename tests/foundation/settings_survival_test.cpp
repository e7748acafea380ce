// What the settings hold when several processes write, are killed, or find no room.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <thread>

#include "foundation/settings/dat_file.h"
#include "foundation/settings/dat_file_native.h"
#include "foundation/settings/settings.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

// The format's rules once more, as any other program would follow them: first key wins.
std::map<std::string, std::string> Parse(const std::string& text) {
    std::map<std::string, std::string> entries;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find_first_not_of("\r\n \t"));
        line = line.substr(0, line.find('\r'));
        const std::size_t sign = std::min(line.find('='), line.size());
        const std::size_t value = std::min(line.find_first_not_of('=', sign), line.size());
        if (sign > 0)
            entries.emplace(line.substr(0, sign), line.substr(value));
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

void Fill(const std::string& path, int first, int last) {
    LSettingsFile file(path.c_str());
    for (int i = first; i < last; ++i)
        file.SetString(KeyOf(i).c_str(), ValueOf(i, i % 23).c_str());
}

TEST(SettingsSurvival, ProcessesAndThreadsLoseNoKeyOfEachOther) {
    constexpr int kWriters = 4;
    constexpr int kKeys = 500;
    const ScratchFolder folder;
    pid_t writers[kWriters];
    for (int writer = 0; writer < kWriters; ++writer) {
        writers[writer] = StartForked([&] {
            const int first = writer * kKeys;
            std::thread beside(Fill, folder / "s", first, first + kKeys / 2);
            Fill(folder / "s", first + kKeys / 2, first + kKeys);
            beside.join();
            return 0;
        });
    }
    for (const pid_t writer : writers)
        EXPECT_EQ(WaitForked(writer), 0);
    const auto entries = Parse(folder.Read("s"));
    EXPECT_EQ(entries.size(), static_cast<std::size_t>(kWriters * kKeys));
    for (const auto& [key, value] : entries) {
        const int index = std::atoi(key.c_str() + 3);
        EXPECT_EQ(value, ValueOf(index, index % 23));
    }
}

TEST(SettingsSurvival, KeepsEveryOtherKeyWhicheverSystemCallIsTheLast) {
    constexpr int kKeys = 300;
    // Grows near the start, shrinks, is new, goes (-1).
    const std::pair<int, int> changes[] = {{1, 120}, {22, 1}, {kKeys, 200}, {3, -1}};
    for (const auto& [changed, length] : changes) {
        const std::string key = KeyOf(changed);
        const std::string before = changed < kKeys ? ValueOf(changed, changed % 23) : "(none)";
        const std::string after = length < 0 ? "(none)" : ValueOf(changed, length);
        for (int call = 1, ended = 0; !ended && !HasFailure(); ++call) {
            SCOPED_TRACE(key + " " + std::to_string(call));
            const ScratchFolder folder;
            Fill(folder / "s", 0, kKeys);
            // Lines that are shadowed by the first of their key must never come to light.
            for (const int shadowed : {0, 5, 150, 299})
                std::ofstream(folder / "s", std::ios::app) << KeyOf(shadowed) << "=shadow\r\n";
            const std::optional<bool> killed = KilledAtCall(call, [&] {
                const char* value = after == "(none)" ? nullptr : after.c_str();
                LSettingsFile((folder / "s").c_str()).SetString(key.c_str(), value);
            });
            if (!killed)
                GTEST_SKIP() << "tracing a child is not permitted here";
            ended = !*killed;
            auto entries = Parse(folder.Read("s"));
            const std::string now = entries.contains(key) ? entries[key] : "(none)";
            EXPECT_TRUE(now == after || (!ended && now == before)) << now;
            entries.erase(key);
            EXPECT_EQ(entries.size(), static_cast<std::size_t>(kKeys) - (changed < kKeys));
            for (const auto& [other, text] : entries) {
                const int index = std::atoi(other.c_str() + 3);
                EXPECT_EQ(text, ValueOf(index, index % 23)) << other;
            }
            // The next write tidies up.
            LSettingsFile((folder / "s").c_str()).SetString("key0", "new");
            const std::string tidy = folder.Read("s");
            EXPECT_EQ(Parse(tidy).size(), std::count(tidy.begin(), tidy.end(), '='));
        }
    }
}

TEST(DatFileSurvival, IsTheOldOrTheNewFileWhicheverSystemCallIsTheLast) {
    const ScratchFolder folder;
    const std::string path = folder / "d";
    const auto setAll = [&](LDatFileNativeSystem& cache, const std::string& value) {
        for (int i = 0; i < 300; ++i)
            cache.SetValue(path.c_str(), i % 2 ? "Odd" : "Even", KeyOf(i).c_str(), value.c_str());
        cache.Flush(path.c_str());
    };
    LDatFileNativeSystem first;
    setAll(first, std::string(150, 'n'));
    const std::string newText = folder.Read("d");
    setAll(first, "old");
    const std::string oldText = folder.Read("d");
    for (int call = 1, ended = 0; !ended && !HasFailure(); ++call) {
        const auto killed = KilledAtCall(call, [&] {
            LDatFileNativeSystem cache;
            setAll(cache, std::string(150, 'n'));
        });
        if (!killed)
            GTEST_SKIP() << "tracing a child is not permitted here";
        ended = !*killed;
        // The next save leaves nothing else behind.
        LDatFileNativeSystem cache;
        cache.SetValue(path.c_str(), "Odd", "key299", "x");
        cache.SetValue(path.c_str(), "Odd", "key299", nullptr);
        cache.Flush(path.c_str());
        const auto without = [](const std::string& text) {
            return text.substr(0, text.find("key299"));
        };
        const std::string now = without(folder.Read("d"));
        EXPECT_TRUE(now == without(newText) + "\r\n" ||
                    (!ended && now == without(oldText) + "\r\n"))
            << call;
        folder.Write("d", oldText);
    }
}

TEST(SettingsSurvival, KeepsTheOldContentWhereThereIsNoRoom) {
    const ScratchFolder folder;
    Fill(folder / "s", 0, 500);
    folder.Write("d", "[A]\r\nk=" + std::string(250, 'v') + "\r\n\r\n");
    folder.Write("empty", "");
    const std::string settings = folder.Read("s");
    const std::string data = folder.Read("d");
    const std::string value(250, 'n');
    EXPECT_EQ(RunForked([&] {
                  // No file of this process can grow past the size.
                  signal(SIGXFSZ, SIG_IGN);
                  const auto limit = [](std::size_t size) {
                      const rlimit limits{size, RLIM_INFINITY};
                      setrlimit(RLIMIT_FSIZE, &limits);
                  };
                  limit(settings.size());
                  LSettingsFile file((folder / "s").c_str());
                  file.SetString("new", value.c_str());
                  file.SetString("key1", value.c_str());
                  char out[260];
                  file.GetString("key1", "", out);
                  limit(data.size());
                  LDatFile foreign((folder / "d").c_str());
                  foreign.SetString("A", "1", value.c_str());
                  foreign.Flush();
                  limit(0);
                  LSettingsFile((folder / "empty").c_str()).SetString("k", "v");
                  return out == ValueOf(1, 1) ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(folder.Read("s") == settings && folder.Read("d") == data);
    EXPECT_EQ(folder.Read("empty"), "");
}

}  // namespace
