#pragma once

#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/detail/Surrogates.h"

namespace qv::text::charset {

/// Base of the encoders of one byte a character. Keeps a leading surrogate from one call to the
/// next.
///
/// A character without a byte (the step gives 0), and a surrogate pair as a whole, becomes the
/// substitution byte if there is exactly one. Kept: with any other number of them the character
/// vanishes; and a pair that meets a full output loses its leading half.
///
/// Thread safety: one thread at a time.
class QV_API CTBSingleByte : public CharToByteConverter {
public:
    /// @throws InvalidCharacterException for a surrogate without its other half;
    ///     UnmappableCharacterException.
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    /// @throws InvalidCharacterException where a leading surrogate waits.
    std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

protected:
    /// The byte of a character; 0 for none, and for U+0000.
    virtual signed char convertChar(char16_t unit) = 0;

    /// `convert` for the library's own leaves: with a table in place of the step (see
    /// CTBSingleByteTable), and `takeRun` for the runs of units that are their own bytes.
    void convertByTable(detail::Encoding& encoding, const int* pages, const unsigned char* bytes,
                        void (*takeRun)(detail::Encoding&) noexcept);

private:
    bool endPair(detail::Encoding& encoding);
    bool writeByte(detail::Encoding& encoding, signed char byte);
    bool replaceUnit(detail::Encoding& encoding) const;

    detail::PendingLead pending_;
};

} // namespace qv::text::charset
