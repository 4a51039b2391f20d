#include "qvcore/NumberText.h"

#include "qvcore/Encoding.h"
#include "qvcore/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace {

constexpr bool isSpace(char16_t unit) noexcept {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

/// The digit's value in the widest radix, or 36.
constexpr std::uint32_t digitValue(char16_t unit) noexcept {
    if (unit >= u'0' && unit <= u'9') {
        return unit - std::uint32_t{u'0'};
    }
    const std::uint32_t letter = unit | 0x20u;
    return unit < 0x80 && letter >= 'a' && letter <= 'z' ? letter - 'a' + 10 : 36;
}

/// The unit in lower case if it is ASCII; what is not ASCII stands in no number.
constexpr char16_t folded(char16_t unit) noexcept {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
}

/// White space and a sign, which stand in front of every number.
struct Prefix {
    explicit Prefix(const char16_t* text) noexcept : rest(text) {
        while (isSpace(*rest)) {
            ++rest;
        }
        if (*rest == u'-' || *rest == u'+') {
            isNegative = *rest == u'-';
            ++rest;
        }
    }

    const char16_t* rest;
    bool isNegative = false;
};

/// Number and digits behind a prefix, as far as they go.
struct Magnitude {
    std::uint32_t value = 0;
    bool isOutOfRange = false;
    /// Null if there was no number.
    const char16_t* end = nullptr;
};

constexpr std::int32_t anyRadix = 0;

bool hasHexPrefix(const char16_t* text) noexcept {
    return text[0] == u'0' && folded(text[1]) == u'x' && digitValue(text[2]) < 16;
}

Magnitude readDigits(const char16_t* text, std::uint32_t radix) noexcept {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t value = 0;
    const char16_t* unit = text;
    for (; digitValue(*unit) < radix; ++unit) {
        value = std::min(value * radix + digitValue(*unit), most + 1);
    }
    Magnitude result;
    result.isOutOfRange = value > most;
    result.value = static_cast<std::uint32_t>(std::min(value, most));
    result.end = unit == text ? nullptr : unit;
    return result;
}

Magnitude readMagnitude(const char16_t* text, std::int32_t radix) noexcept {
    if (radix != anyRadix && (radix < 2 || radix > 36)) {
        return {};
    }
    if ((radix == anyRadix || radix == 16) && hasHexPrefix(text)) {
        return readDigits(text + 2, 16);
    }
    if (radix == anyRadix) {
        return readDigits(text, *text == u'0' ? 8 : 10);
    }
    return readDigits(text, static_cast<std::uint32_t>(radix));
}

void giveEnd(const char16_t** end, const char16_t* text, const char16_t* found) noexcept {
    if (end != nullptr) {
        *end = found == nullptr ? text : found;
    }
}

/// The decimal separator of the runtime locale.
std::u16string decimalSeparator() {
    const char* narrow = std::localeconv()->decimal_point;
    if (narrow[0] == '.' && narrow[1] == 0) {
        return u".";
    }
    std::array<char16_t, 8> wide = {};
    const std::int32_t units =
        QVAnsiToUnicode(wide.data(), narrow, -1, static_cast<std::int32_t>(wide.size()));
    return units > 0 && units <= 8 ? std::u16string(wide.data(), static_cast<std::size_t>(units))
                                   : u".";
}

/// Reads a floating-point number behind its sign: finds out how far it goes, spells it in the form
/// that the standard library reads without a locale, and has that one round it.
class RealReader {
public:
    explicit RealReader(const char16_t* text) : at_(text) {}

    /// @return false if there is no number.
    bool read() { return readWord() || readHex() || readDecimal(); }

    double value() const noexcept { return value_; }
    const char16_t* end() const noexcept { return at_; }

private:
    /// Digits and an exponent of one radix.
    struct Form {
        std::uint32_t radix;
        char16_t exponentMark;
        std::chars_format format;
        /// What a digit's place weighs in the exponent.
        std::int64_t exponentPerDigit;
    };
    static constexpr Form decimal = {10, u'e', std::chars_format::general, 1};
    static constexpr Form hexadecimal = {16, u'p', std::chars_format::hex, 4};

    /// No double is so large or so small that its exponent goes beyond.
    static constexpr std::int64_t greatestExponent = 1'000'000'000'000;

    bool startsWith(std::u16string_view word) const noexcept {
        for (std::size_t unit = 0; unit < word.size(); ++unit) {
            if (folded(at_[unit]) != word[unit]) {
                return false;
            }
        }
        return true;
    }

    bool takeWord(std::u16string_view word, double value) noexcept {
        if (!startsWith(word)) {
            return false;
        }
        at_ += word.size();
        value_ = value;
        return true;
    }

    bool readWord() noexcept {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return takeWord(u"infinity", infinity) || takeWord(u"inf", infinity) ||
               takeWord(u"nan", std::numeric_limits<double>::quiet_NaN());
    }

    bool readHex() {
        if (!startsWith(u"0x")) {
            return false;
        }
        const char16_t* start = at_;
        at_ += 2;
        if (readForm(hexadecimal)) {
            return true;
        }
        at_ = start;
        return false;
    }

    bool readDecimal() { return readForm(decimal); }

    bool readForm(const Form& form) {
        takeDigits(form, integerPlaces_);
        takeFraction(form);
        if (spelling_.empty()) {
            return false;
        }
        takeExponent(form);
        convert(form);
        return true;
    }

    /// The separator counts only with a digit on one of its sides.
    void takeFraction(const Form& form) {
        const std::u16string separator = decimalSeparator();
        if (!startsWith(separator)) {
            return;
        }
        const char16_t* start = at_;
        const std::size_t integerDigits = spelling_.size();
        std::int64_t fractionPlaces = 0;
        at_ += separator.size();
        spelling_ += '.';
        takeDigits(form, fractionPlaces);
        if (integerDigits == 0 && fractionPlaces == 0) {
            at_ = start;
            spelling_.clear();
        }
    }

    void takeDigits(const Form& form, std::int64_t& places) {
        for (; digitValue(*at_) < form.radix; ++at_, ++places) {
            spelling_ += static_cast<char>(*at_);
        }
    }

    void takeExponent(const Form& form) {
        if (folded(*at_) != form.exponentMark) {
            return;
        }
        const Prefix prefix(at_ + 1);
        if (isSpace(at_[1]) || digitValue(*prefix.rest) >= 10) {
            return;
        }
        at_ = prefix.rest;
        for (; digitValue(*at_) < 10; ++at_) {
            exponent_ = std::min(exponent_ * 10 + digitValue(*at_), greatestExponent);
        }
        exponent_ = prefix.isNegative ? -exponent_ : exponent_;
        spelling_ += static_cast<char>(form.exponentMark);
        spelling_ += std::to_string(exponent_);
    }

    void convert(const Form& form) noexcept {
        const char* end = spelling_.data() + spelling_.size();
        const auto result = std::from_chars(spelling_.data(), end, value_, form.format);
        if (result.ec == std::errc::result_out_of_range) {
            value_ = leadingPlace(form) > 0 ? HUGE_VAL : 0.0;
        }
    }

    /// The exponent of the first digit that counts: above 0 in a number that is too large, below in
    /// one that is too small.
    std::int64_t leadingPlace(const Form& form) const noexcept {
        std::int64_t place = integerPlaces_;
        for (const char digit : spelling_) {
            if (digit == '.') {
                continue;
            }
            if (digit != '0') {
                break;
            }
            --place;
        }
        return place * form.exponentPerDigit + exponent_;
    }

    const char16_t* at_;
    std::string spelling_;
    std::int64_t integerPlaces_ = 0;
    std::int64_t exponent_ = 0;
    double value_ = 0;
};

template <typename Unit>
Unit* writeNumber(std::int32_t value, Unit* buffer, std::int32_t radix) noexcept {
    std::array<char, 34> digits;
    char* end = digits.data();
    if (radix == 10) {
        end = std::to_chars(end, end + digits.size(), value, radix).ptr;
    } else if (radix >= 2 && radix <= 36) {
        end = std::to_chars(end, end + digits.size(), static_cast<std::uint32_t>(value), radix).ptr;
    }
    *std::copy(digits.data(), end, buffer) = 0;
    return buffer;
}

} // namespace

