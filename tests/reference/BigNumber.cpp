#include "tests/reference/BigNumber.h"

#include "qvcore/NumberText.h"

#include <algorithm>

namespace reference {

namespace {

using Bytes = std::vector<std::uint8_t>;

void truncate(Bytes& bytes) {
    while (!bytes.empty() && bytes.back() == 0) {
        bytes.pop_back();
    }
}

int compareBytes(const Bytes& a, const Bytes& b) {
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    for (std::size_t i = a.size(); i-- > 0;) {
        if (a[i] != b[i]) {
            return a[i] < b[i] ? -1 : 1;
        }
    }
    return 0;
}

Bytes sum(const Bytes& a, const Bytes& b) {
    Bytes result;
    int carry = 0;
    for (std::size_t i = 0; i < std::max(a.size(), b.size()) || carry != 0; ++i) {
        carry += (i < a.size() ? a[i] : 0) + (i < b.size() ? b[i] : 0);
        result.push_back(static_cast<std::uint8_t>(carry));
        carry >>= 8;
    }
    return result;
}

/// Requires: `a` is not below `b`.
Bytes difference(const Bytes& a, const Bytes& b) {
    Bytes result;
    int borrow = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int digit = a[i] - (i < b.size() ? b[i] : 0) - borrow;
        result.push_back(static_cast<std::uint8_t>(digit));
        borrow = digit < 0 ? 1 : 0;
    }
    truncate(result);
    return result;
}

/// Puts a bit behind the number.
void push(Bytes& bytes, int bit) {
    for (std::uint8_t& byte : bytes) {
        const int doubled = byte * 2 + bit;
        byte = static_cast<std::uint8_t>(doubled);
        bit = doubled >> 8;
    }
    if (bit != 0) {
        bytes.push_back(1);
    }
}

int groupValue(std::u16string_view text, int radix) {
    return QVStrToLW(std::u16string(text).c_str(), nullptr, radix);
}

BigNumber cubeOf(int radix) {
    BigNumber cube(radix);
    cube.multiply(radix);
    cube.multiply(radix);
    return cube;
}

} // namespace

BigNumber::BigNumber(int value) : negative(value < 0) {
    for (std::int64_t rest = value < 0 ? -std::int64_t{value} : value; rest != 0; rest >>= 8) {
        bytes.push_back(static_cast<std::uint8_t>(rest));
    }
}

BigNumber::BigNumber(std::u16string_view text, int radix) {
    const std::size_t minus = text.find(u'-');
    if (text.empty() || (minus != text.npos && minus != 0)) {
        throw Refusal("Number Format Exception");
    }
    std::size_t start = minus == 0 && text.size() > 1 ? 1 : 0;
    while (start + 1 < text.size() && text[start] == u'0') {
        ++start;
    }
    const std::size_t digits = text.size() - start;
    const std::size_t first = digits % 3;
    *this = BigNumber(groupValue(first == 0 ? u"0" : text.substr(start, first), radix));
    for (std::size_t i = start + first; i < digits; i += 3) {
        multiply(cubeOf(radix));
        add(groupValue(text.substr(i, 3), radix));
    }
    negative = minus == 0;
}

int BigNumber::compareTo(const BigNumber& x) const {
    if (negative != x.negative) {
        return negative ? -1 : 1;
    }
    return negative ? compareBytes(x.bytes, bytes) : compareBytes(bytes, x.bytes);
}

void BigNumber::add(BigNumber x) {
    if (negative != x.negative) {
        x.negative = !x.negative;
        subtract(x);
        return;
    }
    bytes = sum(bytes, x.bytes);
}

void BigNumber::subtract(BigNumber x) {
    if (negative != x.negative) {
        x.negative = !x.negative;
        add(x);
        return;
    }
    const int order = compareBytes(bytes, x.bytes);
    if (order == 0) {
        *this = BigNumber();
    } else if (order > 0) {
        bytes = difference(bytes, x.bytes);
    } else {
        bytes = difference(x.bytes, bytes);
        negative = !negative;
    }
}

