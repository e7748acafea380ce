#include "foundation/settings/dat_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>

#include "foundation/settings/dat_file_native.h"
#include "foundation/threads/ticks.h"
#include "tests/support/forked.h"
#include "tests/support/log_witness.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string DatValue(const std::string& file, const char* section, const char* key) {
    char out[260];
    LDatFileGetValue(file.c_str(), section, key, "(none)", out);
    return out;
}

TEST(DatFile, ReadsSectionsMergesAndWritesThemBack) {
    const ScratchFolder folder;
    const std::tuple<std::string, const char*, const char*, std::string, std::string> cases[] = {
        // Content, section, key, its value, and what is saved after setting Z/n to 1.
        {"lost=1\n[A]\nk=1\n", "a", "K", "1", "[A]\r\nk=1\r\n\r\n"},
        {"[Default]\na=1\n[B]\n[default]\nb=2\nA=3\n", "DEFAULT", "a", "3",
         "[Default]\r\na=3\r\nb=2\r\n\r\n[B]\r\n\r\n"},
        {"[A]x]\n[=\nk=a=b\nno sign\n", "=", "k", "a=b", "[A]\r\n\r\n[=]\r\nk=a=b\r\n\r\n"},
        {"[open\nk=" + std::string(600, 'v') + "\n", "open", "k", std::string(259, 'v'),
         "[open]\r\nk=" + std::string(259, 'v') + "\r\n\r\n"},
        {"[A]\n" + std::string(10 << 20, 'x') + "=1\nk=2", "A", "k", "2", "[A]\r\nk=2\r\n\r\n"},
        {"", "A", "k", "(none)", ""}};
    int number = 0;
    for (const auto& [content, section, key, value, saved] : cases) {
        const std::string name = "f" + std::to_string(number++);
        SCOPED_TRACE(name);
        folder.Write(name, content);
        EXPECT_EQ(DatValue(folder / name, section, key), value);
        LDatFileFlush((folder / name).c_str());
        EXPECT_EQ(folder.Read(name), content);  // clean: not written
        LDatFileSetValue((folder / name).c_str(), "Z", "n", "1");
        LDatFileFlush((folder / name).c_str());
        EXPECT_EQ(folder.Read(name), saved + "[Z]\r\nn=1\r\n\r\n");
    }
}

TEST(DatFile, DeletesKeysAndSectionsAndKeepsBareHeaders) {
    const ScratchFolder folder;
    const std::string path = folder / "f";
    folder.Write("f", "[A]\na=1\nb=2\n[B]\nc=3\n");
    LDatFile file(path.c_str());
    file.DeleteKey("a", "A");
    file.DeleteSection("b");
    file.DeleteKey("New", "x");
    file.SetString("A", "b", "two\n[C]");
    for (const char* key : {"", "=x", "[D]", "\nb"})
        file.SetString("A", key, "no");
    for (int time = 0; time < 3; ++time)
        file.SetString("P]Q\n", "p=q", "3");
    file.Flush();
    EXPECT_EQ(folder.Read("f"), "[A]\r\nb=two\r\n\r\n[New]\r\n\r\n[P]\r\np=3\r\n\r\n");
    // The cache is what counts until the file leaves it.
    folder.Write("f", "[A]\nb=foreign\n");
    EXPECT_EQ(DatValue(path, "A", "b"), "two");
}

