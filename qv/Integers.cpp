#include "qv/Integers.h"

#include "qv/detail/AsNumber.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"

namespace qv {

using math::BigDecimal;
using math::BigInteger;

BigInteger SignedInteger::toBigInteger() const { return BigInteger(toInt64()); }
BigDecimal SignedInteger::toBigDecimal() const { return BigDecimal(toBigInteger(), 0); }
String SignedInteger::toString() const { return toBigInteger().toString(10); }

BigInteger UnsignedInteger::toBigInteger() const { return BigInteger(toUInt64()); }
BigDecimal UnsignedInteger::toBigDecimal() const { return BigDecimal(toBigInteger(), 0); }
String UnsignedInteger::toString() const { return toString(10); }
String UnsignedInteger::toString(int radix) const { return toBigInteger().toString(radix); }

namespace {

/// What a width takes from a number and from a text.
template <class Value>
struct Width;
template <>
struct Width<signed char> {
    static constexpr auto convert = &Number::toInt8;
    static constexpr auto parse = &Number::parseInt8;
};
template <>
struct Width<short> {
    static constexpr auto convert = &Number::toInt16;
    static constexpr auto parse = &Number::parseInt16;
};
template <>
struct Width<int> {
    static constexpr auto convert = &Number::toInt32;
    static constexpr auto parse = &Number::parseInt32;
};
template <>
struct Width<std::int64_t> {
    static constexpr auto convert = &Number::toInt64;
    static constexpr auto parse = &Number::parseInt64;
};
template <>
struct Width<unsigned char> {
    static constexpr auto convert = &Number::toUInt8;
    static constexpr auto parse = &Number::parseUInt8;
};
template <>
struct Width<unsigned short> {
    static constexpr auto convert = &Number::toUInt16;
    static constexpr auto parse = &Number::parseUInt16;
};
template <>
struct Width<unsigned int> {
    static constexpr auto convert = &Number::toUInt32;
    static constexpr auto parse = &Number::parseUInt32;
};
template <>
struct Width<std::uint64_t> {
    static constexpr auto convert = &Number::toUInt64;
    static constexpr auto parse = &Number::parseUInt64;
};

template <class Value>
Value converted(const Number& number) {
    return (number.*Width<Value>::convert)();
}

/// The radix is for the unsigned widths.
template <class Value>
Value parsed(const String& text, [[maybe_unused]] int radix = 10) {
    if constexpr (std::is_signed_v<Value>) {
        return Width<Value>::parse(text);
    } else {
        return Width<Value>::parse(text, radix);
    }
}

} // namespace

template <class Value>
IntegerOf<Value>::IntegerOf(const Number& other) : value_(converted<Value>(other)) {}

template <class Value>
IntegerOf<Value>::IntegerOf(const String& text) : value_(parsed<Value>(text)) {}

template <class Value>
IntegerOf<Value>::IntegerOf(const String& text, int radix) requires std::is_unsigned_v<Value>
    : value_(parsed<Value>(text, radix)) {}

template <class Value>
IntegerOf<Value>::~IntegerOf() noexcept = default;

template <class Value>
int IntegerOf<Value>::compareTo(const Number& other) const {
    if (&other == this) {
        return 0;
    }
    const Value theirs = converted<Value>(other);
    if constexpr (sizeof(Value) <= sizeof(int)) {
        return static_cast<int>(static_cast<unsigned int>(value_) -
                                static_cast<unsigned int>(theirs));
    } else {
        return static_cast<int>(value_ > theirs) - static_cast<int>(value_ < theirs);
    }
}

template <class Value>
int IntegerOf<Value>::compareTo(const Object& other) const {
    return &other == this ? 0 : compareTo(detail::asNumber(other));
}

template <class Value>
String IntegerOf<Value>::toString() const {
    return String::valueOf(+value_);
}

template class IntegerOf<signed char>;
template class IntegerOf<short>;
template class IntegerOf<int>;
template class IntegerOf<std::int64_t>;
template class IntegerOf<unsigned char>;
template class IntegerOf<unsigned short>;
template class IntegerOf<unsigned int>;
template class IntegerOf<std::uint64_t>;

} // namespace qv
