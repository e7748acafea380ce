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

using PathFunction = void (*)(char*, const char*);

std::string Apply(PathFunction function, const std::string& path) {
    char out[260];
    function(out, path.c_str());
    return out;
}

std::string Cat(const std::string& path, const char* name) {
    char out[260] = {};
    path.copy(out, sizeof out - 1);
    LFile::_FilePathCat(out, name);
    return out;
}

TEST(FilePaths, AreTakenApart) {
    const struct {
        const char* path;
        const char* folder;
        const char* file;
        const char* name;
        const char* extension;
        const char* asWav;
    } cases[] = {
        {"/home/u/x.tar.gz", "/home/u", "x.tar.gz", "x.tar", ".gz", "/home/u/x.tar.wav"},
        {"/home/u/.profile", "/home/u", ".profile", ".profile", ".profile", "/home/u/.wav"},
        {".profile", "", ".profile", ".profile", "", ".profile"},
        {"a.b/c", "a.b", "c", "c", "", "a.b/c"},
        {"a.b\\c.d", "a.b", "c.d", "c", ".d", "a.b\\c.wav"},
        {"/top", "/", "top", "top", "", "/top"},
        {"/", "/", "", "", "", "/"},
        {"name", "", "name", "name", "", "name"},
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
    EXPECT_EQ(Cat("", "a"), "a");
    EXPECT_EQ(Cat("/tmp/", "a"), "/tmp/a");
    EXPECT_EQ(Cat("/tmp", "a"), "/tmp/a");
    EXPECT_EQ(Cat("c:\\", "a"), "c:\\a");
    EXPECT_EQ(Cat("/" + std::string(255, 'p'), "long"), "/" + std::string(255, 'p') + "/lo");
    char out[260] = "folder";
    LFile::_FilePathCat(out, "lectora", ".desktop");
    EXPECT_STREQ(out, "folder/lectora.desktop");
    EXPECT_TRUE(LFile::PreprocessName("\ta/b:c?.t\xc3\xa9|\"*<>\\", out));
    EXPECT_STREQ(out, "abct\xc3\xa9");
    EXPECT_FALSE(LFile::PreprocessName("./..\n", out));
    const char* cases[][3] = {{"/a/b/c.txt", "/a/b", "c.txt"}, {"/a/x/c", "/a/b/d", "../../x/c"},
                              {"/a/b", "/a/b/", "."},          {"/a/./b/../c", "/a", "c"},
                              {"rel/x", "/a", "rel/x"},        {"/x", "/", "x"}};
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

TEST(FileFolders, AreCopiedAndDeletedAsTrees) {
    const ScratchFolder folder;
    mkdir((folder / "from").c_str(), 0777);
    mkdir((folder / "from/sub").c_str(), 0777);
    mkdir((folder / "outside").c_str(), 0777);
    folder.Write("outside/precious", "p");
    folder.Write("from/a", "1");
    folder.Write("from/sub/b", "2");
    mkfifo((folder / "from/fifo").c_str(), 0666);
    ASSERT_EQ(symlink("..", (folder / "from/sub/loop").c_str()), 0);
    ASSERT_EQ(symlink((folder / "outside").c_str(), (folder / "from/link").c_str()), 0);

    LFile::CopyFolderFiles((folder / "from").c_str(), (folder / "from/copy").c_str());
    EXPECT_EQ(folder.Read("from/copy/a"), "1");
    EXPECT_EQ(folder.Read("from/copy/sub/b"), "2");
    EXPECT_FALSE(folder.Has("from/copy/copy"));
    EXPECT_FALSE(folder.Has("from/copy/fifo"));

    LFile::DeleteFolderAndFiles((folder / "from/copy").c_str());
    EXPECT_TRUE(folder.Has("from/copy/sub/b"));
    EXPECT_FALSE(folder.Has("from/copy/a"));
    LFile::DeleteFolderTree((folder / "from").c_str());
    EXPECT_FALSE(folder.Has("from"));
    EXPECT_TRUE(folder.Has("outside/precious"));
}

TEST(FileFolders, AreIteratedByPatternAndOpenedForAll) {
    const ScratchFolder folder;
    for (const char* name : {"a.wav", "b.wav", "c.txt", ".d.wav"})
        folder.Write(name, "");
    LFile::FolderIterator some;
    ASSERT_TRUE(some.Open(folder.Path().c_str(), "*.wav"));
    std::set<std::string> names;
    while (some.SkipToMatch())
        names.insert(some.Name());
    EXPECT_THAT(names, testing::ElementsAre(".d.wav", "a.wav", "b.wav"));
    LFile::FolderIteratorAllFiles all;
    EXPECT_FALSE(all.Open((folder / "c.txt").c_str()));
    EXPECT_FALSE(all.Next());

    const std::string odd = folder / "$(touch injected) \"x`y";
    mkdir(odd.c_str(), 0700);
    LFile::SetFolderSecurityAllAccess(odd.c_str());
    struct stat status {};
    stat(odd.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0777u);
    EXPECT_NE(access("injected", F_OK), 0);
}

TEST(Files, AreCopiedAndToldWhenSomebodyHoldsThem) {
    const ScratchFolder folder;
    const std::string content(20000, 'c');
    folder.Write("from", content);
    folder.Write("to", std::string(30000, 't'));
    EXPECT_TRUE(LFile::CopyFile((folder / "from").c_str(), (folder / "to").c_str()));
    EXPECT_EQ(folder.Read("to"), content);
    EXPECT_TRUE(LFile::CopyFile((folder / "from").c_str(), (folder / "from").c_str()));
    EXPECT_EQ(folder.Read("from"), content);
    EXPECT_FALSE(LFile::CopyFile((folder / "none").c_str(), (folder / "to").c_str()));
    EXPECT_FALSE(LFile::CopyFile((folder / "from").c_str(), (folder / "no/to").c_str()));

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
    EXPECT_TRUE(folder.Has("instance.lck"));
    const auto tryLock = [&] {
        LLockFile second;
        return second.Lock(path.c_str()) ? 1 : 0;
    };
    EXPECT_EQ(RunForked(tryLock), 0);
    EXPECT_TRUE(folder.Has("instance.lck"));  // the refused one does not take it away
    EXPECT_TRUE(lock.Lock((folder / "other.run").c_str()));
    EXPECT_FALSE(folder.Has("instance.lck"));
    EXPECT_EQ(RunForked(tryLock), 1);
    EXPECT_FALSE(lock.Lock((folder / "no/such.run").c_str()));
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_FALSE(folder.Has("other.lck"));
    // Without an extension the path is the lock, unless it is somebody's file.
    folder.Write("text", "precious");
    folder.Write("empty", "");
    EXPECT_FALSE(lock.Lock((folder / "text").c_str()));
    EXPECT_TRUE(lock.Lock((folder / "empty").c_str()));
    lock.Unlock();
    EXPECT_EQ(folder.Read("text"), "precious");
    EXPECT_TRUE(folder.Has("empty"));
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
    const std::string written = folder / ".x";
    const std::string final = folder / "x";
    folder.Write(".x", "new");
    using Held = std::vector<std::string>;
    const auto publish = [&](bool replace) {
        return HeldAtEachSync(final,
                              [&] { return PublishFile(written.c_str(), final.c_str(), replace); });
    };
    EXPECT_EQ(publish(false), (Held{"", "new"}));
    EXPECT_TRUE(folder.Read("x") == "new" && !folder.Has(".x"));
    folder.Write(".x", "newer");
    EXPECT_EQ(PublishFile(written.c_str(), final.c_str(), false), EEXIST);
    EXPECT_TRUE(folder.Read("x") == "new" && folder.Has(".x"));
    EXPECT_EQ(publish(true), (Held{"new", "newer"}));
    EXPECT_TRUE(folder.Read("x") == "newer" && !folder.Has(".x"));
    EXPECT_EQ(PublishFile(written.c_str(), final.c_str(), true), ENOENT);
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
    const struct {
        std::string content;
        std::vector<std::string> lines;
    } cases[] = {{"", {}},
                 {"a", {"a"}},
                 {"a\r\nb\n\rc\rd\n", {"a", "b", "c", "d"}},
                 {"\r\r\n\n", {"", "", ""}},
                 {"12345678901\nnext", {"123456789", "next"}},
                 {block + "\r\nz", {"xxxxxxxxx", "z"}}};
    for (const auto& test : cases) {
        folder.Write("f", test.content);
        EXPECT_EQ(Lines<LReadFileRef>(folder / "f", 10), test.lines);
        EXPECT_EQ(Lines<LReadFileBuffered>(folder / "f", 10), test.lines);
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
    const ScratchFolder folder;
    const std::string path = folder / "f";
    for (const std::size_t length : {0u, 1u, 254u, 255u, 519u, 520u, 70000u}) {
        SCOPED_TRACE(length);
        {
            const UniqueFd fd(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666));
            LWriteFileRef writer(fd.Get());
            EXPECT_TRUE(writer.WriteStringLenUTF8(std::string(length, 's').c_str()));
            EXPECT_EQ(fprintf(writer, "%d", 42), 2);
            EXPECT_TRUE(writer.WriteLineCRLF("x"));
            EXPECT_TRUE(writer.WriteLineLF("y"));
        }
        const std::string head = length < 255
                                     ? std::string(1, static_cast<char>(length))
                                     : std::string("\xff") + static_cast<char>(length & 255) +
                                           static_cast<char>(length >> 8 & 255) +
                                           static_cast<char>(length >> 16) + '\0';
        EXPECT_EQ(folder.Read("f"), head + std::string(length, 's') + "42x\r\ny\n");
        LSharedReadFile file(path.c_str());
        char text[kLengthStringBufferSize];
        EXPECT_TRUE(file.ReadStringLenUTF8(text));
        EXPECT_EQ(text, std::string(std::min<std::size_t>(length, 519), 's'));
        char rest[3];
        EXPECT_TRUE(file.ReadStringUTF8(rest, 2));
        EXPECT_STREQ(rest, "42");
    }
    // Lengths that lie: nothing is allocated, and no skip passes the end.
    using std::string_literals::operator""s;
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
