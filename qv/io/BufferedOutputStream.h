#pragma once

#include "qv/io/detail/BufferedOutput.h"

namespace qv::io {

/// A buffer in front of a sink of bytes.
class QV_API BufferedOutputStream : public detail::BufferedOutput<OutputStream, signed char> {
public:
    /// Owns: one reference to `out`; a null one is accepted, and what needs it then throws
    /// IllegalStateException. A `size` below 16 bytes gives 16.
    explicit BufferedOutputStream(OutputStream* out, std::int32_t size = 16384);
    ~BufferedOutputStream() override;
};

} // namespace qv::io
