#pragma once

#include "qv/ErrorRule.h"
#include "qv/String.h"
#include "qvcore/File.h"

namespace qv::io::detail {

/// Opens a file with the access bits of the platform, and with permissions for its owner alone
/// where it is made.
/// @throws ResultException with the platform's result.
inline std::uint64_t openFile(const String& path, std::uint32_t access) {
    constexpr std::uint32_t ownerOnly = 0700;
    if (path.indexOf(u'\0') >= 0) {
        throwResult(QV_E_INVALIDNAME); // the platform's texts end at a terminator
    }
    std::uint64_t handle = QV_FILE_NONE;
    throwIfFailed(QVFileOpen(path.getData(), access, ownerOnly, &handle));
    return handle;
}

/// Closes the file of a stream that goes: there is nobody to tell what was lost, and no second try.
inline void dropFile(std::uint64_t handle) noexcept {
    const std::int32_t result = QVFileClose(handle);
    if (result < 0 && result != QV_E_INVALIDHANDLE) {
        QVFileAbandon(handle);
    }
}

} // namespace qv::io::detail
