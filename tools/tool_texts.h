// What both programs say about themselves and to their user.
#pragma once

#include <string>

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

// "PROGRAM: message" on standard error, ending a progress line that stands there.
void Complain(const char* program, const std::string& message);
// The same, followed by a hint at --help; returns kExitUsage.
int UsageError(const char* program, const std::string& message);

int ShowVersion(const char* program);  // returns kExitDone

// A whole number in [least, most], nothing else in the text; false leaves the number alone.
bool ParseNumber(const char* text, int least, int most, int& number);

std::string ErrorText(int error);  // of an errno
