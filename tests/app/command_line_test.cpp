#include "app/start/command_line.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "foundation/processes/child_process.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

std::vector<std::string> Taken(std::vector<const char*> words) {
    words.insert(words.begin(), "lectora");
    return TakeCommandLine(static_cast<int>(words.size()), words.data());
}

TEST(CommandLine, BecomesPathsThatAnInstanceElsewhereFinds) {
    const ScratchFolder folder;
    const std::string real = std::filesystem::canonical(folder.Path());
    for (const char* name : {"book.txt", "a b.txt", "-odd", "-check"})
        folder.Write(name, "text");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    const std::string address = "file://" + real + "/a%20b.txt";
    EXPECT_THAT(
        Taken({"book.txt", "-odd", "-LOGON", "missing.txt", "/etc/passwd", address.c_str(),
               "file://elsewhere.example/x", "-check", "--", "-check", "--help", "-"}),
        testing::ElementsAre("lectora", real + "/book.txt", real + "/-odd", "-LOGON", "missing.txt",
                             "/etc/passwd", real + "/a b.txt", "file://elsewhere.example/x",
                             "-check", real + "/-check", "./--help", "./-"));
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Taken({"--sing"}).empty());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("\"--sing\""), std::string::npos);
    std::filesystem::current_path(before);
}

TEST(CommandLine, KeepsTheStandardInputForItsUserUntilItHasBeenRead) {
    const ScratchFolder folder;
    EXPECT_EQ(RunForked([&] {
                  LPipePair pipe = LPipePair::Make();
                  ::dup2(pipe.readEnd.Get(), STDIN_FILENO);
                  static_cast<void>(!::write(pipe.writeEnd.Get(), "From a pipe.", 12));
                  pipe.writeEnd.Reset();
                  std::string path;
                  {
                      SpooledInputs inputs;
                      const std::vector<std::string> taken = Taken({"-", "/etc/passwd"});
                      path = taken.at(1);
                      inputs.Note(taken);
                      const auto mode = std::filesystem::status(path).permissions();
                      if (ScratchFolder::ReadFile(path) != "From a pipe." ||
                          mode != std::filesystem::perms(0600))
                          return 1;
                  }
                  return std::filesystem::exists(std::filesystem::path(path).parent_path()) ||
                                 !std::filesystem::exists("/etc/passwd")
                             ? 2
                             : 0;
              }),
              0);
}

}  // namespace
