// TCP sockets and their addresses, and the single non-waiting operations that the steps in
// tcp_steps.h are made of.
#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <cstdint>

#include "foundation/files/unique_fd.h"

// An IPv4 address and port. All ones (255.255.255.255) marks an unresolved address.
class LIPAddressWithPort {
public:
    LIPAddressWithPort() : LIPAddressWithPort(INADDR_NONE, 0) {}
    LIPAddressWithPort(std::uint32_t address, std::uint16_t port);  // host byte order

    bool IsResolved() const { return Address() != INADDR_NONE; }
    std::uint32_t Address() const { return ntohl(address_.sin_addr.s_addr); }
    std::uint16_t Port() const { return ntohs(address_.sin_port); }
    const sockaddr_in& Raw() const { return address_; }

private:
    sockaddr_in address_{};
};

// Owns its descriptor; -1 when there is none.
using LIPSocketTCP = UniqueFd;

// Borrows it.
class LIPSocketTCPRef {
public:
    LIPSocketTCPRef(const LIPSocketTCP& socket) : fd_(socket.Get()) {}
    explicit LIPSocketTCPRef(int fd) : fd_(fd) {}
    int Fd() const { return fd_; }

private:
    int fd_;
};

enum class LSocketState { kReady, kNotYet, kFailed };

// Non-blocking and close-on-exec; not open when it could not be made.
LIPSocketTCP MakeSocketTCP();
LSocketState StartConnect(LIPSocketTCPRef socket, const LIPAddressWithPort& address);

// Waits once. An exceptional condition alone is a failure for a writer.
LSocketState WaitReadable(LIPSocketTCPRef socket, int milliseconds);
LSocketState WaitWritable(LIPSocketTCPRef socket, int milliseconds);

// Bytes moved, 0 when the peer closed (receiving), kSocketWouldBlock or kSocketError. Never raises
// SIGPIPE.
constexpr std::ptrdiff_t kSocketWouldBlock = -1;
constexpr std::ptrdiff_t kSocketError = -2;
std::ptrdiff_t SendSome(LIPSocketTCPRef socket, const void* data, std::size_t length);
std::ptrdiff_t ReceiveSome(LIPSocketTCPRef socket, void* buffer, std::size_t length);
// Leaves the bytes to be received.
std::ptrdiff_t PeekSome(LIPSocketTCPRef socket, void* buffer, std::size_t length);
