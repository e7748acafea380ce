// The helper program that shows the bug-report questions: "lectora-crash-box", installed beside the
// executable.
//
//   lectora-crash-box --signal NUMBER        the whole conversation after a fatal signal
//   lectora-crash-box --question TITLE TEXT  one yes/no box; prints "yes" or "no"
#pragma once

// Its path; empty when this process's own place is not known. Static storage: usable in a signal
// handler.
const char* CrashBoxProgram();

// Takes another program instead, cut to 4095 bytes. Not while a fatal signal may arrive.
void SetCrashBoxProgram(const char* path);
