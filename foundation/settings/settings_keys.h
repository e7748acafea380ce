// The settings that this folder reads.
#pragma once

#include "foundation/settings/host_defaults.h"
#include "foundation/settings/setting.h"

constexpr AdministratorSetting<const char*> kWebHostSetting{"Hosts", "Web", kDefaultWebHost};
constexpr AdministratorSetting<const char*> kComponentsHostSetting{"Hosts", "Components",
                                                                   kDefaultComponentsHost};
constexpr AdministratorSetting<const char*> kReportHostSetting{"Hosts", "Report",
                                                               kDefaultReportHost};
