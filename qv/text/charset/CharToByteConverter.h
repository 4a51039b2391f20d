#pragma once

#include "qv/Object.h"
#include "qv/text/charset/detail/Conversion.h"

namespace qv::text::charset {

/// An encoder: turns the UTF-16 units of one stream into bytes, call by call.
///
/// A call of `convert` takes what it can and stops where the output has no room: that is no
/// failure. The caller looks at the positions, empties or grows the output and calls again. A
/// leading surrogate at the end of the input counts as consumed and waits inside the object for its
/// other half, in the classes that say so. `flush` ends a stream, `reset` readies the object for
/// another.
///
/// What has no form in the encoding is replaced by the substitution bytes, at first one "?", or,
/// once `setSubstitutionMode(false)` was called, reported as UnmappableCharacterException. Where a
/// class has rules of its own for that, it says so.
///
/// Thread safety: one thread at a time.
class QV_API CharToByteConverter : public Object {
public:
    /// The most bytes that a substitution can have.
    static constexpr int maxSubstitutionBytes = 7;

    // Slot order is contract from here on.

    /// Encodes from `src[*srcPos]` up to but not including `src[srcEnd]` into `dst[*dstPos]` and
    /// on, never at or behind `dst[dstEnd]`, and writes the new positions back. What stands behind
    /// the new `*dstPos` stays. When an exception leaves, the positions are those of the call, and
    /// the output holds what was converted in front of the failure.
    /// @return bytes written by this call, unless a class says otherwise.
    /// @throws InvalidCharacterException, UnmappableCharacterException.
    virtual std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                                 signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) = 0;
    /// Ends the stream. Clears nothing: that is for `reset`.
    /// @return bytes written.
    /// @throws InvalidCharacterException where a leading surrogate still waits.
    virtual std::int32_t flush(signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) = 0;
    /// Forgets a leading surrogate that waits. The substitution settings stay.
    virtual void reset() = 0;
    /// Borrows: the name, as long as the converter lives.
    virtual const char16_t* getEncodingName() = 0;
    /// The longest byte form of one character, in bytes.
    virtual int getMaxBytesPerChar() = 0;
    /// What the encoding states as its second bound: of use as a first guess, no more.
    virtual int getMaxCharsPerByte() = 0;
    virtual bool getSubstitutionMode();
    virtual void setSubstitutionMode(bool substitute);
    /// Copies at most `max` substitution bytes. @return how many; all there are for a null
    /// `buffer`.
    virtual int getSubstitutionBytes(signed char* buffer, int max);
    /// Requires: a `count` from 0 to `maxSubstitutionBytes`.
    virtual void setSubstitutionBytes(const signed char* bytes, int count);

    // Slot order ends here.

    /// A new encoder for a name, without regard to case; a null name stands for the default
    /// encoding. Owns: the caller, the new object with its count at 0.
    /// @throws UnknownEncodingException with the name.
    static CharToByteConverter* getConverter(const char16_t* name);
    /// A new encoder for the platform's default encoding; for ASCII where the platform names none.
    /// @throws UnknownEncodingException with a default name that nothing serves.
    static CharToByteConverter* getDefaultConverter();

protected:
    CharToByteConverter() noexcept = default;

    /// Replaces what has no form, where the substitution and `spare` more bytes fit.
    /// @return false where the room is lacking and nothing was written.
    /// @throws UnmappableCharacterException in the mode that does not substitute.
    bool substitute(detail::Encoding& encoding, int spare) const;

    bool substitutionMode_ = true;
    signed char substitutionBytes_[maxSubstitutionBytes] = {'?'};
    std::int32_t substitutionCount_ = 1;
};

} // namespace qv::text::charset
