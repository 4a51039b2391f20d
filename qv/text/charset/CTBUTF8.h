#pragma once

#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/detail/Surrogates.h"

namespace qv::text::charset {

/// Encodes UTF-8. Keeps a leading surrogate from one call to the next.
///
/// Kept: a trailing surrogate alone becomes a three-byte sequence, which the decoder refuses; and a
/// pair that meets less than four free bytes loses its leading half. A caller that wants pairs to
/// survive gives `getMaxBytesPerChar` bytes more than it expects to need. Source: RFC 3629, as far
/// as the above lets it.
///
/// Thread safety: one thread at a time.
class QV_API CTBUTF8 : public CharToByteConverter {
public:
    /// @throws InvalidCharacterException for a leading surrogate without a trailing one.
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    /// @throws InvalidCharacterException where a leading surrogate waits.
    std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    const char16_t* getEncodingName() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

private:
    bool convertUnit(detail::Encoding& encoding);

    detail::PendingLead pending_;
};

} // namespace qv::text::charset
