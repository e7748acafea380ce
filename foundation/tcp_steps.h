// Cancellable TCP steps: what a download or a report is made of.
//
// They run on the thread of the progress object (in the program the GUI thread, inside the GDK
// lock) and keep it alive: no wait is longer than 20 ms, and between waits the progress is asked
// whether to stop. Results: done, stopped by the user, or failed (which a time-out is). Nothing is
// shown to the user here.
#pragma once

#include <algorithm>
#include <cstddef>

#include "foundation/ip_socket.h"
#include "foundation/process_result.h"
#include "foundation/progress.h"
#include "foundation/text_buffer.h"

// Milliseconds. Between two waits the progress object answers, among others, a screen reader, which
// asks dozens of questions about a dialog before it says a word.
constexpr int kLongestSocketWait = 20;
constexpr std::size_t kSocketSendPiece = 1024;
constexpr std::size_t kSocketPeekPiece = 80;

// Waits by `wait(milliseconds)` until the socket is ready. Only waits without an answer use up
// remainingMs.
template <LProgress P, typename Wait>
LProcessResult ProcessWaitSocket(P& progress, int& remainingMs, Wait wait) {
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

template <LProgress P>
LProcessResult ProcessWaitReadable(P& progress, LIPSocketTCPRef socket, int timeoutMs) {
    return ProcessWaitSocket(progress, timeoutMs,
                             [socket](int pause) { return WaitReadable(socket, pause); });
}

// Closes what the socket held before. Whenever the result is not "done" the socket is closed.
template <LProgress P>
LProcessResult ProcessConnect(P& progress, LIPSocketTCP& socket, const LIPAddressWithPort& address,
                              int timeoutMs) {
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

// timeoutMs is the budget of all waits together.
template <LProgress P>
LProcessResult ProcessSend(P& progress, LIPSocketTCPRef socket, const void* data,
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

// Fills the whole buffer. timeoutMs is the budget of each piece that arrives.
template <LProgress P>
LProcessResult ProcessRecvBytes(P& progress, LIPSocketTCPRef socket, void* buffer,
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

// One line without its CR and LF, cut to the writer; what follows it stays unread. A peer that
// closes ends a line that has begun. timeoutMs is the budget of each wait.
template <LProgress P>
LProcessResult ProcessRecvLineToWriter(P& progress, LIPSocketTCPRef socket,
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

// Splits "host/path" at the first "/"; the path keeps it. Both outputs hold 260 bytes.
void ProcessHTTPSplitHost(const char* address, char* host, char* path);
