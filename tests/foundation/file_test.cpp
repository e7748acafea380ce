#include "foundation/file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <csignal>
#include <functional>
#include <set>

#include "foundation/file_readers.h"
#include "foundation/folder_iterator.h"
#include "foundation/lock_file.h"
#include "foundation/machine_root.h"
#include "foundation/publish_file.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string Apply(void (*function)(char*, const char*), const std::string& path) {
    char out[260];
    function(out, path.c_str());
    return out;
}

TEST(FilePaths, AreTakenApart) {
    const struct {
        const char *path, *folder, *file, *name, *extension, *asWav;
    } cases[] = {
        {"/home/u/x.tar.gz", "/home/u", "x.tar.gz", "x.tar", ".gz", "/home/u/x.tar.wav"},
        {"/home/u/.profile", "/home/u", ".profile", ".profile", ".profile", "/home/u/.wav"},
        {".profile", "", ".profile", ".profile", "", ".profile"},
        {"a.b/c", "a.b", "c", "c", "", "a.b/c"},
        {"a.b\\c.d", "a.b", "c.d", "c", ".d", "a.b\\c.wav"},
        {"/top", "/", "top", "top", "", "/top"},
        {"dir/", "dir", "", "", "", "dir/"},
        {"end.", "", "end.", "end", ".", "end.wav"},
        {"", "", "", "", "", ""},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.path);
        EXPECT_EQ(Apply(LFile::_GetFolderFromPath, test.path), test.folder);
        EXPECT_EQ(Apply(LFile::_GetFileFromPath, test.path), test.file);
        EXPECT_EQ(Apply(LFile::_GetFileNameFromPath, test.path), test.name);
        EXPECT_EQ(Apply(LFile::_GetFileExtensionFromPath, test.path), test.extension);
        char out[260];
        LFile::_ApplyNewFileExtension(out, test.path, ".wav");
        EXPECT_STREQ(out, test.asWav);
    }
}

TEST(FilePaths, AreJoinedCutAndMadeOfNames) {
    const std::string longFolder = "/" + std::string(255, 'p');
    const char* joined[][2] = {
        {"", "a"}, {"/tmp/", "/tmp/a"}, {"/tmp", "/tmp/a"}, {"c:\\", "c:\\a"}};
    char out[260];
    for (const auto& [path, expected] : joined) {
        CopyText(out, path);
        LFile::_FilePathCat(out, "a");
        EXPECT_STREQ(out, expected);
    }
    CopyText(out, longFolder);
    LFile::_FilePathCat(out, "lectora", ".desktop");
    EXPECT_EQ(out, longFolder + "/le");
    EXPECT_TRUE(LFile::PreprocessName("\ta/b:c?.t\xc3\xa9|\"*<>\\", out));
    EXPECT_STREQ(out, "abct\xc3\xa9");
    EXPECT_FALSE(LFile::PreprocessName("./..\n", out));
    const char* cases[][3] = {{"/a/x/c", "/a/b/d", "../../x/c"},
                              {"/a/b", "/a/b/", "."},
                              {"/a/./b/../c", "/a", "c"},
                              {"rel/x", "/a", "rel/x"},
                              {"/x", "/", "x"}};
    for (const auto& [path, base, expected] : cases) {
        LFile::MakeRelativeFilePath(out, path, base);
        EXPECT_STREQ(out, expected) << path << " from " << base;
    }
}

