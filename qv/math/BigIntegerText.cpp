// Big integers from and to text.

#include "qv/Exceptions.h"
#include "qv/OwningArray.h"
#include "qv/detail/Units.h"
#include "qv/math/BigInteger.h"
#include "qv/math/detail/Radix.h"
#include "qvcore/NumberText.h"

#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace qv::math {

using detail::Radix;
using detail::ScratchOf;

namespace {

/// Text is read and written in groups of so many digits.
constexpr int groupDigits = 3;

constexpr bool isRadix(int radix) noexcept { return radix >= 2 && radix <= 36; }

constexpr std::size_t lanes = 8;

/// The values of eight ASCII digits or letters, each in 16 bits; what is none is 255.
__m128i digitValues(__m128i units) noexcept {
    const auto all = [](int value) { return _mm_set1_epi16(static_cast<short>(value)); };
    const auto isAtMost = [&](__m128i values, int most) {
        return _mm_cmpeq_epi16(_mm_subs_epu16(values, all(most)), _mm_setzero_si128());
    };
    const __m128i digit = _mm_sub_epi16(units, all(u'0'));
    const __m128i letter = _mm_sub_epi16(_mm_or_si128(units, all(0x20)), all(u'a'));
    const __m128i isDigit = isAtMost(digit, 9);
    const __m128i isLetter = isAtMost(letter, 25);
    const __m128i digitValue = _mm_and_si128(isDigit, digit);
    const __m128i letterValue = _mm_and_si128(isLetter, _mm_add_epi16(letter, all(10)));
    const __m128i noValue = _mm_andnot_si128(_mm_or_si128(isDigit, isLetter), all(0xFF));
    return _mm_or_si128(_mm_or_si128(digitValue, letterValue), noValue);
}

/// The values of the digits, and behind them up to seven more bytes. @return false where one is no
/// digit of the radix.
bool readDigits(unsigned char* digits, const char16_t* text, std::size_t count,
                int radix) noexcept {
    __m128i greatest = _mm_setzero_si128();
    for (std::size_t i = 0; i < count; i += lanes) {
        char16_t last[lanes];
        const char16_t* units = text + i;
        if (count - i < lanes) { // zeros fill up the last ones
            std::fill(std::copy_n(units, count - i, last), std::end(last), u'0');
            units = last;
        }
        const __m128i values = digitValues(qv::detail::loadUnits(units));
        greatest = _mm_max_epi16(greatest, values);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(digits + i), _mm_packus_epi16(values, values));
    }
    const __m128i isBelow = _mm_cmplt_epi16(greatest, _mm_set1_epi16(static_cast<short>(radix)));
    return _mm_movemask_epi8(isBelow) == 0xFFFF;
}

/// What a group counts: that of the digits it begins with, behind white space and a sign.
int groupValue(const char16_t* text, std::size_t count, int radix) noexcept {
    char16_t group[groupDigits + 1] = {};
    std::copy_n(text, count, group);
    return QVStrToLW(group, nullptr, radix);
}

} // namespace

// What throws below finds a whole object, whose destructor gives its memory back.
BigInteger::BigInteger(const String& text, int radix) : BigInteger() {
    const int length = text.getLength();
    const int minus = text.indexOf(u'-');
    if (length == 0 || minus > 0) {
        throw Exception(u"Number Format Exception");
    }
    const char16_t* const units = text.getData();
    int start = length == 1 ? 0 : minus + 1;
    while (start < length - 1 && units[start] == u'0') {
        ++start;
    }
    const int digits = length - start;
    // Kept: the groups end at the number of digits, not at the end of the text.
    const int first = digits % groupDigits;
    int end = start + first;
    if (end < digits) {
        end += ((digits - end - 1) / groupDigits + 1) * groupDigits;
    }
    readGroups(units + start, first, end - start, radix);
    negative_ = minus == 0;
}

void BigInteger::readGroups(const char16_t* text, int first, int count, int radix) {
    if (radix == 0 && count > 0) {
        // The base is 0: each group takes away what was before it.
        const int last = count > first ? groupDigits : first;
        const int value = groupValue(text + count - last, static_cast<std::size_t>(last), 0);
        *this = BigInteger(value);
    }
    if (!isRadix(radix)) {
        return; // no group has a value
    }
    const auto length = static_cast<std::size_t>(count);
    Radix base(static_cast<unsigned int>(radix));
    ScratchOf<unsigned char> digits(length + lanes);
    if (readDigits(digits.data(), text, length, radix)) {
        reserveWords(base.wordsFor(length));
        setWordCount(detail::fromDigits(words(), digits.data(), length, base));
    } else {
        readUnclearGroups(text, first, count, radix);
    }
}

void BigInteger::readUnclearGroups(const char16_t* text, int first, int count, int radix) {
    // A group's value has no more digits than the group, but may be negative: the negative ones
    // make up a number of their own.
    const std::size_t groups = static_cast<std::size_t>(count) / groupDigits + 1;
    std::vector<unsigned char> positive(groups * groupDigits);
    std::vector<unsigned char> negative(groups * groupDigits);
    std::size_t end = 0;
    for (int i = 0, size = first; i < count; i += size, size = groupDigits) {
        size = size == 0 ? groupDigits : size;
        const int value = groupValue(text + i, static_cast<std::size_t>(size), radix);
        auto& digits = value < 0 ? negative : positive;
        end += groupDigits;
        for (int rest = std::abs(value), digit = 1; digit <= groupDigits; ++digit, rest /= radix) {
            digits[end - static_cast<std::size_t>(digit)] =
                static_cast<unsigned char>(rest % radix);
        }
    }
    Radix base(static_cast<unsigned int>(radix));
    BigInteger less;
    less.reserveWords(base.wordsFor(end));
    less.setWordCount(detail::fromDigits(less.words(), negative.data(), end, base));
    reserveWords(base.wordsFor(end));
    setWordCount(detail::fromDigits(words(), positive.data(), end, base));
    subtract(less);
}

String BigInteger::toString(int radix) const {
    if (isZero()) {
        return u"0";
    }
    if (!isRadix(radix)) {
        return groupsOfNothing(radix);
    }
    const std::size_t count = wordCount();
    Radix base(static_cast<unsigned int>(radix));
    const std::size_t room = base.digitsFor(detail::bitLength(words(), count)) + 1;
    if (room > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::bad_alloc();
    }
    ScratchOf<char16_t> text(room);
    char16_t* digits = text.data();
    if (negative_) {
        *digits++ = u'-';
    }
    const char16_t* const end = detail::toDigits(digits, words(), count, base);
    return String(text.data(), static_cast<int>(end - text.data()));
}

/// A radix in which no digits are written leaves the zeros that fill up every group but the first.
String BigInteger::groupsOfNothing(int radix) const {
    if (radix == 1 || radix == -1) {
        throw std::bad_alloc(); // there is no end of groups
    }
    BigInteger base(radix);
    BigInteger rest(radix);
    base.multiply(rest);
    base.multiply(rest);
    BigInteger groups(*this);
    groups.divide(base, rest);
    String text(negative_ ? u"-" : u"");
    while (!groups.isZero()) {
        text.append(u'0', groupDigits);
        groups.divide(base, rest);
    }
    return text;
}

} // namespace qv::math
