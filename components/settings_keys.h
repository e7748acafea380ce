// The settings that this folder reads.
#pragma once

#include "foundation/settings/setting.h"

// The SHA-256 that the installer of a component must have; the key is the component's name.
inline AdministratorSetting<const char*> ComponentSumSetting(const char* component) {
    return {"ComponentSha256", component, ""};
}