void BigNumber::multiply(const BigNumber& x) {
    Bytes product(bytes.size() + x.bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        int carry = 0;
        for (std::size_t j = 0; j < x.bytes.size(); ++j) {
            carry += product[i + j] + bytes[i] * x.bytes[j];
            product[i + j] = static_cast<std::uint8_t>(carry);
            carry >>= 8;
        }
        product[i + x.bytes.size()] = static_cast<std::uint8_t>(carry);
    }
    truncate(product);
    negative = negative != x.negative;
    bytes = product;
}

void BigNumber::divide(const BigNumber& divisor, BigNumber& remainder) {
    if (divisor.isZero()) {
        throw Refusal("Divide by zero.");
    }
    BigNumber quotient;
    Bytes rest;
    for (std::size_t bit = bytes.size() * 8; bit-- > 0;) {
        push(rest, bytes[bit / 8] >> (bit % 8) & 1);
        const bool fits = compareBytes(rest, divisor.bytes) >= 0;
        if (fits) {
            rest = difference(rest, divisor.bytes);
        }
        push(quotient.bytes, fits ? 1 : 0);
    }
    quotient.negative = !quotient.isZero() && negative != divisor.negative;
    remainder = BigNumber();
    remainder.bytes = rest;
    *this = quotient;
}

void BigNumber::mod(const BigNumber& m) {
    if (m.isZero()) {
        throw Refusal("Divide by zero.");
    }
    if (m.negative) {
        throw Refusal("Modulus can't be negative.");
    }
    BigNumber rest;
    BigNumber(*this).divide(m, rest);
    const bool wasNegative = negative;
    *this = wasNegative ? m : rest;
    if (wasNegative) {
        subtract(rest);
    }
}

void BigNumber::pow(const BigNumber& e) {
    if (e.negative) {
        throw Refusal("Negative Exponent");
    }
    const BigNumber base(*this);
    for (BigNumber counter(e); counter.compareTo(1) > 0; counter.subtract(1)) {
        multiply(base);
    }
}

void BigNumber::modPow(const BigNumber& e, const BigNumber& m) {
    if (!e.negative) {
        pow(e);
        mod(m);
        return;
    }
    modInverse(m);
    BigNumber exponent(e);
    exponent.negative = false;
    pow(exponent);
}

void BigNumber::modInverse(const BigNumber& m) {
    BigNumber a(m);
    BigNumber b(*this);
    BigNumber x0;
    BigNumber x1(1);
    BigNumber q(a);
    BigNumber r;
    q.divide(b, r);
    while (!r.isZero()) {
        q.multiply(x1);
        BigNumber t(x0);
        t.subtract(q);
        if (t.negative) {
            t.negative = false;
            t.mod(m);
            BigNumber rest(t);
            t = m;
            t.subtract(rest);
        } else {
            t.mod(m);
        }
        x0 = x1;
        x1 = t;
        a = b;
        b = r;
        q = a;
        q.divide(b, r);
    }
    if (b.compareTo(1) != 0) {
        throw Refusal("Not invertible.");
    }
    x1.mod(m);
    *this = x1;
}

void BigNumber::gcd(const BigNumber& x) {
    BigNumber a(*this);
    BigNumber b(x);
    BigNumber r;
    for (;;) {
        a.divide(b, r);
        if (r.isZero()) {
            break;
        }
        a = b;
        b = r;
    }
    *this = b;
}

std::int64_t BigNumber::toInt64() const {
    std::uint64_t value = 0;
    for (std::size_t i = std::min<std::size_t>(bytes.size(), 8); i-- > 0;) {
        value = value << 8 | bytes[i];
    }
    const auto masked = static_cast<std::int64_t>(value & 0x7FFFFFFFFFFFFFFF);
    return negative ? -masked : masked;
}

std::u16string BigNumber::toString(int radix) const {
    if (isZero()) {
        return u"0";
    }
    BigNumber rest(*this);
    rest.negative = false;
    std::u16string text;
    while (!rest.isZero()) {
        BigNumber group;
        rest.divide(cubeOf(radix), group);
        char16_t digits[34];
        std::u16string part(QVLToStrW(static_cast<std::int32_t>(group.toInt64()), digits, radix));
        if (!rest.isZero() && part.size() < 3) {
            part.insert(0, 3 - part.size(), u'0');
        }
        text.insert(0, part);
    }
    return negative ? u"-" + text : text;
}

} // namespace reference
