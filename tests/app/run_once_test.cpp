#include "app/start/run_once.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "foundation/files/text_buffer.h"
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
        HandedOver handed;
        goOn = server_.Receive(handed);
        return handed.arguments;
    }
    static std::string Word(std::int32_t number) {
        return std::string(reinterpret_cast<const char*>(&number), sizeof number);
    }

    void AwaitConnection() const {
        pollfd entry{server_.ListeningFd(), POLLIN, 0};
        EXPECT_EQ(1, ::poll(&entry, 1, 60000));
    }
    // A second start, in a thread of its own because it waits for the answer.
    std::future<RunOnceSocket::Claim> StartSecond(const std::vector<std::string>& arguments,
                                                  int milliseconds = 60000) {
        return std::async(std::launch::async, [this, arguments, milliseconds] {
            return second_.ClaimPath(path_, arguments, milliseconds);
        });
    }

    ScratchFolder folder_;
    std::string path_ = folder_ / "socket";
    sockaddr_un address_{};
    RunOnceSocket server_;
    RunOnceSocket second_;
};

TEST_F(RunOnceTest, SecondStartHandsItsWholeCommandLineOver) {
    ASSERT_EQ(RunOnceSocket::Claim::kServer, server_.ClaimPath(path_, {"lectora"}));
    auto second = StartSecond({"/usr/bin/lectora", "", "/a b\n.txt"});
    AwaitConnection();
    HandedOver handed;
    EXPECT_TRUE(server_.Receive(handed));
    EXPECT_THAT(handed.arguments, ElementsAre("/usr/bin/lectora", "", "/a b\n.txt"));
    EXPECT_EQ(std::future_status::timeout, second.wait_for(std::chrono::milliseconds(100)))
        << "it waits until somebody does what it asks for";
    handed = {};
    EXPECT_EQ(RunOnceSocket::Claim::kHandedOver, second.get());
    // All the files of a large folder.
    const std::vector<std::string> many(100000, "a name of 20 letters");
    second = StartSecond(many);
    AwaitConnection();
    EXPECT_TRUE(server_.Receive(handed));
    EXPECT_EQ(handed.arguments, many);
    handed = {};
    EXPECT_EQ(RunOnceSocket::Claim::kHandedOver, second.get());
}

TEST_F(RunOnceTest, OfALongCommandLineThatABusyInstanceDoesNotTakeNothingIsDone) {
    server_.ClaimPath(path_, {});
    const std::vector<std::string> files(400, std::string(1000, 'x'));
    EXPECT_EQ(RunOnceSocket::Claim::kBusy, StartSecond(files, 200).get());
    EXPECT_EQ(second_.BusyProcess(), ::getpid());
    HandedOver handed;
    EXPECT_TRUE(server_.Receive(handed));
    EXPECT_THAT(handed.arguments, IsEmpty());
    pollfd entry{server_.ListeningFd(), POLLIN, 0};
    EXPECT_EQ(0, ::poll(&entry, 1, 0)) << "it was handed over more than once";
}

TEST_F(RunOnceTest, AStartThatOnlyAsksTakesNoPlaceAndHearsWhatBecameOfIt) {
    using Claim = RunOnceSocket::Claim;
    EXPECT_EQ(Claim::kNobody, second_.AskRunning(path_, {"lectora", "--stop"}));
    EXPECT_FALSE(folder_.Has("socket"));
    server_.ClaimPath(path_, {});
    const auto ask = [&](int milliseconds) {
        return std::async(std::launch::async, [this, milliseconds] {
            return second_.AskRunning(path_, {"lectora", "--stop"}, milliseconds);
        });
    };
    for (const bool isDone : {true, false}) {
        auto asked = ask(60000);
        AwaitConnection();
        HandedOver handed;
        server_.Receive(handed);
        handed.Promise();
        handed.Answer(isDone, "a\nb");
        EXPECT_EQ(Claim::kHandedOver, asked.get());
        ASSERT_TRUE(second_.Answer());
        EXPECT_EQ(second_.Answer()->isDone, isDone);
        EXPECT_EQ(second_.Answer()->text, "a\nb");
    }
    // One that has just begun to listen is given more time than it was asked with.
    auto asked = ask(1);
    AwaitConnection();
    HandedOver handed;
    server_.Receive(handed);
    EXPECT_EQ(std::future_status::timeout, asked.wait_for(std::chrono::milliseconds(200)));
    handed.Refuse();
    server_.Close();
    EXPECT_EQ(Claim::kNobody, asked.get());
    // What was left there listens to nobody, and a hung one is known by its age.
    server_.ClaimPath(path_, {});
    std::filesystem::last_write_time(
        path_, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(Claim::kBusy, ask(50).get());
    EXPECT_EQ(second_.BusyProcess(), ::getpid());
}

TEST_F(RunOnceTest, AStartIntoAnInstanceThatEndsTakesItsPlace) {
    for (const bool isRead : {false, true}) {
        ASSERT_EQ(RunOnceSocket::Claim::kServer, server_.ClaimPath(path_, {"lectora"}));
        auto second = StartSecond({"lectora", "book.txt"});
        AwaitConnection();
        HandedOver handed;
        if (isRead && server_.Receive(handed))
            handed.Refuse();
        server_.Close();
        EXPECT_EQ(RunOnceSocket::Claim::kServer, second.get()) << isRead;
        EXPECT_TRUE(folder_.Has("socket")) << "the end of the first took the path of the second";
        second_.Close();
    }
}

TEST_F(RunOnceTest, AnInstanceThatHangsIsToldOfByItsNumber) {
    server_.ClaimPath(path_, {});
    for (int start = 0; start < 8; ++start) {  // more than can queue
        EXPECT_EQ(RunOnceSocket::Claim::kBusy, StartSecond({"lectora"}, 50).get());
        EXPECT_TRUE(second_.BusyProcess() == ::getpid() || (start > 5 && !second_.BusyProcess()));
    }
}

TEST_F(RunOnceTest, OfStartsInTheSameInstantOneIsTheInstance) {
    std::vector<RunOnceSocket> starts(6);
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
                if (start.ClaimPath(path_, {"x"}) != RunOnceSocket::Claim::kServer)
                    return;
                ++instances;
                HandedOver handed;
                for (std::size_t others = 1; others < starts.size();
                     others += handed.arguments.size()) {
                    pollfd entry{start.ListeningFd(), POLLIN, 0};
                    ::poll(&entry, 1, 60000);
                    start.Receive(handed);
                }
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
        {Word(3) + Word(1) + "a" + Word(5) + "b",
         {},
         true},  // its sender tells, and is asked again
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

}  // namespace