TEST(FileFolders, AreMadeWhereTheSystemKeepsItsThings) {
    const ScratchFolder folder;
    const ScopedVariable root("LECTORA_ROOT", (folder.Path() + "/").c_str());
    char out[260];
    LFile::GetSharedDataFolderAppSubFolder("Sub", out);
    EXPECT_EQ(out, folder.Path() + "/opt/quillon/lectora/etc/Sub");
    const ScopedVariable noHome("HOME", nullptr);
    LSettingsGetUserFolder(out);
    EXPECT_EQ(out, folder.Path() + "/opt/.quillon/lectora");
    const ScopedVariable home("HOME", (folder.Path() + "/").c_str());
    LFile::GetUserDataFolderAppSubFolder("Logs", out);
    EXPECT_EQ(out, folder.Path() + "/.quillon/lectora/Logs");
    for (const char* made :
         {"opt/quillon/lectora/etc/Sub", "opt/.quillon/lectora", ".quillon/lectora/Logs"})
        EXPECT_TRUE(folder.Has(made)) << made;
    EXPECT_EQ(IconPath(1), folder.Path() + "/opt/quillon/lectora/share/1.png");
    const ScopedVariable unset("LECTORA_ROOT", nullptr);
    EXPECT_EQ(MachinePath("/opt/x"), "/opt/x");
}

TEST(FileFolders, AreCopiedIteratedOpenedForAllAndDeleted) {
    const ScratchFolder folder;
    std::filesystem::create_directories(folder / "from/sub");
    std::filesystem::create_directory(folder / "outside");
    folder.Write("outside/precious", "p");
    for (const char* name : {"a.wav", ".d.wav", "c.txt", "sub/b"})
        folder.Write(std::string("from/") + name, name);
    mkfifo((folder / "from/fifo").c_str(), 0666);
    std::filesystem::create_symlink("..", folder / "from/sub/loop");
    std::filesystem::create_symlink(folder / "outside", folder / "from/link");

    LFile::CopyFolderFiles((folder / "from").c_str(), (folder / "from/copy").c_str());
    EXPECT_EQ(folder.Read("from/copy/a.wav"), "a.wav");
    EXPECT_EQ(folder.Read("from/copy/sub/b"), "sub/b");
    EXPECT_FALSE(folder.Has("from/copy/copy") || folder.Has("from/copy/fifo"));

    LFile::FolderIterator some;
    ASSERT_TRUE(some.Open((folder / "from").c_str(), "*.wav"));
    std::set<std::string> names;
    while (some.SkipToMatch())
        names.insert(some.Name());
    EXPECT_THAT(names, testing::ElementsAre(".d.wav", "a.wav"));
    LFile::FolderIteratorAllFiles all;
    EXPECT_FALSE(all.Open((folder / "from/c.txt").c_str()) || all.Next());

    const std::string odd = folder / "$(touch injected) \"x`y";
    mkdir(odd.c_str(), 0700);
    LFile::SetFolderSecurityAllAccess(odd.c_str());
    EXPECT_EQ(std::filesystem::status(odd).permissions(), std::filesystem::perms(0777));

    LFile::DeleteFolderAndFiles((folder / "from/copy").c_str());
    EXPECT_TRUE(folder.Has("from/copy/sub/b") && !folder.Has("from/copy/a.wav"));
    LFile::DeleteFolderTree((folder / "from").c_str());
    EXPECT_TRUE(!folder.Has("from") && folder.Has("outside/precious"));
}

TEST(Files, AreCopiedAndToldWhenSomebodyHoldsThem) {
    const ScratchFolder folder;
    const std::string content(20000, 'c');
    folder.Write("from", content);
    folder.Write("to", std::string(30000, 't'));
    const auto copy = [&](const char* from, const char* to) {
        return LFile::CopyFile((folder / from).c_str(), (folder / to).c_str());
    };
    EXPECT_TRUE(copy("from", "to") && copy("from", "from"));
    EXPECT_TRUE(folder.Read("to") == content && folder.Read("from") == content);
    EXPECT_FALSE(copy("none", "to") || copy("from", "no/to"));
    const std::string path = folder / "to";
    const std::tuple<int, bool, bool> cases[] = {
        {LOCK_UN, false, false}, {LOCK_SH, false, true}, {LOCK_EX, true, true}};
    for (const auto& [lock, read, write] : cases) {
        const UniqueFd holder(open(path.c_str(), O_RDWR));
        flock(holder.Get(), lock);
        EXPECT_EQ(LFile::TestFileShareReadBlocked(path.c_str()), read) << lock;
        EXPECT_EQ(LFile::TestFileShareWriteBlocked(path.c_str()), write) << lock;
    }
    EXPECT_FALSE(LFile::TestFileShareReadBlocked((folder / "none").c_str()));
}

