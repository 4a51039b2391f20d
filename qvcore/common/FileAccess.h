#pragma once

#include "qvcore/File.h"

#include <cstdint>

namespace qv::core {

/// True for access bits that mean something together: reading or writing, and emptying only what is
/// written.
constexpr bool isValidFileAccess(std::uint32_t access) noexcept {
    constexpr std::uint32_t known =
        QV_FILE_READ | QV_FILE_WRITE | QV_FILE_ATEND | QV_FILE_CREATE | QV_FILE_TRUNCATE;
    const bool transfers = (access & (QV_FILE_READ | QV_FILE_WRITE)) != 0;
    const bool emptiesWhatItReads =
        (access & QV_FILE_TRUNCATE) != 0 && (access & QV_FILE_WRITE) == 0;
    return (access & ~known) == 0 && transfers && !emptiesWhatItReads;
}

} // namespace qv::core
