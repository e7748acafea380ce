#include "formats/whole_file.h"

#include <gtest/gtest.h>

#include <csignal>

#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

TEST(WholeFile, LeavesNothingUnfinishedHoweverItsProcessEnds) {
    const ScratchFolder folder;
    const auto names = [&] {
        std::string all;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            all += entry.path().filename().string() + " ";
        return all;
    };
    // As rsync calls its own.
    folder.Write(".a.wav.XyZ123", "somebody's");
    EXPECT_EQ(RunForked([&]() -> int {
                  const WholeFile file(folder / "a.wav", WholeFile::Existing::kReplace);
                  std::exit(names() == ".a.wav.XyZ123 " ? 1 : 0);  // as after a lost display
              }),
              0);
    EXPECT_EQ(names(), ".a.wav.XyZ123 ");
    RunForked([&]() -> int {
        const WholeFile file(folder / "a.wav", WholeFile::Existing::kReplace);
        return std::raise(SIGKILL);
    });
    EXPECT_NE(names(), ".a.wav.XyZ123 ");
    {
        const WholeFile next(folder / "b.wav", WholeFile::Existing::kReplace);
        EXPECT_EQ(names().find(".a.wav.lectora-"), std::string::npos);
        EXPECT_EQ(RunForked([&] {
                      RemoveUnfinishedFiles(folder.Path());
                      return 0;
                  }),
                  0);
        EXPECT_GE(next.Size(), 0) << "it is being written";
    }
    EXPECT_EQ(names(), ".a.wav.XyZ123 ");
}

}  // namespace
