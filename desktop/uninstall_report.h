// What a user may say on removing the program, and how it reaches the maker.
#pragma once

#include <string>

#include "foundation/threads/progress.h"

// One reason of the list. Null where it has no such text; the link is a page on the maker's site.
struct LUninstallComment {
    const char* key;
    const char* choice;
    const char* prompt;
    const char* advice;
    const char* link;
};
// In the order of the list; an all-empty row ends it.
extern const LUninstallComment gUninstallComments[];

constexpr const char* kReportPath = "/cgi-bin/report.exe";
constexpr int kReportTimeout = 5000;  // milliseconds for each address and each send

// The form to be posted for the selected item of the list, whose item 0 is the invitation to choose
// one; empty when nothing is to be sent. The row looked at is the one behind the row that the page
// shows for this item: the report service counts on it.
std::string UninstallReportBody(int selectedItem, const std::string& typed);

// The header before a body.
std::string UninstallReportHeader(const std::string& host, const std::string& body);

// Sends it to the first address that accepts. Every failure ends it silently; the answer is not
// read. Not for the GUI thread but under a progress object.
void ProcessUninstallReport(LProgress& progress, const std::string& body);
