#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv {
class String;
}

namespace qv::io {

/// A sink of characters: the twin of OutputStream over UTF-16 units. Closing never flushes.
class QV_API Writer : public Object {
public:
    // Slot order is contract from here on.

    /// Writes the text's units under its read lock.
    /// @throws ResultException, where the text's buffer refuses the lock.
    virtual void write(const String& text);
    /// Writes a 0-terminated text.
    virtual void write(const char16_t* text);
    /// Writes `length` units.
    /// @throws IoException, or what the sink throws.
    virtual void write(const char16_t* text, std::int32_t length) = 0;
    virtual void write(char16_t unit);
    /// Hands on what is buffered, down the whole chain.
    virtual void flush();
    virtual void close();
};

} // namespace qv::io
