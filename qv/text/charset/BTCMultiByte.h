#pragma once

#include "qv/String.h"
#include "qv/text/charset/ByteToCharConverter.h"

namespace qv::text::charset {

/// Base of the decoders that go one character at a time through a virtual step.
///
/// Thread safety: one thread at a time.
class QV_API BTCMultiByte : public ByteToCharConverter {
public:
    /// @throws InvalidCharacterException where the step gives a surrogate;
    /// UnmappableCharacterException.
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    /// Writes a trailing surrogate that waits. Kept: the position stays, and the surrogate goes on
    /// waiting until `reset`.
    /// @throws InvalidCharacterException where the room is lacking.
    std::int32_t flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    void reset() override;
    const char16_t* getEncodingName() override;
    int getMaxBytesPerChar() override;
    int getMaxCharsPerByte() override;

protected:
    BTCMultiByte() = default;

    /// Decodes one character at `bytes`. `length` is the number of bytes that are there, on return
    /// those consumed; 0 means that more are needed. A number out of that range, as a module
    /// outside the library may give it, counts as the nearest one in it.
    /// @return the code point; U+FFFD, or anything above U+10FFFF, for what has no character.
    virtual unsigned int convertBytes(const signed char* bytes, int& length) = 0;

    char16_t pendingTrail_ = 0; ///< for `flush`; `convert` never sets it
    String encodingName_;
    std::int32_t maxBytesPerChar_ = -1;
    std::int32_t maxCharsPerByte_ = 0;
};

} // namespace qv::text::charset
