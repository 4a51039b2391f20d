#pragma once

#include "qv/io/detail/BufferedOutput.h"

namespace qv::io {

/// A buffer in front of a sink of characters.
class QV_API BufferedWriter : public detail::BufferedOutput<Writer, char16_t> {
public:
    /// Owns: one reference to `out`; a null one is accepted, and what needs it then throws
    /// IllegalStateException. A `size` below 16 units gives 16.
    explicit BufferedWriter(Writer* out, std::int32_t size = 16384);
    ~BufferedWriter() override;
};

} // namespace qv::io
