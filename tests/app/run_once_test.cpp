#include "app/run_once.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "foundation/text_buffer.h"
#include "tests/support/scratch_folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunOnceTest : public testing::Test {
protected:
    RunOnceTest() {
        address_.sun_family = AF_UNIX;
        CopyText(address_.sun_path, path_);
    }
    const sockaddr* Address() const { return reinterpret_cast<const sockaddr*>(&address_); }
    UniqueFd Connect() const {
        UniqueFd fd(::socket(AF_UNIX, SOCK_STREAM, 0));
        EXPECT_EQ(0, ::connect(fd.Get(), Address(), sizeof address_));
        return fd;
    }
    // Sends raw words and bytes as a client would and closes, unless it is told to stay.
    std::vector<std::string> ReceivedAfter(const std::string& message, bool& goOn,
                                           bool stay = false) {
        UniqueFd client = Connect();
        EXPECT_EQ(static_cast<ssize_t>(message.size()),
                  ::write(client.Get(), message.data(), message.size()));
        if (!stay)
            client.Reset();
        std::vector<std::string> arguments;
        goOn = server_.Receive(arguments);
        return arguments;
    }
    static std::string Word(std::int32_t number) {
        return std::string(reinterpret_cast<const char*>(&number), sizeof number);
    }

    ScratchFolder folder_;
    std::string path_ = folder_ / "socket";
    sockaddr_un address_{};
    RunOnceSocket server_;
};

TEST_F(RunOnceTest, SecondStartHandsItsWholeCommandLineOver) {
    ASSERT_EQ(RunOnceSocket::Claim::kServer, server_.ClaimPath(path_, {"lectora"}));
    RunOnceSocket second;
    EXPECT_EQ(RunOnceSocket::Claim::kHandedOver,
              second.ClaimPath(path_, {"/usr/bin/lectora", "", "/a b\n.txt"}));
    std::vector<std::string> arguments;
    EXPECT_TRUE(server_.Receive(arguments));
    EXPECT_THAT(arguments, ElementsAre("/usr/bin/lectora", "", "/a b\n.txt"));
}

TEST_F(RunOnceTest, OfStartsInTheSameInstantOneIsTheInstance) {
    std::vector<RunOnceSocket> starts(4);  // as many as fit into the queue that nobody serves here
    std::atomic<int> instances{0};
    for (int round = 0; round < 50; ++round) {
        // What a crash left: bound, and nobody listens.
        UniqueFd dead(::socket(AF_UNIX, SOCK_STREAM, 0));
        ASSERT_EQ(0, ::bind(dead.Get(), Address(), sizeof(sockaddr_un)));
        dead.Reset();
        std::vector<std::thread> threads;
        threads.reserve(starts.size());
        for (RunOnceSocket& start : starts)
            threads.emplace_back([&] {
                instances += start.ClaimPath(path_, {"x"}) == RunOnceSocket::Claim::kServer ? 1 : 0;
            });
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(round + 1, instances);
        for (RunOnceSocket& start : starts)
            start.Close();  // which takes the path away, or the next round could not bind it
    }
}

TEST_F(RunOnceTest, BrokenMessagesNeitherCrashNorHang) {
    server_.ClaimPath(path_, {});
    const std::tuple<std::string, std::vector<std::string>, bool> cases[] = {
        {"", {}, true},
        {Word(3) + Word(1) + "a" + Word(5) + "b", {"a"}, true},
        {Word(2) + Word(-7), {}, true},
        {Word(1) + Word(0x7fffffff), {}, true},
        {Word(-1), {}, false}};  // a negative count stops listening for good
    for (const auto& [message, arguments, goesOn] : cases) {
        bool goOn = !goesOn;
        EXPECT_EQ(ReceivedAfter(message, goOn), arguments);
        EXPECT_EQ(goOn, goesOn);
    }
}

TEST_F(RunOnceTest, StallingClientIsGivenUp) {
    server_.ClaimPath(path_, {});
    const auto start = std::chrono::steady_clock::now();
    bool goOn = false;
    EXPECT_THAT(ReceivedAfter(Word(2) + Word(1), goOn, true), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_TRUE(goOn);
}

TEST_F(RunOnceTest, NamesOfExistingFilesAreHandedOverAbsolute) {
    folder_.Write("book.txt", "text");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.Path());
    std::string arguments[] = {"lectora", "book.txt", "-logon", "missing.txt", "/etc/passwd"};
    char* pointers[5];
    for (int index = 0; index < 5; ++index)
        pointers[index] = arguments[index].data();
    EXPECT_THAT(
        ArgumentsForHandOver(5, pointers),
        ElementsAre("lectora", std::filesystem::canonical(folder_.Path()).string() + "/book.txt",
                    "-logon", "missing.txt", "/etc/passwd"));
    std::filesystem::current_path(before);
}

}  // namespace
