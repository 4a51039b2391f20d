#pragma once

#include "qv/Number.h"

namespace qv {

/// The object form of a floating-point number: a plain value that converts from and to it.
///
/// `toInt64` cuts toward zero; a value that 64 bits do not hold, and a not-a-number, give the
/// smallest of them.
///
/// Thread safety: const-safe.
template <class Value>
class QV_API_TEMPLATE RealOf : public Number {
public:
    RealOf(Value value) noexcept : value_(value) {}
    RealOf(const RealOf&) noexcept = default;
    /// The value of `Number::parseDouble` or `Number::parseFloat`.
    explicit RealOf(const String& text);
    ~RealOf() noexcept override;

    RealOf& operator=(const RealOf&) noexcept = default;
    RealOf& operator=(Value value) noexcept {
        value_ = value;
        return *this;
    }
    operator Value() const noexcept { return value_; }

    /// Compares with the other number's `toDouble`: -1, 0 or 1.
    /// Kept: what is neither equal nor less is greater, so a not-a-number gives 1 on either side.
    int compareTo(const Number& other) const;
    /// @throws CastFailedException for an object that is no number.
    int compareTo(const Object& other) const override;
    /// The form of String::valueOf: six digits, with the runtime locale's decimal separator.
    String toString() const override;
    std::int64_t toInt64() const override;
    double toDouble() const override { return static_cast<double>(value_); }

private:
    Value value_;
};

using Double = RealOf<double>;
using Float = RealOf<float>;

QV_EXTERN_INSTANCE(RealOf<double>);
QV_EXTERN_INSTANCE(RealOf<float>);

} // namespace qv
