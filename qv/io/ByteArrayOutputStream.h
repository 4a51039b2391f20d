#pragma once

#include "qv/String.h"
#include "qv/io/OutputStream.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace qv::io {

/// Collects bytes in memory. Where the room ends it grows to what is needed and a quarter more.
class QV_API ByteArrayOutputStream : public OutputStream {
public:
    /// Makes room for `capacity` bytes.
    /// @throws std::bad_alloc, as everything here that needs room.
    explicit ByteArrayOutputStream(std::int32_t capacity = 256);

    using OutputStream::write;
    /// The bytes may be those of the stream itself.
    void write(const signed char* bytes, std::int32_t length) override;
    /// The bytes decoded with the default encoding.
    /// @throws text::charset::UnknownEncodingException, and what the decoder throws.
    String toString() const override;

    /// The bytes decoded with an encoding; null is the default encoding.
    String toString(const char16_t* encoding) const;
    /// Copies at most `max` bytes from the first on. @return how many.
    std::int32_t getBytes(signed char* destination, std::int32_t max) const;
    /// Forgets the bytes and keeps the room.
    void reset();
    /// Writes all bytes in one call.
    void writeTo(OutputStream* out) const;

protected:
    /// Grows to `needed` and a quarter more, if there is not room for `needed` bytes.
    void ensureCapacity(std::int32_t needed);
    /// Makes the room `capacity` bytes; bytes behind that are gone.
    void reallocBuffer(std::int32_t capacity);
    std::int32_t getCapacity() const noexcept { return capacity_; }

private:
    struct Free {
        void operator()(signed char* bytes) const noexcept { std::free(bytes); }
    };

    std::ptrdiff_t placeOf(const signed char* bytes) const noexcept;

    std::unique_ptr<signed char[], Free> buffer_;
    std::int32_t size_ = 0;
    std::int32_t capacity_ = 0;
};

} // namespace qv::io
