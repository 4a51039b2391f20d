#pragma once

#include "qv/io/FilterInputStream.h"
#include "qv/io/detail/AlphaNumAlphabet.h"

namespace qv::io {

/// Reads the bytes that AlphaNumOutputStream wrote as letters.
///
/// The letters are taken one by one, by the wrapped stream's `read` of a single byte. The stream
/// stands behind the last letter that was good: a letter that is refused is passed and counts for
/// nothing.
///
/// Kept: a text that does not end on a group of eight letters yields one byte more than was
/// written, made of the bits that fill its last letter; callers know the length of their data.
class QV_API AlphaNumInputStream : public FilterInputStream {
public:
    /// Owns: one reference to `in`, as FilterInputStream does. A null `alphabet` stands for
    /// "ABCDEFGHJKLMNPQRSTUVWXYZ23456789".
    /// @throws ResultException QV_E_INVALIDARG for an alphabet that has not 32 units.
    explicit AlphaNumInputStream(InputStream* in, const char16_t* alphabet = nullptr);
    ~AlphaNumInputStream() override;

    using FilterInputStream::read;
    /// @return bytes read, `length` unless the text ends; -1 at its end and for a `length` below 1.
    /// @throws text::charset::InvalidCharacterException "Invalid AlphaNum character"; upper and
    /// lower case differ.
    std::int32_t read(signed char* destination, std::int32_t length) override;
    int read() override;
    /// Reads bytes and drops them.
    std::int32_t skip(std::int32_t count) override;
    /// Five bytes for eight letters that the wrapped stream has available.
    std::int32_t available() override;

private:
    /// The bits of letters that make no byte yet.
    struct Rest {
        std::uint32_t bits = 0; ///< at the low end, below older ones
        int count = 0;          ///< 0 to 7; 0 only between groups of eight letters
    };

    int getValue(signed char letter) const;
    template <class Source>
    std::int32_t decode(Rest& rest, Source nextLetter, signed char* destination,
                        std::int32_t length) const;

    detail::AlphaNumAlphabet alphabet_;
    Rest rest_;
};

} // namespace qv::io
