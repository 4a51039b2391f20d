#pragma once

#include "qv/io/ByteBuffer.h"
#include "qv/io/InputStream.h"
#include "qv/io/detail/Wrapped.h"

namespace qv::io {

/// Reads what remains in a byte buffer, and moves the buffer's position.
class QV_API ByteBufferInputStream : public InputStream {
public:
    /// Owns: one reference to `buffer`. A null one is accepted, and reading then throws
    /// IllegalStateException.
    explicit ByteBufferInputStream(ByteBuffer* buffer);

    using InputStream::read;
    /// Kept: with nothing left this is -1 also for a `length` of 0, before that 0.
    std::int32_t read(signed char* destination, std::int32_t length) override;

    /// Borrows: the buffer.
    /// @throws IllegalStateException for a null one.
    ByteBuffer* getBuffer() const { return buffer_.operator->(); }

private:
    detail::Wrapped<ByteBuffer> buffer_;
};

} // namespace qv::io
