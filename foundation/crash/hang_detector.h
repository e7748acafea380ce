// Notices at start-up that the previous run did not end cleanly. GUI thread.
#pragma once

#include <cstdint>

#include "foundation/crash/bug_report.h"
#include "foundation/files/text_buffer.h"
#include "foundation/files/unique_fd.h"

// A file marks a run in progress; a clean end removes it.
class LHangDetector {
public:
    LHangDetector() = default;
    LHangDetector(const LHangDetector&) = delete;
    LHangDetector& operator=(const LHangDetector&) = delete;
    ~LHangDetector() { Destroy(); }

    // Marks this run in the folder; where an unfinished run's mark stands, removes that instead
    // and, unless the clock was changed since, asks about it. now in wall-clock seconds, tick as
    // from GetTickCount.
    void Init(const char* folder, std::int32_t now, std::uint32_t tick, LBugReportDesk& desk);
    void Destroy();  // removes the mark; also at the end of the object's life

private:
    char path_[kTextBufferSize] = {};
    UniqueFd fd_;
};

extern LHangDetector gLHangDetector;

void LDebugHangDetectorInit();  // in "/tmp"; asks through the helper program
void LDebugHangDetectorDestroy();
