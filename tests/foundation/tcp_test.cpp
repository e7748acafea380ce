#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <functional>
#include <thread>

#include "foundation/resolve.h"
#include "foundation/tcp_steps.h"

namespace {

// Says stop after a number of questions.
class StopAfter : public LSilentProgress {
public:
    explicit StopAfter(int questions) : left_(questions) {}
    bool IsToStop() { return left_-- <= 0; }

private:
    int left_;
};

// The wait took its time and not much longer, also on a busy machine.
void ExpectTime(double seconds, double expected) {
    EXPECT_GE(seconds, expected - 0.02);
    EXPECT_LE(seconds, expected + 0.4);
}

double Seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

UniqueFd Listen(std::uint16_t& port, int backlog = 8) {
    UniqueFd listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const LIPAddressWithPort any(INADDR_LOOPBACK, 0);
    sockaddr_in bound = any.Raw();
    socklen_t size = sizeof bound;
    EXPECT_EQ(bind(listener.Get(), reinterpret_cast<sockaddr*>(&bound), size), 0);
    listen(listener.Get(), backlog);
    getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&bound), &size);
    port = ntohs(bound.sin_port);
    return listener;
}

// A peer on loopback that plays its script in a thread of its own, and the socket connected to it.
class Peer {
public:
    explicit Peer(std::function<void(int)> script) {
        listener_ = Listen(port_);
        thread_ = std::thread([this, script = std::move(script)] {
            const UniqueFd peer(accept(listener_.Get(), nullptr, nullptr));
            script(peer.Get());
        });
        LSilentProgress progress;
        connected_ =
            ProcessConnect(progress, socket, LIPAddressWithPort(INADDR_LOOPBACK, port_), 2000);
    }
    ~Peer() {
        socket.Reset();
        thread_.join();
    }
    LProcessResult Connected() const { return connected_; }

    LIPSocketTCP socket;

private:
    std::uint16_t port_ = 0;
    UniqueFd listener_;
    std::thread thread_;
    LProcessResult connected_ = kProcessFailed;
};

void Say(int fd, std::string_view text) {
    send(fd, text.data(), text.size(), MSG_NOSIGNAL);
}

