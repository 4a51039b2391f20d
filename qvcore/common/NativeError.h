#pragma once

#include "qv/Results.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace qv::core {

/// A native error number and the result that stands for it on every system.
struct NativeError {
    std::uint32_t code;
    std::int32_t result;
};

/// The result that a table gives for an error; one that stands in no table is told by its number
/// behind `facility`.
inline std::int32_t findResult(std::span<const NativeError> errors, std::uint32_t code,
                               std::uint32_t facility) noexcept {
    const auto found = std::find_if(errors.begin(), errors.end(), [code](const NativeError& error) {
        return error.code == code;
    });
    return found != errors.end() ? found->result : detail::result(facility + (code & 0xFFFFu));
}

/// The result of the calling thread's last failed system call.
std::int32_t lastNativeResult() noexcept;

} // namespace qv::core
