#include "foundation/settings/hosts.h"

#include "foundation/settings/settings_keys.h"

namespace {

// An empty value is none.
std::string Host(const AdministratorSetting<const char*>& setting) {
    const std::string host = setting.Get();
    return host.empty() ? setting.defaultValue : host;
}

}  // namespace

std::string WebHost() {
    return Host(kWebHostSetting);
}

std::string ComponentsHost() {
    return Host(kComponentsHostSetting);
}

std::string ReportHost() {
    return Host(kReportHostSetting);
}

bool IsReservedHost(std::string_view host) {
    return host.substr(0, host.find(':')).ends_with(".example");
}

bool HasWebSite() {
    return !IsReservedHost(WebHost());
}

std::string WebAddress(std::string_view page) {
    if (page.starts_with('/'))
        page.remove_prefix(1);
    return "http://" + WebHost() + "/" + std::string(page);
}
