// The settings that this folder reads.
#pragma once

#include "foundation/host_defaults.h"
#include "foundation/setting.h"

constexpr MachineSetting<const char*> kWebHostSetting{"Hosts", "Web", kDefaultWebHost};
constexpr MachineSetting<const char*> kComponentsHostSetting{"Hosts", "Components",
                                                             kDefaultComponentsHost};
constexpr MachineSetting<const char*> kReportHostSetting{"Hosts", "Report", kDefaultReportHost};
