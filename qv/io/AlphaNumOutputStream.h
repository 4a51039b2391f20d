#pragma once

#include "qv/io/FilterOutputStream.h"
#include "qv/io/detail/AlphaNumAlphabet.h"

namespace qv::io {

/// Writes bytes as text: five bytes as eight letters of five bits each, the most significant bits
/// first. There are no padding letters and no line ends.
///
/// The letters go out one by one, by the wrapped stream's `write` of a single byte. `flush` ends a
/// group of five bytes early; `close` does not flush. What the wrapped stream throws leaves the
/// stream behind the last byte all of whose letters were written.
class QV_API AlphaNumOutputStream : public FilterOutputStream {
public:
    /// Owns: one reference to `out`, as FilterOutputStream does. A null `alphabet` stands for
    /// "ABCDEFGHJKLMNPQRSTUVWXYZ23456789".
    /// @throws ResultException QV_E_INVALIDARG for an alphabet that has not 32 units.
    explicit AlphaNumOutputStream(OutputStream* out, const char16_t* alphabet = nullptr);
    ~AlphaNumOutputStream() override;

    using FilterOutputStream::write;
    void write(const signed char* bytes, std::int32_t length) override;
    /// A write of one byte.
    void write(signed char byte) override;
    /// Writes the bits that wait, filled up with zeros, as one more letter, and flushes the wrapped
    /// stream. The next byte begins a group.
    void flush() override;

private:
    /// The bits of bytes that make no letter yet.
    struct Rest {
        std::uint32_t bits = 0; ///< at the low end, below older ones
        int count = 0;          ///< 0 to 4; 0 only between groups of five bytes
    };

    unsigned char* encode(Rest& rest, const signed char* bytes, std::int32_t length,
                          unsigned char* letters) const noexcept;
    void writePieces(const signed char* bytes, std::int32_t length, std::int32_t pieceLength);

    detail::AlphaNumAlphabet alphabet_;
    Rest rest_;
};

} // namespace qv::io
