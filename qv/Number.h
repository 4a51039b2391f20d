#pragma once

#include "qv/String.h"

namespace qv {

namespace math {
class BigInteger;
class BigDecimal;
} // namespace math

/// Root of all numbers: a value that can be stored as an object, compared with any other number,
/// and turned into any width.
///
/// A class supplies `toInt64` and `toDouble`; the other conversions follow from these two. None of
/// them fails, and none saturates: a value that is too wide is cut to the low bits of the width.
///
/// The parsers that end in a machine number read as far as the number goes, and give 0 where there
/// is none; those through BigInteger throw what its constructor throws.
///
/// Thread safety: const-safe.
class QV_API Number : public Object {
public:
    /// True where `compareTo` gives 0.
    /// @throws CastFailedException for an object that is no number.
    bool equals(const Object& other) const override;
    /// The low 32 bits of the value.
    std::uint32_t hashCode() const override;

    // Slot order is contract from here on.

    virtual std::int64_t toInt64() const = 0;
    virtual double toDouble() const = 0;

    virtual signed char toByte() const;
    virtual short toShort() const;
    virtual int toInt() const;
    virtual std::int32_t toLong() const;
    virtual unsigned char toUByte() const;
    virtual unsigned short toUShort() const;
    virtual unsigned int toUInt() const;
    virtual std::uint32_t toULong() const;
    virtual float toFloat() const;
    /// The value of `toInt64`, unless a class has a better one.
    virtual math::BigInteger toBigInteger() const;
    /// The value of `toDouble` with six decimals, unless a class has a better one.
    virtual math::BigDecimal toBigDecimal() const;
    virtual std::int8_t toInt8() const;
    virtual std::int16_t toInt16() const;
    virtual std::int32_t toInt32() const;
    virtual std::uint8_t toUInt8() const;
    virtual std::uint16_t toUInt16() const;
    virtual std::uint32_t toUInt32() const;
    /// The bits of `toInt64`, unless a class has a better one.
    virtual std::uint64_t toUInt64() const;

    // Slot order ends here.

    /// Decimal digits; a value out of range is the nearest that 32 bits hold.
    static std::int32_t parseInt32(const String& text);
    /// `parseInt32`, cut to the width.
    static int parseInt(const String& text);
    static short parseShort(const String& text);
    static std::int16_t parseInt16(const String& text);
    static signed char parseByte(const String& text);
    static std::int8_t parseInt8(const String& text);
    static std::int32_t parseLong(const String& text);
    /// Any number of decimal digits, of which the value keeps the low 63 bits.
    /// @throws Exception "Number Format Exception".
    static std::int64_t parseInt64(const String& text);

    /// Digits of `radix`: 2 to 36, or 0 for what a prefix says. A minus sign gives the two's
    /// complement.
    static std::uint32_t parseUInt32(const String& text, int radix = 10);
    /// `parseUInt32`, cut to the width.
    static unsigned int parseUInt(const String& text, int radix = 10);
    static unsigned short parseUShort(const String& text, int radix = 10);
    static std::uint16_t parseUInt16(const String& text, int radix = 10);
    static unsigned char parseUByte(const String& text, int radix = 10);
    static std::uint8_t parseUInt8(const String& text, int radix = 10);
    static std::uint32_t parseULong(const String& text, int radix = 10);
    /// Kept: the value goes through `BigInteger::toInt64`, which masks the top bit;
    /// "18446744073709551615" is 9223372036854775807.
    /// @throws Exception "Number Format Exception".
    static std::uint64_t parseUInt64(const String& text, int radix = 10);

    /// The decimal separator is that of the process's runtime locale.
    static double parseDouble(const String& text);
    static float parseFloat(const String& text);
    /// @throws what the constructors of these classes throw.
    static math::BigInteger parseBigInteger(const String& text);
    static math::BigDecimal parseBigDecimal(const String& text);
};

} // namespace qv
