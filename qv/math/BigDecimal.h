#pragma once

#include "qv/math/BigInteger.h"

namespace qv::math {

/// A decimal number: a big integer, the value, and a scale; the number is the value divided by 10
/// to the power of the scale. It changes in place, and an argument may be the object itself.
///
/// Numbers are added, subtracted and compared by their values as they stand: bring them to one
/// scale with `setScale` first.
///
/// What fails throws as BigInteger does, and leaves the number as it was.
///
/// Thread safety: const-safe.
class QV_API BigDecimal : public Number {
public:
    /// Zero, with scale 0.
    BigDecimal() noexcept = default;
    BigDecimal(const BigInteger& value, int scale);
    /// Reads digits with a point among them, in front of them or behind them; zeros at the end of
    /// the fraction are dropped. No exponent is understood.
    /// Kept: the digits go through BigInteger with the zeros that lead them, and the last groups
    /// are lost where these are many; "0.001234" is 0.000001.
    /// @throws Exception "Number Format Exception".
    explicit BigDecimal(const String& text);
    /// Scale 0.
    BigDecimal(int value);
    BigDecimal(unsigned int value);
    BigDecimal(long value);
    BigDecimal(unsigned long value);
    BigDecimal(long long value);
    BigDecimal(unsigned long long value);
    /// Rounded to six decimals and read as text: the point is a point in every locale. What is not
    /// finite is 0.
    BigDecimal(float value);
    BigDecimal(double value);
    BigDecimal(const BigDecimal& other);
    BigDecimal(BigDecimal&& other) noexcept;
    ~BigDecimal() noexcept override;

    BigDecimal& operator=(const BigDecimal& other);
    BigDecimal& operator=(BigDecimal&& other) noexcept;
    BigDecimal& operator=(int value);
    BigDecimal& operator=(unsigned int value);
    BigDecimal& operator=(long value);
    BigDecimal& operator=(unsigned long value);
    BigDecimal& operator=(long long value);
    BigDecimal& operator=(unsigned long long value);
    BigDecimal& operator=(double value);

    int compareTo(const Object& other) const override;
    /// The digits of the value with a point in front of the last `scale`.
    /// Kept: a minus sign counts as a digit; -5 with scale 2 is "0.-5", with scale 1 "-.5".
    String toString() const override;
    /// `toDouble`, cut toward zero.
    std::int64_t toInt64() const override;
    /// What the first 255 characters of the text say, with a point in every locale.
    double toDouble() const override;
    /// The value at scale 0.
    BigInteger toBigInteger() const override;
    BigDecimal toBigDecimal() const override;

    // Slot order is contract: one more.

    /// That of the value.
    virtual int getSize() const;

    // --- Arithmetic ---

    /// Kept: the sum of the values at the greater scale; 1.5 and 1 give 1.6.
    void add(const BigDecimal& x);
    /// Kept: the difference of the values at the greater scale.
    void subtract(const BigDecimal& x);
    void multiply(const BigDecimal& x);
    /// The quotient with `scale` decimals, halves rounded away from zero.
    /// Kept: twice the remainder is held against the value of `d` as it was given; so a `d` that is
    /// negative, or that has fewer decimals than this less `scale`, may round up what is no half.
    /// @throws Exception "Divide by zero.".
    void divide(const BigDecimal& d, int scale);
    /// The same number with `scale` decimals, cut toward zero.
    void setScale(int scale);
    int getScale() const noexcept { return scale_; }
    bool isNegative() const noexcept { return value_.isNegative(); }
    /// That of the value.
    signed char* getData() noexcept { return value_.getData(); }
    const signed char* getData() const noexcept { return value_.getData(); }
    void negate() noexcept { value_.negate(); }
    /// The value, not the number, without its sign.
    BigInteger abs() const;
    /// -1, 0 or 1, from the difference of the values.
    int compareTo(const BigDecimal& x) const;

protected:
    /// Takes value and scale from a text, as the constructor does.
    void parseDecimal(const String& text);

private:
    /// Multiplies the value by 10 to the power of `digits`, or divides it by that of `-digits`.
    void shiftValue(std::int64_t digits);

    BigInteger value_;
    std::int32_t scale_ = 0;
};

} // namespace qv::math
