#pragma once

#include "qv/String.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/detail/Surrogates.h"

namespace qv::text::charset {

/// Base of the encoders that go one character at a time through a virtual step. Keeps a leading
/// surrogate from one call to the next.
///
/// Kept: a surrogate pair that the step has no form for is reported by its second half, as a
/// trailing surrogate without a leading one; and a pair that meets a full output loses its leading
/// half.
///
/// Thread safety: one thread at a time.
class QV_API CTBMultiByte : public CharToByteConverter {
public:
    /// @throws InvalidCharacterException for a surrogate without its other half;
    ///     UnmappableCharacterException.
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    /// @throws InvalidCharacterException where a leading surrogate waits.
    std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    const char16_t* getEncodingName() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

protected:
    CTBMultiByte() = default;

    /// Encodes one code point into at most `max` bytes at `out`.
    /// @return the bytes written; below 1, or above `max`, for what has no form.
    virtual int convertChar(unsigned int codePoint, signed char* out, int max) = 0;

    String encodingName_;
    detail::PendingLead pending_;
    std::int32_t maxBytesPerChar_ = 0;
    std::int32_t maxCharsPerByte_ = 0;

private:
    bool convertUnit(detail::Encoding& encoding);
    bool replaceUnit(detail::Encoding& encoding);
};

} // namespace qv::text::charset
