// Fetching an optional program from the maker's servers: an installer is downloaded over HTTP and
// run by bash, under a progress object that shows it and can stop it. Whatever ends the run early,
// nothing of the download is left.
#pragma once

#include <string>

#include "foundation/files/text_buffer.h"
#include "foundation/threads/progress.h"

// message: what the installer said last, as a sentence for the user.
LProcessResult ProcessDownloadComponent(LProgress& progress, const char* host, const char* name,
                                        const std::string& temporaryName, std::string& message);

LProcessResult ProcessDownloadAndInstallComponent(LProgress& progress, const char* name,
                                                  std::string& message);

// For a progress dialog titled "Install-on-Demand".
struct LProcessGetComponentPath {
    const char* name = "";            // of the component; borrowed
    char path[kTextBufferSize] = "";  // its program, when done
    std::string message;  // otherwise what the installer said last, which may be nothing
};

LProcessResult Process(LProgress& progress, LProcessGetComponentPath& request);
