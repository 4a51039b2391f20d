#pragma once

#include "qv/io/ByteBuffer.h"
#include "qv/io/OutputStream.h"
#include "qv/io/detail/Wrapped.h"

namespace qv::io {

/// Writes into what remains of a byte buffer, and moves the buffer's position. Bytes that find no
/// room are dropped; the stream remembers that there were some.
class QV_API ByteBufferOutputStream : public OutputStream {
public:
    /// Owns: one reference to `buffer`. A null one is accepted, and writing then throws
    /// IllegalStateException.
    explicit ByteBufferOutputStream(ByteBuffer* buffer);

    using OutputStream::write;
    /// @throws ReadOnlyException for a read-only buffer.
    void write(const signed char* bytes, std::int32_t length) override;

    /// 1 if bytes were dropped, otherwise 0.
    short Overflowed() const noexcept { return overflowed_; }

private:
    detail::Wrapped<ByteBuffer> buffer_;
    short overflowed_ = 0;
};

} // namespace qv::io
