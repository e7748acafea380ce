// RTF, as it is written for the program that reads it.
#include <cstdlib>

#include "documents/rtf_for_program.h"
#include "fuzz/document_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMostTimes = 8;  // a group's beginning becomes some words
    const StopTest goesOn;
    for (const DocumentRules& rules : RulesToTry())
        if (RtfForProgram(InputOf(data, size), ReadingWatch(goesOn), rules).size() >
            kMostTimes * size)
            std::abort();
    return 0;
}
