#include "qv/text/charset/AMP7Converters.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/detail/Surrogates.h"
#include "qv/text/charset/detail/UnitRuns.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace qv::text::charset {

using namespace literals;

namespace {

constexpr STRUCT_QV_STR_LIT_INFO surrogateMessage =
    u"Invalid AMP-7 sequence (decoded chars in surrogate range)"_lit;

constexpr int mostDigits = 5;
/// Characters from here on have no numeric form.
constexpr std::uint32_t numericEnd = 0xFFFFF;

constexpr struct {
    std::string_view text;
    char16_t value;
} keywords[] = {
    {"&AMP;", u'&'},
    {"&APOS;", u'\''},
    {"&QUOT;", u'"'},
};

/// A step of the decoder: a value and the bytes that it takes.
struct Step {
    std::uint32_t value;
    int bytes;
};

constexpr Step badStep = {detail::replacementChar, 1};

/// The input ends before it can be told what stands there.
constexpr std::optional<Step> undecided = std::nullopt;

/// The value of a hexadecimal digit, or -1.
constexpr int digitValue(char digit) noexcept {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Reads a numeric escape; `text` begins at its "&_".
std::optional<Step> readNumber(std::string_view text) noexcept {
    std::uint32_t value = 0;
    for (std::size_t i = 2; i < text.size(); ++i) {
        if (text[i] == ';') {
            return value == detail::replacementChar ? badStep
                                                    : Step{value, static_cast<int>(i) + 1};
        }
        const int digit = digitValue(text[i]);
        if (digit < 0 || i >= 2 + mostDigits) {
            return badStep;
        }
        value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    return undecided;
}

/// Reads a keyword; `text` begins at its "&".
std::optional<Step> readKeyword(std::string_view text) noexcept {
    for (const auto& keyword : keywords) {
        if (text.starts_with(keyword.text)) {
            return Step{keyword.value, static_cast<int>(keyword.text.size())};
        }
        if (keyword.text.starts_with(text)) {
            return undecided;
        }
    }
    return badStep;
}

std::optional<Step> readStep(std::string_view text) noexcept {
    if (text[0] != '&') {
        const auto byte = static_cast<unsigned char>(text[0]);
        return byte <= 0x7F ? Step{byte, 1} : badStep;
    }
    return text.starts_with("&_") ? readNumber(text) : readKeyword(text);
}

/// A form of the encoder.
class Form {
public:
    explicit Form(std::uint32_t character) noexcept {
        if (character == u'&') {
            append("&AMP;");
        } else if (detail::PlainUnitRun::has(character)) {
            text_[length_++] = static_cast<char>(character);
        } else {
            append("&_");
            appendNumber(character);
            append(";");
        }
    }

    std::string_view text() const noexcept { return {text_, length_}; }

private:
    void append(std::string_view part) noexcept {
        length_ += part.copy(text_ + length_, part.size());
    }
    void appendNumber(std::uint32_t number) noexcept {
        char* const digits = text_ + length_;
        char* const end = std::to_chars(digits, digits + mostDigits, number, 16).ptr;
        std::transform(digits, end, digits, [](char digit) {
            return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
        });
        length_ += static_cast<std::size_t>(end - digits);
    }

    char text_[2 + mostDigits + 1];
    std::size_t length_ = 0;
};

} // namespace

std::int32_t BTCAMP7::convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                              char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    bool goesOn = true;
    while (goesOn) {
        detail::widenRun<detail::PlainByteRun>(decoding);
        goesOn = decoding.available() > 0 && decoding.room() > 0 && convertStep(decoding);
    }
    return decoding.commit();
}

/// @return false where the call must stop in front of the step.
bool BTCAMP7::convertStep(detail::Decoding& decoding) const {
    const std::string_view text(reinterpret_cast<const char*>(decoding.in),
                                static_cast<std::size_t>(decoding.available()));
    const std::optional<Step> step = readStep(text);
    if (!step) {
        return false;
    }
    if (step->value == detail::replacementChar) {
        if (!substitute(decoding, 1)) {
            return false;
        }
        *decoding.out++ = detail::replacementChar;
    } else if (!writeCodePoint(decoding, step->value, 1, surrogateMessage)) {
        return false;
    }
    decoding.in += step->bytes;
    return true;
}

std::int32_t BTCAMP7::flush(char16_t*, std::int32_t*, std::int32_t) { return 0; }

void BTCAMP7::reset() {}

const char16_t* BTCAMP7::getEncodingName() { return u"AMP-7"; }

int BTCAMP7::getMaxBytesPerChar() { return 8; }

int BTCAMP7::getMaxCharsPerByte() { return 1; }

std::int32_t CTBAMP7::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                              signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    bool goesOn = true;
    while (goesOn) {
        detail::narrowRun<detail::PlainUnitRun>(encoding);
        goesOn = encoding.available() > 0 && convertCharacter(encoding);
    }
    return encoding.commit();
}

/// @return false where the call must stop in front of the character.
bool CTBAMP7::convertCharacter(detail::Encoding& encoding) const {
    std::uint32_t character = *encoding.in;
    int units = 1;
    if (detail::isLeading(character)) {
        if (encoding.available() < 2) {
            return false;
        }
        if (!detail::isTrailing(encoding.in[1])) {
            detail::throwLeadWithoutTrail();
        }
        character = detail::combine(encoding.in[0], encoding.in[1]);
        units = 2;
    }
    if (character >= numericEnd) {
        if (!substitute(encoding, 1)) {
            return false;
        }
    } else {
        const Form form(character);
        if (encoding.room() < static_cast<std::ptrdiff_t>(form.text().size())) {
            return false;
        }
        encoding.out = std::copy(form.text().begin(), form.text().end(), encoding.out);
    }
    encoding.in += units;
    return true;
}

std::int32_t CTBAMP7::flush(signed char*, std::int32_t*, std::int32_t) { return 0; }

void CTBAMP7::reset() {}

const char16_t* CTBAMP7::getEncodingName() { return u"AMP-7"; }

int CTBAMP7::getMaxBytesPerChar() { return 8; }

int CTBAMP7::getMaxCharsPerByte() { return 1; }

} // namespace qv::text::charset
