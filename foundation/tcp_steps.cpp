#include "foundation/tcp_steps.h"

#include <string_view>

void ProcessHTTPSplitHost(const char* address, char* host, char* path) {
    const std::string_view whole(address);
    const std::size_t slash = std::min(whole.find('/'), whole.size());
    CopyText(host, kTextBufferSize, whole.substr(0, slash));
    CopyText(path, kTextBufferSize, whole.substr(slash));
}
