#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv::io {

/// A sink of bytes. A class implements the writing of a block; everything else has a default over
/// that.
///
/// Closing never flushes: what a buffering stream still holds at `close`, or when it is dropped, is
/// lost.
class QV_API OutputStream : public Object {
public:
    // Slot order is contract from here on.

    virtual void write(const char* bytes, std::int32_t length);
    virtual void write(const unsigned char* bytes, std::int32_t length);
    /// Writes `length` bytes.
    /// @throws IoException, or what the sink throws.
    virtual void write(const signed char* bytes, std::int32_t length) = 0;
    virtual void write(signed char byte);
    /// Hands on what is buffered, down the whole chain.
    virtual void flush();
    virtual void close();
};

} // namespace qv::io
