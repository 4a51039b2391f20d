#pragma once

#include "qv/Object.h"

#include <cstdint>

namespace qv {
class String;
}

namespace qv::crypto {

/// A hash over a message that comes in pieces.
///
/// A message is what went into `update` since the constructor, the last `reset` or the last
/// `getDigest`, in pieces of any size.
///
/// Thread safety: one thread at a time.
class QV_API MessageDigest : public Object {
public:
    // Slot order is contract from here on.

    /// Takes `length` bytes of the message; none for a length below 1.
    virtual void update(const signed char* data, int length) = 0;
    /// Ends the message, writes its digest of `getLength` bytes and starts a new message.
    /// @param length the room at `out`.
    /// @throws ResultException QV_E_BUFFERTOOSMALL for too little room; the message goes on then.
    virtual void getDigest(signed char* out, int length) = 0;
    /// Forgets the message, and leaves nothing of it in memory.
    virtual void reset() = 0;
    /// The digest's length in bytes.
    virtual int getLength() const = 0;
    virtual String getName() const = 0;

protected:
    MessageDigest() noexcept = default;
};

} // namespace qv::crypto
