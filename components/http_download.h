// One file from a web server.
#pragma once

#include <cstdint>

#include "foundation/threads/progress.h"

constexpr std::int64_t kLargestDownload = std::int64_t{256} << 20;

// url is "http://HOST[:PORT]/PATH". A 3xx answer counts as success and is not followed: its body is
// what is taken for the file. An answer that does not tell its length fails, since half an
// installer would look whole.
LProcessResult ProcessHTTPDownloadFile(LProgress& progress, const char* url,
                                       const char* outputPath);
