#pragma once

#include "qv/io/detail/PositionedBytes.h"

/// The order of the bytes of a number.
enum ENUM_QV_ENDIAN : int {
    QV_ENDIAN_LITTLE = 0,     ///< as the host holds them
    QV_ENDIAN_BIG = 1,        ///< the order of the network
    QV_ENDIAN_UNSUPPORTED = 2 ///< refused by a buffer's `setOrder`
};

namespace qv::io {

class ByteBuffer;

namespace detail {
QV_EXTERN_INSTANCE(PositionedBytes<ByteBuffer, signed char, ENUM_QV_ENDIAN>);
}

/// A fixed area of bytes with a position, a limit and a byte order, on which numbers are read and
/// written at any address in either order.
///
/// A writer puts values behind each other and calls `flip`; a reader then gets them from the start
/// up to where the writer stood.
///
/// Thread safety: one thread at a time.
class QV_API ByteBuffer : public detail::PositionedBytes<ByteBuffer, signed char, ENUM_QV_ENDIAN> {
public:
    /// Position 0, the limit at the capacity; the order is not tested.
    using PositionedBytes::PositionedBytes;
    ~ByteBuffer() noexcept override;
};

} // namespace qv::io
