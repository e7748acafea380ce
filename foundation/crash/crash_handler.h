// Fatal signals: a question to the user, then the end that the signal demands.
//
// A program that refers to anything here is armed before main(): signals 4, 10 and 11 reach
// LDebugSignalHandler, the second, which is no fault, only where it is not blocked. The question is
// asked by a program of its own (crash_box_program.h), because the faulting thread may hold the
// heap's or GDK's lock; where it cannot be started, nothing is asked.
#pragma once

#include <atomic>
#include <cstdint>

extern std::atomic<std::uint8_t> bLLibExceptionAlreadyTrapped;  // set by the first fatal signal

// Async-signal-safe; runs on the faulting thread, waits for the user's answer, and ends the process
// with the signal.
void LDebugSignalHandler(int signal);

// The connection to the X server of the calling thread, a socket. When that thread faults, the
// connection is shut down before anybody is asked: the server then takes back the pointer and the
// keyboard, which an open menu holds, and the question can be answered.
void LDebugShutDownOnFault(int displayConnection);

// Blocks every signal for the calling thread and those it starts later, except those that a fault
// raises: the kernel kills a process that faults with the fault's signal blocked, without asking
// the handler.
void LDebugBlockSignals();
