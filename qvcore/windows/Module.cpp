#include "qvcore/Module.h"

#include "qv/Results.h"

#include <windows.h>

std::int32_t QVModuleOnFork(void (*)(void), void (*)(void)) noexcept { return qv::QV_S_OK; }

void QVModuleForgetFork(void (*)(void)) noexcept {}

const char16_t* QVModuleGetCommandLine() noexcept {
    return reinterpret_cast<const char16_t*>(GetCommandLineW());
}
