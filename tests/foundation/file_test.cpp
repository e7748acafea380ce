#include "foundation/files/file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <set>

#include "foundation/files/file_readers.h"
#include "foundation/files/folder_iterator.h"
#include "foundation/files/lock_file.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/publish_file.h"
#include "foundation/files/text_file.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string Apply(void (*function)(char*, const char*), const std::string& path) {
    char out[260];
    function(out, path.c_str());
    return out;
}

TEST(FilePaths, AreTakenApart) {
    const char* cases[][6] = {
        // Path, folder, file, name, extension, and the path with another extension.
        {"/home/u/x.tar.gz", "/home/u", "x.tar.gz", "x.tar", ".gz", "/home/u/x.tar.wav"},
        {"/home/u/.profile", "/home/u", ".profile", ".profile", ".profile", "/home/u/.wav"},
        {".profile", "", ".profile", ".profile", "", ".profile"},
        {"a.b/c", "a.b", "c", "c", "", "a.b/c"},
        {"a.b\\c.d", "a.b", "c.d", "c", ".d", "a.b\\c.wav"},
        {"/top", "/", "top", "top", "", "/top"},
        {"end.", "", "end.", "end", ".", "end.wav"},
    };
    for (const auto& [path, folder, file, name, extension, asWav] : cases) {
        EXPECT_EQ(Apply(LFile::_GetFolderFromPath, path), folder);
        EXPECT_EQ(Apply(LFile::_GetFileFromPath, path), file);
        EXPECT_EQ(Apply(LFile::_GetFileNameFromPath, path), name);
        EXPECT_EQ(Apply(LFile::_GetFileExtensionFromPath, path), extension);
        char out[260];
        LFile::_ApplyNewFileExtension(out, path, ".wav");
        EXPECT_STREQ(out, asWav);
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
    EXPECT_TRUE(std::filesystem::is_directory(out));
    const ScopedVariable home("HOME", nullptr);
    LFile::GetUserDataFolderAppSubFolder("Logs", out);
    EXPECT_EQ(out, folder.Path() + "/opt/.quillon/lectora/Logs");
    EXPECT_TRUE(std::filesystem::is_directory(out));
    const ScopedVariable unset("LECTORA_ROOT", nullptr);
    EXPECT_EQ(IconPath(1), "/opt/quillon/lectora/share/1.png");
}

TEST(FileFolders, AreCopiedIteratedAndDeleted) {
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

    LFile::DeleteFolderAndFiles((folder / "from/copy").c_str());
    EXPECT_TRUE(folder.Has("from/copy/sub/b") && !folder.Has("from/copy/a.wav"));
    LFile::DeleteFolderTree((folder / "from").c_str());
    EXPECT_TRUE(!folder.Has("from") && folder.Has("outside/precious"));
}

TEST(Files, AreCopiedAndToldWhenSomebodyHoldsThem) {
    const ScratchFolder folder;
    const std::string from = folder / "from";
    const std::string to = folder / "to";
    folder.Write("from", std::string(20000, 'c'));
    folder.Write("to", std::string(30000, 't'));
    EXPECT_TRUE(LFile::CopyFile(from.c_str(), to.c_str()));
    EXPECT_TRUE(LFile::CopyFile(from.c_str(), from.c_str()));
    EXPECT_TRUE(folder.Read("to").size() == 20000 && folder.Read("from") == folder.Read("to"));
    EXPECT_FALSE(LFile::CopyFile((folder / "none").c_str(), to.c_str()));
    EXPECT_FALSE(LFile::CopyFile(from.c_str(), (folder / "no/to").c_str()));
    for (const int lock : {LOCK_UN, LOCK_SH, LOCK_EX}) {
        const UniqueFd holder(open(to.c_str(), O_RDWR));
        flock(holder.Get(), lock);
        EXPECT_EQ(LFile::TestFileShareReadBlocked(to.c_str()), lock == LOCK_EX);
        EXPECT_EQ(LFile::TestFileShareWriteBlocked(to.c_str()), lock != LOCK_UN);
    }
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

std::string gWatchedFile;
std::vector<std::string> gHeldAtEachSync;

}  // namespace

// In the place of the C library's: notes what the file holds when something is put on the disk.
extern "C" int fsync(int) {
    gHeldAtEachSync.push_back(ScratchFolder::ReadFile(gWatchedFile));
    return 0;
}

namespace {

TEST(PublishFile, PutsTheContentOnTheDiskBeforeTheNameAndReplacesOnlyWhenTold) {
    const ScratchFolder folder;
    gWatchedFile = folder / "x";
    const auto publish = [&](bool replace) {
        return PublishFile((folder / ".x").c_str(), gWatchedFile.c_str(), replace);
    };
    folder.Write(".x", "new");
    EXPECT_EQ(publish(false), 0);
    folder.Write(".x", "newer");
    EXPECT_EQ(publish(false), EEXIST);
    EXPECT_EQ(publish(true), 0);
    EXPECT_THAT(gHeldAtEachSync, testing::ElementsAre("", "new", "new", "new", "newer"));
    EXPECT_FALSE(folder.Has(".x"));
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
        const auto linesOf = [](auto&& reader) {
            std::vector<std::string> read;
            for (char line[10]; reader.ReadLine(line, sizeof line);)
                read.emplace_back(line);
            return read;
        };
        EXPECT_EQ(linesOf(LSharedReadFile((folder / "f").c_str())), lines);
        const LSharedReadFile buffered((folder / "f").c_str());
        EXPECT_EQ(linesOf(LReadFileBuffered(buffered.Fd())), lines);
        const LSharedReadFile whole((folder / "f").c_str());
        std::string bytes(content.size() + 1, '?');
        EXPECT_EQ(LReadFileBuffered(whole.Fd()).Read(bytes.data(), bytes.size()), content.size());
        EXPECT_EQ(bytes, content + "?");
    }
}

TEST(FileReaders, CarryLengthPrefixedTexts) {
    using std::string_literals::operator""s;
    const ScratchFolder folder;
    const std::string longText(520, 's');
    const UniqueFd fd(open((folder / "w").c_str(), O_RDWR | O_CREAT, 0666));
    LWriteFileRef writer(fd.Get());
    EXPECT_TRUE(writer.WriteStringLenUTF8("ab") && writer.WriteStringLenUTF8(longText.c_str()));
    EXPECT_EQ(fprintf(writer, "%d", 42), 2);
    EXPECT_TRUE(writer.WriteLineCRLF("x") && writer.WriteLineLF("y"));
    EXPECT_EQ(folder.Read("w"), "\2ab\xff\x08\x02\0\0"s + longText + "42x\r\ny\n");
    char text[kLengthStringBufferSize];
    LSharedReadFile file((folder / "w").c_str());
    EXPECT_TRUE(file.ReadStringLenUTF8(text) && file.ReadStringLenUTF8(text));
    EXPECT_EQ(text, longText.substr(0, 519));
    EXPECT_EQ(file.Tell(), file.GetSize() - 7);
    // Lengths that lie: nothing is allocated, and no skip passes the end.
    for (const std::string& bad : {"\xff\xff\xff\xff\xff" + longText + longText, "\x05-bc"s, ""s}) {
        folder.Write("bad", bad);
        LSharedReadFile lying((folder / "bad").c_str());
        EXPECT_FALSE(lying.ReadStringLenUTF8(text));
        EXPECT_LE(lying.Tell(), lying.GetSize());
    }
    const UniqueFd full(open("/dev/full", O_WRONLY));
    EXPECT_FALSE(LWriteFileRef(full.Get()).WriteString("x"));
}

TEST(TextFile, LoadsWholeFilesOrLeavesTheTextAlone) {
    const ScratchFolder folder;
    mkfifo((folder / "fifo").c_str(), 0666);
    folder.Write("huge", "");
    ASSERT_EQ(truncate((folder / "huge").c_str(), (256LL << 20) + 1), 0);
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
