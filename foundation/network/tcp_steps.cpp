#include "foundation/network/tcp_steps.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>

namespace {

// Milliseconds. Between two waits the progress object answers, among others, a screen reader, which
// asks dozens of questions about a dialog before it says a word.
constexpr int kLongestSocketWait = 20;
constexpr std::size_t kSocketSendPiece = 1024;
constexpr std::size_t kSocketPeekPiece = 80;

using SocketWait = std::function<LSocketState(int milliseconds)>;

// Waits by `wait` until the socket is ready. Only waits without an answer use up remainingMs.
LProcessResult ProcessWaitSocket(LProgress& progress, int& remainingMs, const SocketWait& wait) {
    while (!progress.IsToStop()) {
        const LSocketState state = wait(std::clamp(remainingMs, 1, kLongestSocketWait));
        if (state == LSocketState::kReady)
            return kProcessDone;
        if (state == LSocketState::kFailed)
            return kProcessFailed;
        remainingMs -= kLongestSocketWait;
        if (remainingMs < 1)
            return progress.IsToStop() ? kProcessStopped : kProcessFailed;
    }
    return kProcessStopped;
}

}  // namespace

LProcessResult ProcessWaitReadable(LProgress& progress, LIPSocketTCPRef socket, int timeoutMs) {
    return ProcessWaitSocket(progress, timeoutMs,
                             [socket](int pause) { return WaitReadable(socket, pause); });
}

LProcessResult ProcessConnect(LProgress& progress, LIPSocketTCP& socket,
                              const LIPAddressWithPort& address, int timeoutMs) {
    socket = MakeSocketTCP();
    LProcessResult result = kProcessFailed;
    if (socket.IsOpen() && address.IsResolved()) {
        const LSocketState state = StartConnect(socket, address);
        if (state == LSocketState::kReady)
            result = kProcessDone;
        else if (state == LSocketState::kNotYet)
            // A refused connection counts as writable too; the first send or receive then fails.
            result = ProcessWaitSocket(
                progress, timeoutMs, [&socket](int pause) { return WaitWritable(socket, pause); });
    }
    if (result != kProcessDone)
        socket.Reset();
    return result;
}

LProcessResult ProcessSend(LProgress& progress, LIPSocketTCPRef socket, const void* data,
                           unsigned int length, int timeoutMs) {
    const char* next = static_cast<const char*>(data);
    std::size_t remaining = length;
    while (!progress.IsToStop()) {
        const std::size_t piece = std::min(remaining, kSocketSendPiece);
        const std::ptrdiff_t sent = SendSome(socket, next, piece);
        if (sent == kSocketError)
            return kProcessFailed;
        const std::size_t done = sent > 0 ? static_cast<std::size_t>(sent) : 0;
        if (sent >= 0 && done == remaining)
            return kProcessDone;
        next += done;
        remaining -= done;
        if (done == kSocketSendPiece)
            continue;
        const LProcessResult waited = ProcessWaitSocket(
            progress, timeoutMs, [socket](int pause) { return WaitWritable(socket, pause); });
        if (waited != kProcessDone)
            return waited;
    }
    return kProcessStopped;
}

LProcessResult ProcessRecvBytes(LProgress& progress, LIPSocketTCPRef socket, void* buffer,
                                unsigned int length, int timeoutMs) {
    char* next = static_cast<char*>(buffer);
    std::size_t remaining = length;
    while (remaining > 0) {
        const LProcessResult waited = ProcessWaitReadable(progress, socket, timeoutMs);
        if (waited != kProcessDone)
            return waited;
        const std::ptrdiff_t got = ReceiveSome(socket, next, remaining);
        if (got == 0 || got == kSocketError)
            return kProcessFailed;
        if (got > 0) {
            next += got;
            remaining -= static_cast<std::size_t>(got);
        }
    }
    return kProcessDone;
}

LProcessResult ProcessRecvLineToWriter(LProgress& progress, LIPSocketTCPRef socket,
                                       LFixedLengthStringWriterTemplate<char>& line,
                                       int timeoutMs) {
    bool begun = false;
    for (;;) {
        const LProcessResult waited = ProcessWaitReadable(progress, socket, timeoutMs);
        if (waited != kProcessDone)
            return waited;
        char bytes[kSocketPeekPiece];
        const std::ptrdiff_t peeked = PeekSome(socket, bytes, sizeof bytes);
        if (peeked == 0)
            return begun ? kProcessDone : kProcessFailed;
        if (peeked == kSocketError)
            return kProcessFailed;
        if (peeked == kSocketWouldBlock)
            continue;
        const char* const end = bytes + peeked;
        const char* const lineFeed = std::find(static_cast<const char*>(bytes), end, '\n');
        for (const char* byte = bytes; byte != lineFeed; ++byte) {
            if (*byte != '\r')
                line.Put(*byte);
        }
        const bool ended = lineFeed != end;
        const std::ptrdiff_t walked = lineFeed - bytes + (ended ? 1 : 0);
        if (ReceiveSome(socket, bytes, static_cast<std::size_t>(walked)) != walked)
            return kProcessFailed;
        if (ended)
            return kProcessDone;
        begun = true;
    }
}

void ProcessHTTPSplitHost(const char* address, char* host, char* path) {
    const std::string_view whole(address);
    const std::size_t slash = std::min(whole.find('/'), whole.size());
    CopyText(host, kTextBufferSize, whole.substr(0, slash));
    CopyText(path, kTextBufferSize, whole.substr(slash));
}
