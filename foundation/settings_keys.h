// The settings that this folder reads.
#pragma once

#include "foundation/host_defaults.h"
#include "foundation/setting.h"

constexpr AdministratorSetting<const char*> kWebHostSetting{"Hosts", "Web", kDefaultWebHost};
constexpr AdministratorSetting<const char*> kComponentsHostSetting{"Hosts", "Components",
                                                                   kDefaultComponentsHost};
constexpr AdministratorSetting<const char*> kReportHostSetting{"Hosts", "Report",
                                                               kDefaultReportHost};
