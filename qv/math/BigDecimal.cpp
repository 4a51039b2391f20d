#include "qv/math/BigDecimal.h"

#include "qv/detail/AsNumber.h"
#include "qv/detail/Truncated.h"
#include "qvcore/Encoding.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace qv::math {

namespace {

/// The number in the form of the runtime's "%f", with a point in every locale.
String fixedText(double value) {
    constexpr int decimals = 6;
    char text[512];
    const char* const end =
        std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed, decimals)
            .ptr;
    char16_t units[sizeof text];
    const char16_t* const last = std::copy(static_cast<const char*>(text), end, units);
    return String(units, static_cast<int>(last - units));
}

BigInteger powerOfTen(std::int64_t exponent) {
    BigInteger power(10);
    power.pow(exponent);
    return power;
}

/// True for a power of ten greater than any number with so many bits.
bool isOutOfReach(std::int64_t exponent, int bits) {
    return static_cast<double>(exponent) > bits * std::log10(2.0) + 1;
}

constexpr std::int32_t wrapped(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

} // namespace

// --- Construction and assignment ---

BigDecimal::BigDecimal(const BigInteger& value, int scale) : value_(value), scale_(scale) {}
BigDecimal::BigDecimal(const String& text) { parseDecimal(text); }
BigDecimal::BigDecimal(int value) : value_(value) {}
BigDecimal::BigDecimal(unsigned int value) : value_(value) {}
BigDecimal::BigDecimal(long value) : value_(value) {}
BigDecimal::BigDecimal(unsigned long value) : value_(value) {}
BigDecimal::BigDecimal(long long value) : value_(value) {}
BigDecimal::BigDecimal(unsigned long long value) : value_(value) {}
BigDecimal::BigDecimal(float value) : BigDecimal(static_cast<double>(value)) {}
BigDecimal::BigDecimal(double value) { parseDecimal(fixedText(value)); }
BigDecimal::BigDecimal(const BigDecimal& other) = default;
BigDecimal::BigDecimal(BigDecimal&& other) noexcept = default;
BigDecimal::~BigDecimal() noexcept = default;

BigDecimal& BigDecimal::operator=(const BigDecimal& other) = default;
BigDecimal& BigDecimal::operator=(BigDecimal&& other) noexcept = default;
BigDecimal& BigDecimal::operator=(int value) { return *this = BigDecimal(value); }
BigDecimal& BigDecimal::operator=(unsigned int value) { return *this = BigDecimal(value); }
BigDecimal& BigDecimal::operator=(long value) { return *this = BigDecimal(value); }
BigDecimal& BigDecimal::operator=(unsigned long value) { return *this = BigDecimal(value); }
BigDecimal& BigDecimal::operator=(long long value) { return *this = BigDecimal(value); }
BigDecimal& BigDecimal::operator=(unsigned long long value) { return *this = BigDecimal(value); }
BigDecimal& BigDecimal::operator=(double value) { return *this = BigDecimal(value); }

void BigDecimal::parseDecimal(const String& text) {
    const int point = text.indexOf(u'.');
    if (point < 0) {
        value_ = BigInteger(text, 10);
        scale_ = 0;
        return;
    }
    int end = text.getLength();
    while (end > point + 1 && text[end - 1] == u'0') {
        --end;
    }
    String digits = text.substring(0, point);
    digits.append(text.getData() + point + 1, end - point - 1);
    value_ = BigInteger(digits, 10);
    scale_ = end - point - 1;
}

// --- Number ---

int BigDecimal::compareTo(const Object& other) const {
    return &other == this ? 0 : compareTo(qv::detail::asNumber(other).toBigDecimal());
}

String BigDecimal::toString() const {
    String text = value_.toString(10);
    const int length = text.getLength();
    if (scale_ >= length) {
        text.prepend(u'0', scale_ - length);
        text.prepend(u"0.");
    } else if (scale_ > 0) {
        text.insert(length - scale_, u'.');
    }
    return text;
}

std::int64_t BigDecimal::toInt64() const { return qv::detail::truncated(toDouble()); }

double BigDecimal::toDouble() const {
    char text[256] = "";
    QVUnicodeToAnsi(text, toString().getData(), sizeof text);
    double value = 0;
    std::from_chars(text, std::find(std::begin(text), std::end(text), '\0'), value);
    return value;
}

BigInteger BigDecimal::toBigInteger() const {
    BigDecimal whole(*this);
    whole.setScale(0);
    return std::move(whole.value_);
}

BigDecimal BigDecimal::toBigDecimal() const { return *this; }

int BigDecimal::getSize() const { return value_.getSize(); }

// --- Arithmetic ---

void BigDecimal::add(const BigDecimal& x) {
    value_.add(x.value_); // kept: the values as they are
    scale_ = std::max(scale_, x.scale_);
}

void BigDecimal::subtract(const BigDecimal& x) {
    value_.subtract(x.value_); // kept: the values as they are
    scale_ = std::max(scale_, x.scale_);
}

void BigDecimal::multiply(const BigDecimal& x) {
    value_.multiply(x.value_);
    scale_ = wrapped(scale_, x.scale_);
}

void BigDecimal::divide(const BigDecimal& d, int scale) {
    BigDecimal number(*this);
    BigDecimal divisor(d);
    const std::int64_t missing = std::int64_t{d.scale_} + scale - scale_;
    if (missing < 0) {
        divisor.shiftValue(-missing);
    } else {
        number.shiftValue(missing);
    }
    BigInteger rest;
    number.value_.divide(divisor.value_, rest);
    rest.add(rest);
    // Kept: `d` is asked as it was given, with its sign and without its shift.
    if (!rest.isZero() && rest.compareTo(d.value_) >= 0) {
        number.value_.add(isNegative() != d.isNegative() ? -1 : 1);
    }
    number.scale_ = scale;
    *this = std::move(number);
}

void BigDecimal::setScale(int scale) {
    shiftValue(std::int64_t{scale} - scale_);
    scale_ = scale;
}

void BigDecimal::shiftValue(std::int64_t digits) {
    if (digits > 0 && !value_.isZero()) {
        value_.multiply(powerOfTen(digits));
    } else if (digits < 0) {
        BigInteger dropped;
        const bool nothingIsLeft = isOutOfReach(-digits, value_.getBitCount());
        nothingIsLeft ? void(value_ = 0) : value_.divide(powerOfTen(-digits), dropped);
    }
}

BigInteger BigDecimal::abs() const {
    BigInteger value(value_);
    value.abs();
    return value;
}

int BigDecimal::compareTo(const BigDecimal& x) const {
    BigInteger difference(value_);
    difference.subtract(x.value_);
    if (difference.compareTo(BigInteger::ZERO) == 0) {
        return 0;
    }
    return difference.isNegative() ? -1 : 1;
}

} // namespace qv::math
