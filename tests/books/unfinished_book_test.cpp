#include "books/unfinished_book.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include "books/book_work.h"
#include "foundation/files/file_io.h"
#include "tests/support/scratch_folder.h"

namespace {

TEST(UnfinishedBook, GoesWithItsNameUnlessSomebodyIsAtWorkOnItOrTheNameIsTaken) {
    const ScratchFolder folder;
    const std::string from = folder / "one.mp3";
    const std::string target = folder / "two.mp3";
    const auto has = [](const std::string& book) {
        return !ContentOf(WorkFolderFor(book) + "key").empty();
    };
    EXPECT_TRUE(MoveUnfinished(from, target)) << "there is nothing to move";
    for (const std::string& book : {from, folder / "three.mp3"}) {
        std::filesystem::create_directory(WorkFolderFor(book));
        std::ofstream(WorkFolderFor(book) + "key") << "key of " + from;
    }
    UniqueFd other = OpenRegularFile((WorkFolderFor(from) + "key").c_str(), O_RDWR);
    ASSERT_EQ(0, ::flock(other.Get(), LOCK_EX));
    EXPECT_FALSE(MoveUnfinished(from, target)) << "another program writes it";
    other.Reset();
    EXPECT_FALSE(MoveUnfinished(from, folder / "three.mp3"));
    EXPECT_FALSE(MoveUnfinished(from, folder / "chapters/"));
    EXPECT_FALSE(MoveUnfinished(from, "/proc/two.mp3")) << "another file system";
    ASSERT_TRUE(has(from));
    EXPECT_TRUE(MoveUnfinished(from, target));
    EXPECT_FALSE(has(from));
    EXPECT_EQ(ContentOf(WorkFolderFor(target) + "key"), "key of " + from);
}

}  // namespace
