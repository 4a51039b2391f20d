#include "qvcore/NativeResult.h"

#include "qvcore/common/NativeError.h"

#include <windows.h>

namespace qv::core {

namespace {

/// Errors of one meaning and several numbers.
constexpr NativeError errors[] = {
    {ERROR_NOT_ENOUGH_MEMORY, QV_E_OUTOFMEMORY},
    {ERROR_HANDLE_DISK_FULL, QV_E_DISKFULL},
    {ERROR_FILE_EXISTS, QV_E_ALREADYEXISTS},
    {ERROR_BAD_PATHNAME, QV_E_INVALIDNAME},
    {ERROR_NO_DATA, QV_E_BROKENPIPE},
    {WAIT_TIMEOUT, QV_E_TIMEOUT},
};

constexpr std::uint32_t systemFacility = 0x80070000u;

} // namespace

std::int32_t lastNativeResult() noexcept { return QVResultFromNative(GetLastError()); }

} // namespace qv::core

std::int32_t QVResultFromNative(std::uint32_t code) noexcept {
    return code == 0 ? qv::QV_S_OK
                     : qv::core::findResult(qv::core::errors, code, qv::core::systemFacility);
}
