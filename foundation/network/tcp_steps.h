// Cancellable TCP steps: what a download or a report is made of.
//
// They run on the thread of the progress object (in the program the GUI thread, inside the GDK
// lock) and keep it alive: no wait is longer than 20 ms, and between waits the progress is asked
// whether to stop. Results: done, stopped by the user, or failed (which a time-out is). Nothing is
// shown to the user here.
#pragma once

#include "foundation/files/text_buffer.h"
#include "foundation/network/ip_socket.h"
#include "foundation/processes/process_result.h"
#include "foundation/threads/progress.h"

LProcessResult ProcessWaitReadable(LProgress& progress, LIPSocketTCPRef socket, int timeoutMs);

// Closes what the socket held before. Whenever the result is not "done" the socket is closed.
LProcessResult ProcessConnect(LProgress& progress, LIPSocketTCP& socket,
                              const LIPAddressWithPort& address, int timeoutMs);

// timeoutMs is the budget of all waits together.
LProcessResult ProcessSend(LProgress& progress, LIPSocketTCPRef socket, const void* data,
                           unsigned int length, int timeoutMs);

// Fills the whole buffer. timeoutMs is the budget of each piece that arrives.
LProcessResult ProcessRecvBytes(LProgress& progress, LIPSocketTCPRef socket, void* buffer,
                                unsigned int length, int timeoutMs);

// One line without its CR and LF, cut to the writer; what follows it stays unread. A peer that
// closes ends a line that has begun. timeoutMs is the budget of each wait.
LProcessResult ProcessRecvLineToWriter(LProgress& progress, LIPSocketTCPRef socket,
                                       LFixedLengthStringWriterTemplate<char>& line, int timeoutMs);

// Splits "host/path" at the first "/"; the path keeps it. Both outputs hold 260 bytes.
void ProcessHTTPSplitHost(const char* address, char* host, char* path);
