#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv::io {

/// A source of characters: the twin of InputStream over UTF-16 units. All counts are units.
class QV_API Reader : public Object {
public:
    // Slot order is contract from here on.

    /// Reads at most `length` units.
    /// @return units read, which may be fewer than asked for, and -1 at the end.
    /// @throws IoException, or what the source throws.
    virtual std::int32_t read(char16_t* destination, std::int32_t length) = 0;
    /// @return the next unit as 0 to 65535, or -1 at the end.
    virtual int read();
    /// Reads `count` units and drops them. @return how many there were, 0 for a `count` below 1.
    virtual std::int32_t skip(std::int32_t count);
    /// Units that can be read without waiting, as far as the class knows; 0 here.
    virtual std::int32_t available();
    virtual void close();
    virtual bool markSupported();
    /// Remembers this place for `reset`, as long as no more than `limit` units are read behind it.
    virtual void mark(std::int32_t limit);
    /// Goes back to the marked place.
    /// @throws IoException "mark/reset not supported" where a class has none of this.
    virtual void reset();
};

} // namespace qv::io
