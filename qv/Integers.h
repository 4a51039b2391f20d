#pragma once

#include "qv/Number.h"

#include <type_traits>

namespace qv {

/// Root of the signed machine numbers.
class QV_API SignedInteger : public Number {
public:
    /// Exact, from `toInt64`.
    math::BigInteger toBigInteger() const override;
    math::BigDecimal toBigDecimal() const override;
    /// Decimal.
    String toString() const override;
};

/// Root of the unsigned machine numbers.
class QV_API UnsignedInteger : public Number {
public:
    /// Exact, from `toUInt64`.
    math::BigInteger toBigInteger() const override;
    math::BigDecimal toBigDecimal() const override;
    /// `toString(10)`.
    String toString() const override;

    // Slot order is contract from here on.

    /// The digits that `math::BigInteger::toString(radix)` gives.
    virtual String toString(int radix) const;
};

/// The object form of a machine integer: a plain value that converts from and to it.
///
/// Thread safety: const-safe.
template <class Value>
class QV_API_TEMPLATE IntegerOf
    : public std::conditional_t<std::is_signed_v<Value>, SignedInteger, UnsignedInteger> {
    using Base = std::conditional_t<std::is_signed_v<Value>, SignedInteger, UnsignedInteger>;

public:
    IntegerOf(Value value) noexcept : value_(value) {}
    IntegerOf(const IntegerOf&) noexcept = default;
    /// The value of the other's conversion to this width.
    explicit IntegerOf(const Number& other);
    /// The value of the parser for this width in Number.
    explicit IntegerOf(const String& text);
    IntegerOf(const String& text, int radix) requires std::is_unsigned_v<Value>;
    ~IntegerOf() noexcept override;

    IntegerOf& operator=(const IntegerOf&) noexcept = default;
    IntegerOf& operator=(Value value) noexcept {
        value_ = value;
        return *this;
    }
    operator Value() const noexcept { return value_; }

    using Base::toString;

    /// Compares with the other number cut to this width. Below 64 bits the result is the
    /// difference.
    /// Kept: that is not reduced to a sign, and overflows for a pair far apart.
    int compareTo(const Number& other) const;
    /// @throws CastFailedException for an object that is no number.
    int compareTo(const Object& other) const override;
    /// Decimal.
    String toString() const override;
    std::int64_t toInt64() const override { return static_cast<std::int64_t>(value_); }
    double toDouble() const override { return static_cast<double>(value_); }

private:
    Value value_;
};

using Integer8 = IntegerOf<signed char>;
using Integer16 = IntegerOf<short>;
using Integer32 = IntegerOf<int>;
using Integer64 = IntegerOf<std::int64_t>;
using UInteger8 = IntegerOf<unsigned char>;
using UInteger16 = IntegerOf<unsigned short>;
using UInteger32 = IntegerOf<unsigned int>;
using UInteger64 = IntegerOf<std::uint64_t>;

QV_EXTERN_INSTANCE(IntegerOf<signed char>);
QV_EXTERN_INSTANCE(IntegerOf<short>);
QV_EXTERN_INSTANCE(IntegerOf<int>);
QV_EXTERN_INSTANCE(IntegerOf<std::int64_t>);
QV_EXTERN_INSTANCE(IntegerOf<unsigned char>);
QV_EXTERN_INSTANCE(IntegerOf<unsigned short>);
QV_EXTERN_INSTANCE(IntegerOf<unsigned int>);
QV_EXTERN_INSTANCE(IntegerOf<std::uint64_t>);

} // namespace qv
