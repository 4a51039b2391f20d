#pragma once

#include "qv/Export.h"
#include "qv/Results.h"

#include <utility>

/// The two translations between the faces: an exception becomes a result where the component face
/// ends, and a result becomes an exception where native code has called a component.
namespace qv {

class String;

/// The result of the exception being handled: that of a qv::Exception, QV_E_OUTOFMEMORY for
/// std::bad_alloc, QV_E_FAIL for everything else. Requires: a handler is active.
[[nodiscard]] QV_API std::int32_t currentExceptionResult() noexcept;

/// Runs `work` and gives its result: 0, or that of what it threw. Outputs that were set before the
/// failure stay as they are.
template <class Work>
[[nodiscard]] std::int32_t toResult(Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
        return QV_S_OK;
    } catch (...) {
        return currentExceptionResult();
    }
}

/// @throws ResultException with `result` and no description.
[[noreturn]] QV_API void throwResult(std::int32_t result);
/// @throws ResultException with `result` and `description`.
[[noreturn]] QV_API void throwResult(std::int32_t result, const String& description);

/// @throws ResultException with `result`, if that is a failure.
inline void throwIfFailed(std::int32_t result) {
    if (result < 0) {
        throwResult(result);
    }
}
inline void throwIfFailed(std::int32_t result, const String& description) {
    if (result < 0) {
        throwResult(result, description);
    }
}

} // namespace qv
