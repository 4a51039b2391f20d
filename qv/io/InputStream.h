#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv::io {

/// A source of bytes, read from its beginning to its end.
///
/// Filters are chained by handing a stream to the constructor of the next; a filter holds what it
/// wraps by one reference, from its constructor to its destructor. Closing a filter closes what it
/// wraps. A class implements the reading of a block; everything else has a default over that.
///
/// Thread safety: one thread at a time, for every stream of this namespace.
class QV_API InputStream : public Object {
public:
    // Slot order is contract from here on.

    virtual std::int32_t read(char* destination, std::int32_t length);
    virtual std::int32_t read(unsigned char* destination, std::int32_t length);
    /// Reads at most `length` bytes.
    /// @return bytes read, which may be fewer than asked for, and -1 at the end of the stream.
    /// @throws IoException, or what the source throws.
    virtual std::int32_t read(signed char* destination, std::int32_t length) = 0;
    /// @return the next byte as 0 to 255, or -1 at the end of the stream.
    virtual int read();
    /// Reads `count` bytes and drops them. @return how many there were, 0 for a `count` below 1.
    virtual std::int32_t skip(std::int32_t count);
    /// Bytes that can be read without waiting, as far as the class knows; 0 here.
    virtual std::int32_t available();
    virtual void close();
    virtual bool markSupported();
    /// Remembers this place for `reset`, as long as no more than `limit` bytes are read behind it.
    virtual void mark(std::int32_t limit);
    /// Goes back to the marked place.
    /// @throws IoException "mark/reset not supported" where a class has none of this.
    virtual void reset();
};

} // namespace qv::io
