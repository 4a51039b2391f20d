#include "qvcore/common/RandomBytes.h"

#include "qvcore/NativeResult.h"

#include <windows.h>
// RtlGenRandom, by the name that the system exports it under.
#include <ntsecapi.h>

namespace qv::core {

std::int32_t fillWithRandomBytes(void* memory, std::size_t size) noexcept {
    const bool filled = RtlGenRandom(memory, static_cast<ULONG>(size)) != FALSE;
    return filled ? 0 : QVResultFromNative(ERROR_GEN_FAILURE);
}

} // namespace qv::core
