// The questions that lead to a bug report, and the pages they open.
#pragma once

#include <string>

// Who asks, and how.
class LBugReportDesk {
public:
    virtual bool AskYesNo(const char* title, const char* text) = 0;  // blocks until answered
    virtual void OpenPage(const std::string& address) = 0;           // in the desktop's browser
    virtual void Tell(const char* title, const char* text) = 0;      // blocks until it is read

protected:
    ~LBugReportDesk() = default;
};

// After a fatal signal.
void ReportCrash(LBugReportDesk& desk, int signal);

// After a run that did not end cleanly: two questions, 0.6 seconds apart.
void ReportHang(LBugReportDesk& desk);
