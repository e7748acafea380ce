// The bug-report questions as boxes of GTK's.
#pragma once

#include <gtk/gtk.h>

#include <string>

#include "foundation/crash/bug_report.h"

class GtkDesk final : public LBugReportDesk {
public:
    bool AskYesNo(const char* title, const char* text) override;
    void OpenPage(const std::string& address) override;
    void Tell(const char* title, const char* text) override;
};
