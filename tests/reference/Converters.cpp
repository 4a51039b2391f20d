#include "tests/reference/Converters.h"

#include <cctype>
#include <cstdio>
#include <optional>
#include <stdexcept>

namespace reference {

namespace {

const char* const leadAlone = "leading surrogate without trailing";
const char* const trailAlone = "trailing surrogate without leading";

/// The upper halves of the code pages, byte by byte from 0x80.
const std::u16string_view cp437Upper = u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»"
                                       u"░▒▓│┤╡╢╖╕╣║╗╝╜╛┐└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                       u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";
const std::u16string_view cp1252Upper = u"€\uFFFD‚ƒ„…†‡ˆ‰Š‹Œ\uFFFDŽ\uFFFD\uFFFD‘’“”•–—˜™š›œ\uFFFDžŸ"
                                        u"\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
                                        u"ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
                                        u"àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";

bool isLead(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isTrail(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

char32_t combined(char16_t lead, char16_t trail) {
    return 0x10000 + ((static_cast<char32_t>(lead) - 0xD800) << 10) + (trail - 0xDC00u);
}

unsigned byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

/// One decoding call: where it stands, and what it may do there.
class Decoder {
public:
    Decoder(std::string_view bytes, std::size_t room, const DecoderSettings& settings)
        : bytes_(bytes), room_(room), settings_(settings) {}

    bool atEnd() const { return position_ >= bytes_.size(); }
    std::string_view rest() const { return bytes_.substr(position_); }
    std::size_t free() const { return room_ - outcome_.written.size(); }

    void consume(std::size_t count) {
        position_ += count;
        outcome_.consumed = static_cast<std::int32_t>(position_);
    }
    void write(char32_t unit) { outcome_.written += static_cast<char16_t>(unit); }

    bool fail(Failure failure, const char* message = "") {
        outcome_.consumed = 0;
        outcome_.failure = failure;
        outcome_.message = message;
        return false;
    }

    /// Writes a code point by the common rule of the Unicode decoders; false stops the call.
    bool put(char32_t codePoint, const char* surrogateMessage) {
        if (free() < 1) {
            return false;
        }
        if (codePoint > 0x10FFFF) {
            return substitute(free() > settings_.chars.size());
        }
        if (codePoint > 0xFFFF) {
            if (free() < 2) {
                return false;
            }
            write(0xD800 + ((codePoint - 0x10000) >> 10));
            write(0xDC00 + (codePoint & 0x3FF));
            return true;
        }
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
            return fail(Failure::invalidCharacter, surrogateMessage);
        }
        write(codePoint);
        return true;
    }

    bool substitute(bool fits) {
        if (!settings_.substitute) {
            return fail(Failure::unmappableCharacter);
        }
        if (fits) {
            outcome_.written += settings_.chars;
        }
        return fits;
    }

    const DecoderSettings& settings() const { return settings_; }
    Decoded outcome() const { return outcome_; }

private:
    std::string_view bytes_;
    std::size_t room_;
    DecoderSettings settings_;
    std::size_t position_ = 0;
    Decoded outcome_;
};

bool inRange(unsigned byte, unsigned first, unsigned last) { return byte >= first && byte <= last; }

std::size_t utf8Length(unsigned first) {
    if (first <= 0x7F) {
        return 1;
    }
    if (inRange(first, 0xC2, 0xDF)) {
        return 2;
    }
    if (inRange(first, 0xE0, 0xEF)) {
        return 3;
    }
    return inRange(first, 0xF0, 0xF4) ? 4 : 0;
}

/// The value of a sequence that is all there, if its bytes are in range.
std::optional<char32_t> utf8Value(std::string_view bytes, std::size_t length) {
    if (length == 1) {
        return byteAt(bytes, 0);
    }
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned last = length == 4 && i == 1 ? 0xAF : 0xBF;
        if (!inRange(byteAt(bytes, i), 0x80, last)) {
            return std::nullopt;
        }
    }
    char32_t value = byteAt(bytes, 0) & (length == 2 ? 0x1Fu : length == 3 ? 0x0Fu : 0x07u);
    for (std::size_t i = 1; i < length; ++i) {
        value = value * 64 + (byteAt(bytes, i) & 0x3F);
    }
    return value;
}

bool stepUtf8(Decoder& decoder) {
    const std::size_t length = utf8Length(byteAt(decoder.rest(), 0));
    if (length > decoder.rest().size()) {
        return false;
    }
    const auto value = length == 0 ? std::nullopt : utf8Value(decoder.rest(), length);
    if (!decoder.put(value.value_or(0xFFFD),
                     "Invalid UTF-8 sequence (decoded chars in surrogate range)")) {
        return false;
    }
    decoder.consume(value ? length : 1);
    return true;
}

bool stepUtf16(Decoder& decoder, bool bigEndian) {
    if (decoder.rest().size() < 2 || decoder.free() < 1) {
        return false;
    }
    const unsigned first = byteAt(decoder.rest(), 0);
    const unsigned second = byteAt(decoder.rest(), 1);
    decoder.write(bigEndian ? first * 256 + second : second * 256 + first);
    decoder.consume(2);
    return true;
}

bool stepUtf32(Decoder& decoder, bool bigEndian) {
    char32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        word = word * 256 + byteAt(decoder.rest(), bigEndian ? i : 3 - i);
    }
    if (!decoder.put(word, "Illegal UTF-32 char in surrogate range")) {
        return false;
    }
    decoder.consume(4);
    return true;
}

bool badAmp7(Decoder& decoder) {
    if (!decoder.substitute(decoder.free() > decoder.settings().chars.size())) {
        return false;
    }
    decoder.write(0xFFFD);
    decoder.consume(1);
    return true;
}

bool putAmp7(Decoder& decoder, char32_t value, std::size_t bytes) {
    if (value == 0xFFFD) {
        return badAmp7(decoder);
    }
    if (!decoder.put(value, "Invalid AMP-7 sequence (decoded chars in surrogate range)")) {
        return false;
    }
    decoder.consume(bytes);
    return true;
}

bool stepAmp7Number(Decoder& decoder) {
    char32_t value = 0;
    for (std::size_t i = 2; i < decoder.rest().size(); ++i) {
        const auto byte = static_cast<int>(byteAt(decoder.rest(), i));
        if (byte == ';') {
            return putAmp7(decoder, value, i + 1);
        }
        if (i == 7 || byte > 0x7F || std::isxdigit(byte) == 0) {
            return badAmp7(decoder);
        }
        value = value * 16 +
                static_cast<char32_t>(byte <= '9' ? byte - '0' : std::toupper(byte) - 'A' + 10);
    }
    return false;
}

bool stepAmp7(Decoder& decoder) {
    if (decoder.free() < 1) {
        return false;
    }
    const std::string_view rest = decoder.rest();
    if (rest[0] != '&') {
        const unsigned byte = byteAt(rest, 0);
        return byte > 0x7F ? badAmp7(decoder) : putAmp7(decoder, byte, 1);
    }
    if (rest.size() == 1) {
        return false;
    }
    if (rest[1] == '_') {
        return stepAmp7Number(decoder);
    }
    const struct {
        const char* text;
        char32_t value;
    } keywords[] = {{"&AMP;", '&'}, {"&APOS;", '\''}, {"&QUOT;", '"'}};
    for (const auto& keyword : keywords) {
        const std::string_view text = keyword.text;
        if (rest.substr(0, text.size()) == text) {
            return putAmp7(decoder, keyword.value, text.size());
        }
        if (rest.size() < text.size() && text.substr(0, rest.size()) == rest) {
            return false;
        }
    }
    return badAmp7(decoder);
}

char16_t singleByteChar(Form form, unsigned byte) {
    if (form == Form::latin1) { // as the bulk path widens it
        return static_cast<char16_t>(byte < 0x80 ? byte : 0xFF00 + byte);
    }
    if (byte < 0x80) {
        return static_cast<char16_t>(byte);
    }
    return form == Form::ascii   ? u'\uFFFD'
           : form == Form::cp437 ? cp437Upper[byte - 0x80]
                                 : cp1252Upper[byte - 0x80];
}

bool stepSingleByte(Decoder& decoder, Form form) {
    char16_t unit = singleByteChar(form, byteAt(decoder.rest(), 0));
    if (unit == 0xFFFD && form != Form::latin1) {
        if (!decoder.settings().substitute) {
            return decoder.fail(Failure::unmappableCharacter);
        }
        if (decoder.settings().chars.size() != 1) {
            decoder.consume(1);
            return true;
        }
        unit = decoder.settings().chars[0];
    }
    if (decoder.free() < 1) {
        return false;
    }
    decoder.write(unit);
    decoder.consume(1);
    return true;
}

bool step(Form form, Decoder& decoder) {
    switch (form) {
    case Form::utf8:
        return stepUtf8(decoder);
    case Form::utf16le:
    case Form::utf16be:
        return stepUtf16(decoder, form == Form::utf16be);
    case Form::utf32le:
    case Form::utf32be:
        return stepUtf32(decoder, form == Form::utf32be);
    case Form::amp7:
        return stepAmp7(decoder);
    default:
        return stepSingleByte(decoder, form);
    }
}

/// One encoding call.
class Encoder {
public:
    Encoder(std::u16string_view units, std::size_t room, char16_t& waiting,
            const EncoderSettings& settings)
        : pending(waiting), units_(units), room_(room), settings_(settings) {}

