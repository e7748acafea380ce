#include "foundation/network/ip_socket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace {

std::ptrdiff_t Outcome(ssize_t result) {
    if (result >= 0)
        return result;
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? kSocketWouldBlock
                                                                     : kSocketError;
}

// poll instead of select: a process with many open files has descriptors that select cannot hold.
LSocketState WaitFor(LIPSocketTCPRef socket, short events, short readyEvents, int milliseconds) {
    pollfd waited{socket.Fd(), static_cast<short>(events | POLLPRI), 0};
    const int result = poll(&waited, 1, milliseconds);
    if (result == 0 || (result < 0 && errno == EINTR))
        return LSocketState::kNotYet;
    if (result > 0 && (waited.revents & readyEvents) != 0)
        return LSocketState::kReady;
    return LSocketState::kFailed;
}

}  // namespace

LIPAddressWithPort::LIPAddressWithPort(std::uint32_t address, std::uint16_t port) {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(address);
    address_.sin_port = htons(port);
}

LIPSocketTCP MakeSocketTCP() {
    return LIPSocketTCP(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

LSocketState StartConnect(LIPSocketTCPRef socket, const LIPAddressWithPort& address) {
    const sockaddr_in& raw = address.Raw();
    if (connect(socket.Fd(), reinterpret_cast<const sockaddr*>(&raw), sizeof raw) == 0)
        return LSocketState::kReady;
    return errno == EINPROGRESS ? LSocketState::kNotYet : LSocketState::kFailed;
}

// Errors and hang-ups count as ready: the next send or receive tells them.
LSocketState WaitReadable(LIPSocketTCPRef socket, int milliseconds) {
    return WaitFor(socket, POLLIN, POLLIN | POLLERR | POLLHUP, milliseconds);
}

LSocketState WaitWritable(LIPSocketTCPRef socket, int milliseconds) {
    return WaitFor(socket, POLLOUT, POLLOUT | POLLERR, milliseconds);
}

std::ptrdiff_t SendSome(LIPSocketTCPRef socket, const void* data, std::size_t length) {
    return Outcome(send(socket.Fd(), data, length, MSG_NOSIGNAL | MSG_DONTWAIT));
}

std::ptrdiff_t ReceiveSome(LIPSocketTCPRef socket, void* buffer, std::size_t length) {
    return Outcome(recv(socket.Fd(), buffer, length, MSG_DONTWAIT));
}

std::ptrdiff_t PeekSome(LIPSocketTCPRef socket, void* buffer, std::size_t length) {
    return Outcome(recv(socket.Fd(), buffer, length, MSG_PEEK | MSG_DONTWAIT));
}