void UntilPeerCloses(int fd) {
    char byte;
    while (recv(fd, &byte, 1, 0) > 0) {
    }
}

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
            usleep(120000);
        }
        Say(fd, std::string(300, 'x') + "\r\nbodyunfinished");
    });
    ASSERT_EQ(peer.Connected(), kProcessDone);
    std::string line;
    for (const char* expected : {"HTTP/1.0 200", "second", "", "xxxxxxxxxxxxxxx"}) {
        EXPECT_EQ(RecvLine(LSilentProgress(), peer, line, 200), kProcessDone);
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

TEST(TcpSteps, EndWhenSilentOrCancelled) {
    Peer peer([](int fd) { UntilPeerCloses(fd); });
    std::string line;
    LProcessResult result = kProcessDone;
    ExpectTime(Seconds([&] { result = RecvLine(LSilentProgress(), peer, line, 600); }), 0.6);
    EXPECT_EQ(result, kProcessFailed);
    EXPECT_EQ(RecvLine(StopAfter(2), peer, line, 60000), kProcessStopped);
    StopAfter atOnce(0);
    char byte;
    EXPECT_EQ(ProcessSend(atOnce, peer.socket, "x", 1, 1000), kProcessStopped);
    EXPECT_EQ(ProcessRecvBytes(atOnce, peer.socket, &byte, 1, 1000), kProcessStopped);
}

TEST(TcpSteps, SendInPiecesToFastStuckAndGonePeers) {
    const std::string data(2500, 'd');
    std::size_t received = 0;
    {
        Peer peer([&](int fd) {
            char block[512];
            for (ssize_t got; (got = recv(fd, block, sizeof block, 0)) > 0;)
                received += static_cast<std::size_t>(got);
        });
        LSilentProgress progress;
        EXPECT_EQ(ProcessSend(progress, peer.socket, data.data(), 2500, 2000), kProcessDone);
        EXPECT_EQ(ProcessSend(progress, peer.socket, data.data(), 0, 2000), kProcessDone);
        StopAfter twoPieces(2);
        EXPECT_EQ(ProcessSend(twoPieces, peer.socket, data.data(), 2500, 2000), kProcessStopped);
    }
    EXPECT_EQ(received, 2500u + 2048u);

    const std::string large(32 << 20, 'l');
    {
        LSignalObject done;
        Peer stuck([&](int) { done.Ref().WaitSignalForever(); });
        LSilentProgress progress;
        LProcessResult result = kProcessDone;
        const auto length = static_cast<unsigned int>(large.size());
        ExpectTime(Seconds([&] {
                       result = ProcessSend(progress, stuck.socket, large.data(), length, 400);
                   }),
                   0.4);
        EXPECT_EQ(result, kProcessFailed);
        done.Signal();
    }
    Peer gone([](int) {});
    LSilentProgress progress;
    EXPECT_EQ(ProcessSend(progress, gone.socket, large.data(), 32 << 20, 2000), kProcessFailed);
}

TEST(TcpSteps, ConnectOrLeaveNoSocket) {
    LSilentProgress progress;
    LIPSocketTCP socket = MakeSocketTCP();
    EXPECT_EQ(ProcessConnect(progress, socket, LIPAddressWithPort(), 1000), kProcessFailed);
    EXPECT_FALSE(socket.IsOpen());
    std::uint16_t port = 0;
    Listen(port).Reset();  // nobody there any more
    // Refused: told by the connection or, when that was still in progress, by the first byte.
    char byte;
    if (ProcessConnect(progress, socket, LIPAddressWithPort(INADDR_LOOPBACK, port), 1000) ==
        kProcessDone) {
        EXPECT_EQ(ProcessRecvBytes(progress, socket, &byte, 1, 1000), kProcessFailed);
    } else {
        EXPECT_FALSE(socket.IsOpen());
    }

    // A full backlog drops what else knocks: the connection stays in progress.
    const UniqueFd listener = Listen(port, 0);
    const LIPAddressWithPort full(INADDR_LOOPBACK, port);
    LIPSocketTCP fillers[4];
    for (LIPSocketTCP& filler : fillers) {
        filler = MakeSocketTCP();
        StartConnect(filler, full);
    }
    usleep(20000);
    LProcessResult result = kProcessDone;
    ExpectTime(Seconds([&] { result = ProcessConnect(progress, socket, full, 400); }), 0.4);
    EXPECT_EQ(result, kProcessFailed);
    EXPECT_EQ(socket.Get(), -1);
    StopAfter soon(1);
    EXPECT_EQ(ProcessConnect(soon, socket, full, 60000), kProcessStopped);
    EXPECT_EQ(socket.Get(), -1);
}

TEST(Resolve, SplitsHostsAndFindsTheirAddresses) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"quillon.example", "quillon.example", 80},
        {"localhost:8080", "localhost", 8080},
        {"h:0", "", 80},
        {"h:65536", "", 80},
        {"h:", "", 80},
        {"h:8x", "", 80},
        {"", "", 80}};
    for (const auto& [text, host, port] : cases) {
        const LHostAndPort split = SplitHostPort(text, 80);
        EXPECT_EQ(split.host, host) << text;
        EXPECT_EQ(split.port, port) << text;
    }
    LSilentProgress progress;
    std::vector<LIPAddressWithPort> addresses;
    EXPECT_EQ(ProcessResolve(progress, {"127.0.0.1", 8080}, 5000, addresses), kProcessDone);
    ASSERT_EQ(addresses.size(), 1u);
    EXPECT_EQ(addresses[0].Address(), INADDR_LOOPBACK);
    EXPECT_EQ(addresses[0].Port(), 8080);
    EXPECT_EQ(ProcessResolve(progress, {"no such host", 80}, 5000, addresses), kProcessFailed);
    EXPECT_EQ(ProcessResolve(progress, {"", 80}, 5000, addresses), kProcessFailed);

    char host[260];
    char path[260];
    const std::string longHost(300, 'h');
    const std::tuple<std::string, std::string, std::string> addressesToSplit[] = {
        {"host:80/a/b", "host:80", "/a/b"},
        {"host", "host", ""},
        {"/p", "", "/p"},
        {longHost + "/p", longHost.substr(0, 259), "/p"}};
    for (const auto& [address, expectedHost, expectedPath] : addressesToSplit) {
        ProcessHTTPSplitHost(address.c_str(), host, path);
        EXPECT_EQ(host, expectedHost);
        EXPECT_EQ(path, expectedPath);
    }
}

}  // namespace