    bool atEnd() const { return position_ >= units_.size(); }
    std::u16string_view rest() const { return units_.substr(position_); }
    std::size_t free() const { return room_ - outcome_.written.size(); }

    void consume(std::size_t count) {
        position_ += count;
        outcome_.consumed = static_cast<std::int32_t>(position_);
    }
    bool fail(Failure failure, const char* message = "") {
        outcome_.consumed = 0;
        outcome_.failure = failure;
        outcome_.message = message;
        return false;
    }
    /// Writes a form and consumes what it stands for; false stops the call.
    bool put(const std::string& form, std::size_t units = 1) {
        if (form.size() > free()) {
            return false;
        }
        outcome_.written += form;
        consume(units);
        return true;
    }
    const EncoderSettings& settings() const { return settings_; }
    Encoded outcome() const { return outcome_; }

    char16_t& pending;

private:
    std::u16string_view units_;
    std::size_t room_;
    EncoderSettings settings_;
    std::size_t position_ = 0;
    Encoded outcome_;
};

std::string utf8Form(char32_t codePoint) {
    const auto tail = [codePoint](int shift) {
        return static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
    };
    if (codePoint < 0x80) {
        return {static_cast<char>(codePoint)};
    }
    if (codePoint < 0x800) {
        return {static_cast<char>(0xC0 | codePoint >> 6), tail(0)};
    }
    if (codePoint < 0x10000) {
        return {static_cast<char>(0xE0 | codePoint >> 12), tail(6), tail(0)};
    }
    return {static_cast<char>(0xF0 | codePoint >> 18), tail(12), tail(6), tail(0)};
}

std::string wordForm(char32_t word, std::size_t size, bool bigEndian) {
    std::string form(size, '\0');
    for (std::size_t i = 0; i < size; ++i, word >>= 8) {
        form[bigEndian ? size - 1 - i : i] = static_cast<char>(word & 0xFF);
    }
    return form;
}

/// Joins the unit at hand to a surrogate that waits. @return nothing where there was a failure.
std::optional<char32_t> joined(Encoder& encoder) {
    const char16_t unit = encoder.rest()[0];
    if (encoder.pending == 0) {
        return unit;
    }
    if (!isTrail(unit)) {
        encoder.fail(Failure::invalidCharacter, leadAlone);
        return std::nullopt;
    }
    const char32_t codePoint = combined(encoder.pending, unit);
    encoder.pending = 0;
    return codePoint;
}

bool stepUtf8(Encoder& encoder) {
    const auto codePoint = joined(encoder);
    if (!codePoint) {
        return false;
    }
    if (isLead(*codePoint)) {
        encoder.pending = encoder.rest()[0];
        encoder.consume(1);
        return true;
    }
    return encoder.put(utf8Form(*codePoint));
}

bool stepUtf32(Encoder& encoder, bool bigEndian) {
    if (encoder.free() < 4) {
        return false;
    }
    const auto codePoint = joined(encoder);
    if (!codePoint) {
        return false;
    }
    if (isLead(*codePoint)) {
        encoder.pending = encoder.rest()[0];
        encoder.consume(1);
        return true;
    }
    return encoder.put(wordForm(*codePoint, 4, bigEndian));
}

bool stepAmp7(Encoder& encoder) {
    char32_t character = encoder.rest()[0];
    std::size_t units = 1;
    if (isLead(character)) {
        if (encoder.rest().size() < 2) {
            return false;
        }
        if (!isTrail(encoder.rest()[1])) {
            return encoder.fail(Failure::invalidCharacter, leadAlone);
        }
        character = combined(encoder.rest()[0], encoder.rest()[1]);
        units = 2;
    }
    if (character == '&') {
        return encoder.put("&AMP;");
    }
    const bool isPlain = (character >= 0x20 && character <= 0x7E) || character == 9 ||
                         character == 10 || character == 13;
    if (isPlain) {
        return encoder.put({static_cast<char>(character)});
    }
    if (character < 0xFFFFF) {
        char text[16];
        std::snprintf(text, sizeof text, "&_%X;", static_cast<unsigned>(character));
        return encoder.put(text, units);
    }
    if (!encoder.settings().substitute) {
        return encoder.fail(Failure::unmappableCharacter);
    }
    return encoder.free() > encoder.settings().bytes.size() &&
           encoder.put(encoder.settings().bytes, units);
}

/// The byte of a character, if there is one.
std::optional<unsigned> singleByteOf(Form form, char16_t unit) {
    if (form == Form::latin1) {
        return unit < 0x100 ? std::optional<unsigned>(unit) : std::nullopt;
    }
    if (unit < 0x80) {
        return unit;
    }
    if (form == Form::ascii || unit == 0xFFFD) {
        return std::nullopt;
    }
    const auto found = (form == Form::cp437 ? cp437Upper : cp1252Upper).find(unit);
    return found == std::u16string_view::npos
               ? std::nullopt
               : std::optional<unsigned>(static_cast<unsigned>(found) + 0x80);
}

bool replaceSingleByte(Encoder& encoder) {
    if (!encoder.settings().substitute) {
        return encoder.fail(Failure::unmappableCharacter);
    }
    return encoder.put(encoder.settings().bytes.size() == 1 ? encoder.settings().bytes : "");
}

bool stepSingleByte(Encoder& encoder, Form form) {
    const char16_t unit = encoder.rest()[0];
    if (encoder.pending != 0) {
        return joined(encoder) && replaceSingleByte(encoder);
    }
    if (const auto byte = singleByteOf(form, unit)) {
        return encoder.put({static_cast<char>(*byte)});
    }
    if (isLead(unit)) {
        encoder.pending = unit;
        encoder.consume(1);
        return true;
    }
    if (isTrail(unit)) {
        return encoder.fail(Failure::invalidCharacter, trailAlone);
    }
    return replaceSingleByte(encoder);
}

bool step(Form form, Encoder& encoder) {
    switch (form) {
    case Form::utf8:
        return stepUtf8(encoder);
    case Form::utf16le:
    case Form::utf16be:
        return encoder.put(wordForm(encoder.rest()[0], 2, form == Form::utf16be));
    case Form::utf32le:
    case Form::utf32be:
        return stepUtf32(encoder, form == Form::utf32be);
    case Form::amp7:
        return stepAmp7(encoder);
    default:
        return stepSingleByte(encoder, form);
    }
}

} // namespace

const char16_t* nameOf(Form form) {
    switch (form) {
    case Form::utf8:
        return u"UTF-8";
    case Form::utf16le:
        return u"UTF-16LE";
    case Form::utf16be:
        return u"UTF-16BE";
    case Form::utf32le:
        return u"UTF-32LE";
    case Form::utf32be:
        return u"UTF-32BE";
    case Form::amp7:
        return u"AMP-7";
    case Form::ascii:
        return u"ASCII";
    case Form::latin1:
        return u"ISO8859_1";
    case Form::cp437:
        return u"CP437";
    case Form::cp1252:
        return u"CP1252";
    }
    throw std::invalid_argument("form");
}

Decoded decode(Form form, std::string_view bytes, std::size_t room,
               const DecoderSettings& settings) {
    Decoder decoder(bytes, room, settings);
    while (!decoder.atEnd() && step(form, decoder)) {
    }
    return decoder.outcome();
}

Encoded encode(Form form, std::u16string_view units, std::size_t room, char16_t& pending,
               const EncoderSettings& settings) {
    Encoder encoder(units, room, pending, settings);
    while (!encoder.atEnd() && step(form, encoder)) {
    }
    return encoder.outcome();
}

} // namespace reference
