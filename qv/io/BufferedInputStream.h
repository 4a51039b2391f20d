#pragma once

#include "qv/io/detail/BufferedInput.h"

namespace qv::io {

/// A buffer in front of a byte stream, with marks.
class QV_API BufferedInputStream : public detail::BufferedInput<InputStream, signed char> {
public:
    /// Owns: one reference to `in`; a null one is accepted, and what needs it then throws
    /// IllegalStateException. A `size` below 16 bytes gives 16.
    explicit BufferedInputStream(InputStream* in, std::int32_t size = 16384);

    using detail::BufferedInput<InputStream, signed char>::read;
    /// @return the next byte sign-extended, or -1 at the end.
    /// Kept: unlike every other stream's, the bytes 0x80 to 0xFF are -128 to -1 here, and 0xFF
    /// looks like the end; the format streams above count on it.
    int read() override;
};

} // namespace qv::io
