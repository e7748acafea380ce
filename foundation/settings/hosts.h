// The maker's servers. Defaults are set at configure time (LECTORA_HOST_... of CMake); the
// machine-wide settings section "Hosts" overrides them by the keys "Web", "Components" and
// "Report", where nobody but root could have written it. A host may carry a port: "host:port".
#pragma once

#include <string>
#include <string_view>

std::string WebHost();         // the web site; second choice for components
std::string ComponentsHost();  // first choice for components
std::string ReportHost();      // takes the uninstall feedback

// The name is one that is reserved for examples. Nobody answers for it, but whoever has the network
// may: it is never asked.
bool IsReservedHost(std::string_view host);
bool HasWebSite();  // false: there is no page to show

// "http://HOST/PAGE" on the web site; page with or without its leading slash, may carry a query.
std::string WebAddress(std::string_view page);
