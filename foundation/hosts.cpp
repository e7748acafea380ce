#include "foundation/hosts.h"

#include "foundation/host_defaults.h"
#include "foundation/settings.h"
#include "foundation/text_buffer.h"

namespace {

std::string Host(const char* key, const char* defaultHost) {
    char host[kTextBufferSize];
    _LSettingGetString("Hosts", key, defaultHost, host);
    return host[0] ? host : defaultHost;
}

}  // namespace

std::string WebHost() {
    return Host("Web", kDefaultWebHost);
}

std::string ComponentsHost() {
    return Host("Components", kDefaultComponentsHost);
}

std::string ReportHost() {
    return Host("Report", kDefaultReportHost);
}

std::string WebAddress(std::string_view page) {
    if (page.starts_with('/'))
        page.remove_prefix(1);
    return "http://" + WebHost() + "/" + std::string(page);
}
