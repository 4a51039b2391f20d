#include "tests/support/SharedModule.h"

#include <cstdio>
#include <dlfcn.h>

namespace support {

SharedModule::SharedModule(const std::string& path)
    : handle_(dlopen((path + ".so").c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
    }
}

SharedModule::~SharedModule() {
    if (handle_ != nullptr) {
        dlclose(handle_);
    }
}

bool SharedModule::isLoaded(const std::string& path) {
    void* const handle = dlopen((path + ".so").c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

SharedModule::AnyFunction* SharedModule::address(const char* name) const {
    return reinterpret_cast<AnyFunction*>(dlsym(handle_, name));
}

} // namespace support
