#include "qvcore/NativeResult.h"

#include "qvcore/common/NativeError.h"

#include <cerrno>

namespace qv::core {

namespace {

/// Where no name stands, the value is the one of the other system's error of that meaning.
constexpr NativeError errors[] = {
    {ENOENT, QV_E_FILENOTFOUND},
    {ENOTDIR, QV_E_PATHNOTFOUND},
    {EMFILE, QV_E_TOOMANYFILES},
    {ENFILE, QV_E_TOOMANYFILES},
    {EACCES, QV_E_ACCESSDENIED},
    {EPERM, QV_E_ACCESSDENIED},
    {EISDIR, QV_E_ACCESSDENIED},
    {EBADF, QV_E_INVALIDHANDLE},
    {ENOMEM, QV_E_OUTOFMEMORY},
    {EXDEV, detail::result(0x80070011u)},
    {EROFS, detail::result(0x80070013u)},
    {ENOTSUP, detail::result(0x80070032u)},
    {ENOSYS, detail::result(0x80070032u)},
    {EINVAL, QV_E_INVALIDARG},
    {EPIPE, QV_E_BROKENPIPE},
    {ENOSPC, QV_E_DISKFULL},
    {EDQUOT, QV_E_DISKFULL},
    {ESPIPE, detail::result(0x80070084u)},
    {ENOTEMPTY, detail::result(0x80070091u)},
    {EBUSY, QV_E_BUSY},
    {ETXTBSY, QV_E_BUSY},
    {EEXIST, QV_E_ALREADYEXISTS},
    {ENAMETOOLONG, detail::result(0x800700CEu)},
    {EFBIG, detail::result(0x800700DFu)},
    {EIO, detail::result(0x8007045Du)},
    {EDEADLK, detail::result(0x8007046Bu)},
    {ETIMEDOUT, QV_E_TIMEOUT},
    {ELOOP, detail::result(0x80070781u)},
};

constexpr std::uint32_t systemFacility = 0x8BE10000u;

} // namespace

std::int32_t lastNativeResult() noexcept {
    return QVResultFromNative(static_cast<std::uint32_t>(errno));
}

} // namespace qv::core

std::int32_t QVResultFromNative(std::uint32_t code) noexcept {
    return code == 0 ? qv::QV_S_OK
                     : qv::core::findResult(qv::core::errors, code, qv::core::systemFacility);
}
