// The wall clock as a tick count.
#pragma once

#include <cstdint>

// Milliseconds of the wall clock, cut to 32 bits: wraps every 49.7 days and follows changes of the
// clock. Any thread.
std::uint32_t GetTickCount();
