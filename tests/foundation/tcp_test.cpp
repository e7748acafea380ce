#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <functional>
#include <future>

#include "foundation/network/resolve.h"
#include "foundation/network/tcp_steps.h"
#include "tests/support/loopback_peer.h"

namespace {

// The result of work that takes its time; how much longer a busy machine takes is no matter.
LProcessResult Timed(double expected, const std::function<LProcessResult()>& work) {
    const auto start = std::chrono::steady_clock::now();
    const LProcessResult result = work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took.count(), expected - 0.02);
    return result;
}

// A peer and the socket connected to it.
struct Peer {
    explicit Peer(std::function<void(int)> script) : peer(std::move(script)) {
        LSilentProgress progress;
        EXPECT_EQ(ProcessConnect(progress, socket, peer.Address(), 2000), kProcessDone);
    }
    LoopbackPeer peer;
    LIPSocketTCP socket;  // closed before the peer's end is awaited
};

template <typename Progress>
LProcessResult RecvLine(Progress progress, Peer& peer, std::string& line, int timeoutMs) {
    char buffer[16];
    LFixedLengthStringWriterTemplate<char> writer(buffer, sizeof buffer);
    const LProcessResult result = ProcessRecvLineToWriter(progress, peer.socket, writer, timeoutMs);
    line = buffer;
    return result;
}

TEST(TcpSteps, ReadLinesAndLeaveTheRest) {
    Peer peer([](int fd) {
        for (const char* piece : {"HTTP/1.0", " 200", "\r\nsecond\n\r\n"}) {  // each in time
            Say(fd, piece);
            usleep(600000);
        }
        Say(fd, std::string(300, 'x') + "\r\nbodyunfinished");
    });
    std::string line;
    for (const char* expected : {"HTTP/1.0 200", "second", "", "xxxxxxxxxxxxxxx"}) {
        EXPECT_EQ(RecvLine(LSilentProgress(), peer, line, 1000), kProcessDone);
        EXPECT_EQ(line, expected);
    }
    char body[4];
    LSilentProgress progress;
    EXPECT_EQ(ProcessRecvBytes(progress, peer.socket, body, 4, 2000), kProcessDone);
    EXPECT_EQ(std::string(body, 4), "body");
    // A line that has begun ends with the connection; after it there is none.
    EXPECT_EQ(RecvLine(LSilentProgress(), peer, line, 2000), kProcessDone);
    EXPECT_EQ(line, "unfinished");
    EXPECT_EQ(RecvLine(LSilentProgress(), peer, line, 2000), kProcessFailed);
    EXPECT_EQ(ProcessRecvBytes(progress, peer.socket, body, 1, 2000), kProcessFailed);
    EXPECT_EQ(ProcessRecvBytes(progress, peer.socket, body, 0, 2000), kProcessDone);
}

TEST(TcpSteps, EndWhenSilentStoppedOrStuck) {
    std::promise<std::size_t> received;
    Peer peer([&](int fd) { received.set_value(ReadToTheEnd(fd).size()); });
    std::string line;
    char byte;
    EXPECT_EQ(Timed(0.6, [&] { return RecvLine(LSilentProgress(), peer, line, 600); }),
              kProcessFailed);
    EXPECT_EQ(Timed(0.4, [&] { return RecvLine(StopAfter(20), peer, line, 60000); }),
              kProcessStopped);
    StopAfter atOnce(0);
    EXPECT_EQ(ProcessRecvBytes(atOnce, peer.socket, &byte, 1, 1000), kProcessStopped);

    constexpr unsigned int kLarge = 32 << 20;
    const std::string large(kLarge, 'l');
    LSilentProgress progress;
    EXPECT_EQ(ProcessSend(progress, peer.socket, large.data(), 2500, 2000), kProcessDone);
    EXPECT_EQ(ProcessSend(progress, peer.socket, large.data(), 0, 2000), kProcessDone);
    StopAfter twoPieces(2);
    EXPECT_EQ(ProcessSend(twoPieces, peer.socket, large.data(), 2500, 2000), kProcessStopped);
    shutdown(peer.socket.Get(), SHUT_WR);
    EXPECT_EQ(ProcessRecvBytes(progress, peer.socket, &byte, 1, 2000), kProcessFailed);
    EXPECT_EQ(received.get_future().get(), 2500u + 2048u);
    LSignalObject done;
    Peer stuck([&](int) { done.Ref().WaitSignalForever(); });
    EXPECT_EQ(
        Timed(0.4, [&] { return ProcessSend(progress, stuck.socket, large.data(), kLarge, 400); }),
        kProcessFailed);
    done.Signal();
    Peer gone([](int) {});
    EXPECT_EQ(ProcessSend(progress, gone.socket, large.data(), kLarge, 2000), kProcessFailed);
}

TEST(TcpSteps, ConnectOrLeaveNoSocket) {
    LSilentProgress progress;
    LIPSocketTCP socket = MakeSocketTCP();
    EXPECT_EQ(ProcessConnect(progress, socket, LIPAddressWithPort(), 1000), kProcessFailed);
    EXPECT_FALSE(socket.IsOpen());
    // A full backlog drops what else knocks: the connection stays in progress.
    LIPAddressWithPort full;
    const UniqueFd listener = ListenOnLoopback(full, 0);
    LIPSocketTCP fillers[4];
    for (LIPSocketTCP& filler : fillers) {
        filler = MakeSocketTCP();
        StartConnect(filler, full);
    }
    usleep(20000);
    EXPECT_EQ(Timed(0.4, [&] { return ProcessConnect(progress, socket, full, 400); }),
              kProcessFailed);
    EXPECT_EQ(socket.Get(), -1);
    StopAfter soon(1);
    EXPECT_EQ(ProcessConnect(soon, socket, full, 60000), kProcessStopped);
    EXPECT_EQ(socket.Get(), -1);
}

TEST(Resolve, SplitsHostsAndFindsTheirAddresses) {
    const std::tuple<const char*, std::string, int> hosts[] = {
        {"a.b", "a.b", 80}, {"a:8080", "a", 8080}, {"h:0", "", 80}, {"h:65536", "", 80},
        {"h:", "", 80},     {"h:8x", "", 80},      {"", "", 80}};
    for (const auto& [text, host, port] : hosts)
        EXPECT_TRUE(SplitHostPort(text, 80).host == host && SplitHostPort(text, 80).port == port)
            << text;
    LSilentProgress progress;
    std::vector<LIPAddressWithPort> found;
    EXPECT_EQ(ProcessResolve(progress, {"127.0.0.1", 8080}, 5000, found), kProcessDone);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(found[0].Address() == INADDR_LOOPBACK && found[0].Port() == 8080);
    EXPECT_EQ(ProcessResolve(progress, {"no such host", 80}, 5000, found), kProcessFailed);
    EXPECT_EQ(ProcessResolve(progress, {"", 80}, 5000, found), kProcessFailed);
    const std::string longHost(300, 'h');
    const std::tuple<std::string, std::string, std::string> addresses[] = {
        {"host:80/a/b", "host:80", "/a/b"},
        {"host", "host", ""},
        {longHost + "/p", longHost.substr(0, 259), "/p"}};
    for (const auto& [address, expectedHost, expectedPath] : addresses) {
        char host[260];
        char path[260];
        ProcessHTTPSplitHost(address.c_str(), host, path);
        EXPECT_TRUE(host == expectedHost && path == expectedPath) << address;
    }
}

}  // namespace
