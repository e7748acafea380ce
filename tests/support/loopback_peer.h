// Peers on loopback for the socket steps, and a progress that is cancelled.
#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "foundation/network/ip_socket.h"
#include "foundation/threads/progress.h"

// Says stop after a number of questions.
class StopAfter : public LSilentProgress {
public:
    explicit StopAfter(int questions) : left_(questions) {}
    bool IsToStop() override { return left_-- <= 0; }

private:
    int left_;
};

// Not open on failure; address is where it listens.
inline UniqueFd ListenOnLoopback(LIPAddressWithPort& address, int backlog = 8) {
    UniqueFd listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in bound = LIPAddressWithPort(INADDR_LOOPBACK, 0).Raw();
    socklen_t size = sizeof bound;
    if (::bind(listener.Get(), reinterpret_cast<sockaddr*>(&bound), size) != 0)
        listener.Reset();
    ::listen(listener.Get(), backlog);
    ::getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&bound), &size);
    address = LIPAddressWithPort(INADDR_LOOPBACK, ntohs(bound.sin_port));
    return listener;
}

inline void Say(int fd, std::string_view text) {
    ::send(fd, text.data(), text.size(), MSG_NOSIGNAL);
}

inline std::string ReadToTheEnd(int fd) {
    std::string received;
    char block[512];
    for (ssize_t got; (got = ::recv(fd, block, sizeof block, 0)) > 0;)
        received.append(block, static_cast<std::size_t>(got));
    return received;
}

// Takes one connection in a thread of its own and plays its script with it. Somebody has to
// connect before its end.
class LoopbackPeer {
public:
    explicit LoopbackPeer(std::function<void(int)> script) {
        listener_ = ListenOnLoopback(address_);
        thread_ = std::thread([this, script = std::move(script)] {
            const UniqueFd peer(::accept(listener_.Get(), nullptr, nullptr));
            script(peer.Get());
        });
    }
    ~LoopbackPeer() { Join(); }
    LoopbackPeer(const LoopbackPeer&) = delete;
    LoopbackPeer& operator=(const LoopbackPeer&) = delete;

    const LIPAddressWithPort& Address() const { return address_; }
    void Join() {
        if (thread_.joinable())
            thread_.join();
    }

private:
    LIPAddressWithPort address_;
    UniqueFd listener_;
    std::thread thread_;
};
