#pragma once

#include "qv/Object.h"
#include "qv/StringLiteral.h"
#include "qv/text/charset/detail/Conversion.h"

namespace qv::text::charset {

/// A decoder: turns the bytes of one stream into UTF-16 units, call by call.
///
/// A call of `convert` takes what it can and stops where the input ends inside a character or the
/// output has no room: that is no failure. The caller looks at the positions, brings the bytes that
/// were not consumed to the front, makes room and calls again. A decoder keeps no bytes inside
/// itself. `flush` ends a stream, `reset` readies the object for another.
///
/// What has no character is replaced by the substitution characters, at first one U+FFFD, or, once
/// `setSubstitutionMode(false)` was called, reported as UnmappableCharacterException. Where a class
/// has rules of its own for that, it says so.
///
/// Thread safety: one thread at a time.
class QV_API ByteToCharConverter : public Object {
public:
    /// The most characters that a substitution can have.
    static constexpr int maxSubstitutionChars = 3;

    // Slot order is contract from here on.

    /// Decodes from `src[*srcPos]` up to but not including `src[srcEnd]` into `dst[*dstPos]` and
    /// on, never at or behind `dst[dstEnd]`, and writes the new positions back. What stands behind
    /// the new `*dstPos` stays. When an exception leaves, the positions are those of the call, and
    /// the output holds what was converted in front of the failure.
    /// @return units written by this call.
    /// @throws InvalidCharacterException, UnmappableCharacterException.
    virtual std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                                 char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) = 0;
    /// Ends the stream. Clears nothing: that is for `reset`.
    /// @return units written.
    virtual std::int32_t flush(char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) = 0;
    /// Forgets what the stream so far has left. The substitution settings stay.
    virtual void reset() = 0;
    /// Borrows: the name, as long as the converter lives.
    virtual const char16_t* getEncodingName() = 0;
    /// The longest byte form of one character, in bytes.
    virtual int getMaxBytesPerChar() = 0;
    /// What the encoding states as its second bound: of use as a first guess, no more.
    virtual int getMaxCharsPerByte() = 0;
    virtual bool getSubstitutionMode();
    virtual void setSubstitutionMode(bool substitute);
    /// Copies at most `max` substitution characters. @return how many; all there are for a null
    /// `buffer`.
    virtual int getSubstitutionChars(char16_t* buffer, int max);
    /// Requires: a `count` from 0 to `maxSubstitutionChars`.
    virtual void setSubstitutionChars(const char16_t* chars, int count);

    // Slot order ends here.

    /// A new decoder for a name, without regard to case; a null name stands for the default
    /// encoding. Owns: the caller, the new object with its count at 0.
    /// @throws UnknownEncodingException with the name.
    static ByteToCharConverter* getConverter(const char16_t* name);
    /// A new decoder for the platform's default encoding; for ASCII where the platform names none.
    /// @throws UnknownEncodingException with a default name that nothing serves.
    static ByteToCharConverter* getDefaultConverter();

protected:
    ByteToCharConverter() noexcept = default;

    /// Replaces what has no character, where the substitution and `spare` more units fit.
    /// @return false where the room is lacking and nothing was written.
    /// @throws UnmappableCharacterException in the mode that does not substitute.
    bool substitute(detail::Decoding& decoding, int spare) const;
    /// Writes a code point, or what replaces one above 0x10FFFF (see `substitute` for `spare`).
    /// Requires: room for one unit.
    /// @return false where the room is lacking and nothing was written.
    /// @throws InvalidCharacterException with `surrogateMessage` for a code point that is a
    /// surrogate;
    ///     UnmappableCharacterException as `substitute`.
    bool writeCodePoint(detail::Decoding& decoding, std::uint32_t codePoint, int spare,
                        const STRUCT_QV_STR_LIT_INFO& surrogateMessage) const;

    bool substitutionMode_ = true;
    char16_t substitutionChars_[maxSubstitutionChars] = {u'\uFFFD'};
    std::int32_t substitutionCount_ = 1;
};

} // namespace qv::text::charset