TEST(LockFile, IsHeldByOneProcessAndLeavesWithIt) {
    const ScratchFolder folder;
    const std::string path = folder / "instance.run";
    LLockFile lock;
    ASSERT_TRUE(lock.Lock(path.c_str()));
    const auto tryLock = [&] {
        LLockFile second;
        return second.Lock(path.c_str()) ? 1 : 0;
    };
    EXPECT_EQ(RunForked(tryLock), 0);
    EXPECT_TRUE(folder.Has("instance.lck")) << "the refused one does not take it away";
    EXPECT_TRUE(lock.Lock((folder / "other.run").c_str()));
    EXPECT_FALSE(folder.Has("instance.lck"));
    EXPECT_EQ(RunForked(tryLock), 1);
    EXPECT_FALSE(lock.Lock((folder / "no/such.run").c_str()) || lock.IsLocked());
    EXPECT_FALSE(folder.Has("other.lck"));
    // Without an extension the path is the lock, unless it is somebody's file.
    folder.Write("text", "precious");
    folder.Write("empty", "");
    EXPECT_FALSE(lock.Lock((folder / "text").c_str()));
    EXPECT_TRUE(lock.Lock((folder / "empty").c_str()));
    lock.Unlock();
    EXPECT_TRUE(folder.Read("text") == "precious" && folder.Has("empty"));
}

// What the file holds each time the child asks for something to be put on the disk.
std::vector<std::string> HeldAtEachSync(const std::string& path, const std::function<int()>& body) {
    const pid_t child = StartForked([&] {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        return body();
    });
    std::vector<std::string> held;
    __ptrace_syscall_info info{};
    for (int status = 0; waitpid(child, &status, 0) == child && WIFSTOPPED(status);) {
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD);
        if (ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) > 0 &&
            info.op == PTRACE_SYSCALL_INFO_ENTRY && info.entry.nr == SYS_fsync)
            held.push_back(ScratchFolder::ReadFile(path));
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    }
    return held;
}

TEST(PublishFile, PutsTheContentOnTheDiskBeforeTheNameAndReplacesOnlyWhenTold) {
    const ScratchFolder folder;
    const auto publish = [&](bool replace) {
        return PublishFile((folder / ".x").c_str(), (folder / "x").c_str(), replace);
    };
    using Held = std::vector<std::string>;
    folder.Write(".x", "new");
    EXPECT_EQ(HeldAtEachSync(folder / "x", [&] { return publish(false); }), (Held{"", "new"}));
    EXPECT_FALSE(folder.Has(".x"));
    folder.Write(".x", "newer");
    EXPECT_EQ(publish(false), EEXIST);
    EXPECT_TRUE(folder.Read("x") == "new" && folder.Has(".x"));
    EXPECT_EQ(HeldAtEachSync(folder / "x", [&] { return publish(true); }), (Held{"new", "newer"}));
    EXPECT_EQ(publish(true), ENOENT);
}

template <typename Reader>
std::vector<std::string> Lines(const std::string& path, std::size_t size) {
    const UniqueFd fd(open(path.c_str(), O_RDONLY));
    Reader reader(fd.Get());
    std::vector<std::string> lines;
    std::string line(size, '\0');
    while (reader.ReadLine(line.data(), size))
        lines.emplace_back(line.c_str());
    return lines;
}

