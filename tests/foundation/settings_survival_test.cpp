// What the stores hold when several processes write, are killed, or find no room.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <thread>

#include "foundation/settings/dat_file_native.h"
#include "foundation/settings/settings.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

// The formats' rules once more, as any other program would follow them: first key wins.
std::map<std::string, std::string> Parse(const std::string& text) {
    std::map<std::string, std::string> entries;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find_first_not_of("\r\n \t"));
        line = line.substr(0, line.find('\r'));
        const std::size_t sign = std::min(line.find('='), line.size());
        const std::size_t value = std::min(line.find_first_not_of('=', sign), line.size());
        if (sign > 0 && !line.starts_with('['))
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

using Entries = std::vector<std::pair<std::string, const char*>>;  // null: the key goes

// The two stores, each as a process that has just come writes to it.
struct SettingsStore {
    static void Set(const std::string& path, const Entries& entries) {
        LSettingsFile file(path.c_str());
        for (const auto& [key, value] : entries)
            file.SetString(key.c_str(), value);
    }
    // Lines that are shadowed by the first of their key must never come to light.
    static void Spoil(const std::string& path) {
        for (const int shadowed : {0, 5, 150, 299})
            std::ofstream(path, std::ios::app) << KeyOf(shadowed) << "=shadow\r\n";
    }
    static std::string Text(const std::string& path) { return ScratchFolder::ReadFile(path); }
};
struct DatStore {
    static void Set(const std::string& path, const Entries& entries) {
        LDatFileNativeSystem cache;
        for (const auto& [key, value] : entries)
            cache.SetValue(path.c_str(), "Section", key.c_str(), value);
        cache.Flush(path.c_str());
    }
    static void Spoil(const std::string&) {}
    // After a broken write the old text may stand before the new one; the next save tidies up.
    static std::string Text(const std::string& path) {
        Set(path, {{"none", nullptr}});
        return ScratchFolder::ReadFile(path);
    }
};

template <typename Store>
void Fill(const std::string& path, int first, int last) {
    std::vector<std::string> values;
    for (int i = first; i < last; ++i)
        values.push_back(ValueOf(i, i % 23));
    Entries entries;
    for (int i = first; i < last; ++i)
        entries.emplace_back(KeyOf(i), values[static_cast<std::size_t>(i - first)].c_str());
    Store::Set(path, entries);
}

template <typename Store>
class StoreSurvival : public testing::Test {};
using Stores = testing::Types<SettingsStore, DatStore>;
TYPED_TEST_SUITE(StoreSurvival, Stores);

TEST(SettingsSurvival, ProcessesAndThreadsLoseNoKeyOfEachOther) {
    constexpr int kWriters = 4;
    constexpr int kKeys = 500;
    const ScratchFolder folder;
    pid_t writers[kWriters];
    for (int writer = 0; writer < kWriters; ++writer) {
        writers[writer] = StartForked([&] {
            const int first = writer * kKeys;
            std::thread beside(Fill<SettingsStore>, folder / "s", first, first + kKeys / 2);
            Fill<SettingsStore>(folder / "s", first + kKeys / 2, first + kKeys);
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

TYPED_TEST(StoreSurvival, KeepsEveryOtherKeyWhicheverSystemCallIsTheLast) {
    constexpr int kKeys = 300;
    // Grows near the start, shrinks, is new, goes (-1).
    const std::pair<int, int> changes[] = {{1, 120}, {22, 1}, {kKeys, 200}, {3, -1}};
    for (const auto& change : changes) {
        const int changed = change.first;
        const int length = change.second;
        const std::string key = KeyOf(changed);
        const std::string before = changed < kKeys ? ValueOf(changed, changed % 23) : "(none)";
        const std::string after = length < 0 ? "(none)" : ValueOf(changed, length);
        for (int call = 1, ended = 0; !ended && !this->HasFailure(); ++call) {
            SCOPED_TRACE(key + " " + std::to_string(call));
            const ScratchFolder folder;
            Fill<TypeParam>(folder / "s", 0, kKeys);
            TypeParam::Spoil(folder / "s");
            const std::optional<bool> killed = KilledAtCall(call, [&] {
                TypeParam::Set(folder / "s", {{key, length < 0 ? nullptr : after.c_str()}});
            });
            if (!killed)
                GTEST_SKIP() << "tracing a child is not permitted here";
            ended = !*killed;
            auto entries = Parse(TypeParam::Text(folder / "s"));
            const std::string now = entries.contains(key) ? entries[key] : "(none)";
            EXPECT_TRUE(now == after || (!ended && now == before)) << now;
            entries.erase(key);
            EXPECT_EQ(entries.size(), static_cast<std::size_t>(kKeys) - (changed < kKeys));
            for (const auto& [other, text] : entries) {
                const int index = std::atoi(other.c_str() + 3);
                EXPECT_EQ(text, ValueOf(index, index % 23)) << other;
            }
            // The next write tidies up.
            TypeParam::Set(folder / "s", {{"key0", "new"}});
            const std::string tidy = folder.Read("s");
            EXPECT_EQ(Parse(tidy).size(), std::count(tidy.begin(), tidy.end(), '='));
        }
    }
}

TYPED_TEST(StoreSurvival, KeepsTheOldContentWhereThereIsNoRoom) {
    const ScratchFolder folder;
    Fill<TypeParam>(folder / "s", 0, 500);
    folder.Write("empty", "");
    const std::string before = folder.Read("s");
    const std::string value(250, 'n');
    EXPECT_EQ(RunForked([&] {
                  // No file of this process can grow past the size.
                  signal(SIGXFSZ, SIG_IGN);
                  const auto limit = [](std::size_t size) {
                      const rlimit limits{size, RLIM_INFINITY};
                      setrlimit(RLIMIT_FSIZE, &limits);
                  };
                  limit(before.size());
                  TypeParam::Set(folder / "s", {{"new", value.c_str()}, {"key1", value.c_str()}});
                  limit(0);
                  TypeParam::Set(folder / "empty", {{"k", "v"}});
                  return 0;
              }),
              0);
    EXPECT_EQ(folder.Read("s"), before);
    EXPECT_EQ(folder.Read("empty"), "");
}

}  // namespace