std::int32_t QVStrToIW(const char16_t* text) noexcept { return QVStrToLW(text, nullptr, 10); }

std::int32_t QVStrToLW(const char16_t* text, const char16_t** end, std::int32_t radix) noexcept {
    const Prefix prefix(text);
    const Magnitude magnitude = readMagnitude(prefix.rest, radix);
    giveEnd(end, text, magnitude.end);
    const std::uint32_t most = prefix.isNegative ? 0x80000000u : 0x7FFFFFFFu;
    const std::uint32_t value = std::min(magnitude.value, most);
    return static_cast<std::int32_t>(prefix.isNegative ? 0u - value : value);
}

std::uint32_t QVStrToULW(const char16_t* text, const char16_t** end, std::int32_t radix) noexcept {
    const Prefix prefix(text);
    const Magnitude magnitude = readMagnitude(prefix.rest, radix);
    giveEnd(end, text, magnitude.end);
    const bool isNegated = prefix.isNegative && !magnitude.isOutOfRange;
    return isNegated ? 0u - magnitude.value : magnitude.value;
}

double QVStrToDW(const char16_t* text, const char16_t** end) noexcept {
    giveEnd(end, text, nullptr);
    try {
        const Prefix prefix(text);
        RealReader reader(prefix.rest);
        if (!reader.read()) {
            return 0;
        }
        giveEnd(end, text, reader.end());
        return prefix.isNegative ? -reader.value() : reader.value();
    } catch (...) {
        // No memory for the digits of so long a text: nothing was read.
        return 0;
    }
}

char16_t* QVLToStrW(std::int32_t value, char16_t* buffer, std::int32_t radix) noexcept {
    return writeNumber(value, buffer, radix);
}

char* QVLToStrA(std::int32_t value, char* buffer, std::int32_t radix) noexcept {
    return writeNumber(value, buffer, radix);
}
