#include "tests/support/SharedModule.h"

#include <windows.h>

namespace support {

SharedModule::SharedModule(const std::string& path)
    : handle_(LoadLibraryA((path + ".dll").c_str())) {}

SharedModule::~SharedModule() {
    if (handle_ != nullptr) {
        FreeLibrary(static_cast<HMODULE>(handle_));
    }
}

bool SharedModule::isLoaded(const std::string& path) {
    return GetModuleHandleA((path + ".dll").c_str()) != nullptr;
}

SharedModule::AnyFunction* SharedModule::address(const char* name) const {
    return reinterpret_cast<AnyFunction*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace support