TEST(FileReaders, ShareTheirLineRules) {
    const ScratchFolder folder;
    const std::string block(8191, 'x');  // the second byte of a line end falls into the next block
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"", {}},
        {"a\r\nb\n\rc\rd\n", {"a", "b", "c", "d"}},
        {"\r\r\n\n", {"", "", ""}},
        {"12345678901\nnext", {"123456789", "next"}},
        {block + "\r\nz", {"xxxxxxxxx", "z"}}};
    for (const auto& [content, lines] : cases) {
        folder.Write("f", content);
        EXPECT_EQ(Lines<LReadFileRef>(folder / "f", 10), lines);
        EXPECT_EQ(Lines<LReadFileBuffered>(folder / "f", 10), lines);
    }
    folder.Write("f", "ab\ncdef");
    const LSharedReadFile file((folder / "f").c_str());
    LReadFileBuffered buffered(file.Fd());
    char text[8] = {};
    EXPECT_TRUE(buffered.ReadLine(text, sizeof text));
    EXPECT_EQ(buffered.Read(text, 7), 4u);
    EXPECT_EQ(std::string(text, 4), "cdef");
}

TEST(FileReaders, CarryLengthPrefixedTexts) {
    using std::string_literals::operator""s;
    const ScratchFolder folder;
    const std::string path = folder / "f";
    const std::pair<std::size_t, std::string> heads[] = {{0, "\0"s},
                                                         {254, "\xfe"},
                                                         {255, "\xff\xff\0\0\0"s},
                                                         {520, "\xff\x08\x02\0\0"s},
                                                         {70000, "\xff\x70\x11\x01\0"s}};
    for (const auto& [length, head] : heads) {
        SCOPED_TRACE(length);
        {
            const UniqueFd fd(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666));
            LWriteFileRef writer(fd.Get());
            EXPECT_TRUE(writer.WriteStringLenUTF8(std::string(length, 's').c_str()));
            EXPECT_EQ(fprintf(writer, "%d", 42), 2);
            EXPECT_TRUE(writer.WriteLineCRLF("x") && writer.WriteLineLF("y"));
        }
        EXPECT_EQ(folder.Read("f"), head + std::string(length, 's') + "42x\r\ny\n");
        LSharedReadFile file(path.c_str());
        char text[kLengthStringBufferSize];
        EXPECT_TRUE(file.ReadStringLenUTF8(text));
        EXPECT_EQ(text, std::string(std::min<std::size_t>(length, 519), 's'));
        EXPECT_TRUE(file.ReadStringUTF8(text, 2));
        EXPECT_STREQ(text, "42");
    }
    // Lengths that lie: nothing is allocated, and no skip passes the end.
    for (const std::string& bad :
         {"\xff\xff\xff\xff\xff" + std::string(600, 'b'), "\x05-bc"s, "\xff\x01"s, ""s}) {
        folder.Write("bad", bad);
        LSharedReadFile file((folder / "bad").c_str());
        char text[kLengthStringBufferSize];
        EXPECT_FALSE(file.ReadStringLenUTF8(text));
        EXPECT_LE(file.Tell(), file.GetSize());
    }
    const UniqueFd full(open("/dev/full", O_WRONLY));
    EXPECT_FALSE(LWriteFileRef(full.Get()).WriteString("x"));
}

TEST(TextFile, LoadsWholeFilesOrLeavesTheTextAlone) {
    const ScratchFolder folder;
    mkfifo((folder / "fifo").c_str(), 0666);
    folder.Write("huge", "");
    ASSERT_EQ(truncate((folder / "huge").c_str(), 1LL << 40), 0);
    LStringLongTemplate<char> text("before");
    for (const char* name : {"none", "fifo", "", "huge"}) {
        EXPECT_FALSE(LoadText((folder / name).c_str(), text)) << name;
        EXPECT_EQ(text.View(), "before");
    }
    for (const std::string& content :
         {std::string("a\0b\r\n\xff", 6) + std::string(5 << 20, 'z'), std::string()}) {
        SaveText((folder / "t").c_str(), LStringLongTemplate<char>(content));
        EXPECT_EQ(folder.Read("t"), content);
        EXPECT_TRUE(LoadText((folder / "t").c_str(), text));
        EXPECT_EQ(text.View(), content);
    }
    SaveText((folder / "no/such").c_str(), "lost");
    EXPECT_FALSE(folder.Has("no"));
}

}  // namespace