TEST(DatFile, IsSavedAtExitAndLeavesTheCacheWhenIdleAndSaved) {
    const ScratchFolder folder;
    const std::string path = folder / "f";
    const std::string late = folder / "no/such";
    constexpr std::uint32_t kIdle = LDatFileNativeSystem::kIdleMilliseconds;
    LDatFileNativeSystem cache;
    cache.SetValue(path.c_str(), "A", "k", "v");
    cache.SetValue(late.c_str(), "A", "k", "v");
    const std::uint32_t now = GetTickCount();
    cache.Flush(now + kIdle - 5000);
    EXPECT_TRUE(cache.IsCached(path.c_str()));
    cache.SetValue(path.c_str(), "A", "k", "w");
    {
        const LogWitness log;
        cache.Flush(now + kIdle + 5000);
        EXPECT_EQ(log.told, "Changes cannot be saved and are kept in memory: " + late + "\n");
    }
    EXPECT_FALSE(cache.IsCached(path.c_str()));
    EXPECT_EQ(folder.Read("f"), "[A]\r\nk=w\r\n\r\n");
    // What could not be saved waits until it can.
    cache.Flush(late.c_str());
    EXPECT_TRUE(cache.IsCached(late.c_str()));
    std::filesystem::create_directory(folder / "no");
    cache.Flush(now + kIdle + 5000);
    EXPECT_EQ(folder.Read("no/such"), "[A]\r\nk=v\r\n\r\n");

    const pid_t child = fork();
    if (child == 0) {
        LDatFileSetValue((folder / "last").c_str(), "A", "k", "v");
        std::exit(0);
    }
    WaitForked(child);
    EXPECT_EQ(folder.Read("last"), "[A]\r\nk=v\r\n\r\n");
    // What was there and could not be read is never written over.
    folder.Write("big", "[A]\nk=1\n");
    ASSERT_EQ(truncate((folder / "big").c_str(), 20 << 20), 0);
    mkfifo((folder / "fifo").c_str(), 0666);
    for (const char* name : {"big", "fifo", "no"}) {
        LDatFile file((folder / name).c_str());
        EXPECT_EQ(file.GetString("A", "k", "def"), "def") << name;
        file.SetString("A", "k", "2");
        EXPECT_EQ(file.GetString("A", "k"), "2") << name;
        file.Flush();
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "big"), 20u << 20);
}

TEST(DatFile, StoresTypedValuesAndListsAsTexts) {
    const ScratchFolder folder;
    const ScopedVariable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    LDatFile file((folder / "f").c_str());
    const LDateTime summer = LDateTime::FromLocal(2008, 7, 5, 14, 3, 9);
    const LDayTime day(23 * 3600 + 5 * 60 + 1);
    file.SetLong("S", "n", -7);
    file.SetDateTime("S", "when", summer);
    file.SetDateTime("S", "never", LDateTime());
    file.SetDayTime("S", "at", day);
    for (const int index : {0, 1})
        EXPECT_EQ(file.AddList("S", "item"), index);
    file.SetString("S", "item1name", "one");
    file.MoveListItem("S", "item", "name", 1, 0);
    file.MoveListItem("S", "item", "name", 5, 2);
    file.Flush();
    EXPECT_EQ(folder.Read("f"),
              "[S]\r\nn=-7\r\nwhen=05/07/08-14:03:09\r\nnever=\r\nat=23:05:01\r\n"
              "itemcount=2\r\nitem0name=one\r\nitem2name=\r\n\r\n");
    EXPECT_EQ(file.GetLong("S", "n", 1), -7);
    EXPECT_EQ(file.GetLong("S", "absent", 1), 1);
    EXPECT_EQ(file.GetDateTime("S", "when", LDateTime()), summer);
    EXPECT_EQ(file.GetDateTime("S", "never", summer), summer);
    EXPECT_EQ(file.GetDayTime("S", "at", LDayTime()), day);
    for (const char* junk : {"junk", "99/99/99-99:99:99", "05/07/08"}) {
        file.SetString("S", "when", junk);
        EXPECT_TRUE(file.GetDateTime("S", "when", summer).IsZero()) << junk;
    }
    for (const auto& [text, value] : {std::pair{"t", true}, {"tomato", true}, {"1", false}}) {
        file.SetString("S", "flag", text);
        EXPECT_EQ(file.GetBool("S", "flag", !value), value) << text;
        EXPECT_EQ(file.GetBool("S", "absent", value), value);
    }
}

}  // namespace
