#include "foundation/processes/late_library.h"

#include <dlfcn.h>

LateLibrary::LateLibrary(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        handle_ = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
        if (handle_ != nullptr)
            break;
    }
    isWhole_ = handle_ != nullptr;
}

void* LateLibrary::Address(const char* name) {
    void* address = handle_ == nullptr ? nullptr : dlsym(handle_, name);
    isWhole_ = isWhole_ && address != nullptr;
    return address;
}
