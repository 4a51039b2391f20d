#include "qv/StringLocks.h"
#include "qv/detail/Placeholders.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <new>
#include <span>
#include <vector>

namespace qv {

namespace {

using Text = std::u16string_view;

Text asText(const char16_t* text) { return {text, static_cast<std::size_t>(QVStrLenW_32(text))}; }

/// The pattern with each placeholder whose index is below the number of texts filled, in a new
/// buffer.
Reference<util::RWCharBuffer> filledBuffer(Text pattern, const detail::Placeholders& placeholders,
                                           std::span<const Text> texts) {
    std::size_t length = pattern.size();
    for (const detail::Placeholder& placeholder : placeholders.all()) {
        if (placeholder.index < texts.size()) {
            length += texts[placeholder.index].size();
            length -= placeholder.end - placeholder.start;
        }
    }
    if (length >= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::bad_alloc();
    }

    Reference buffer = util::RWCharBuffer::makeWhole(static_cast<int>(length) + 1);
    char16_t* target = buffer->util::RWCharBuffer::ensureCapacity(0);
    std::size_t copied = 0;
    for (const detail::Placeholder& placeholder : placeholders.all()) {
        if (placeholder.index < texts.size()) {
            target += pattern.copy(target, placeholder.start - copied, copied);
            target = std::ranges::copy(texts[placeholder.index], target).out;
            copied = placeholder.end;
        }
    }
    target += pattern.copy(target, Text::npos, copied);
    *target = 0;
    buffer->util::RWCharBuffer::releaseWriteLock(static_cast<int>(length) + 1);
    return buffer;
}

template <class Value>
String integerText(Value value) {
    char digits[24];
    char* const end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
    char16_t units[24];
    const char16_t* const last = std::copy(digits, end, units);
    return String(units, static_cast<int>(last - units));
}

/// The runtime formatter honours the runtime locale, whose decimal separator may be any text of the
/// default encoding.
String floatText(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    String result;
    result.setTo(text);
    return result;
}

using namespace literals;

} // namespace

const String& String::formatTexts(const char16_t* pattern, int length, const char16_t* const* texts,
                                  int count) {
    const Text whole(pattern, static_cast<std::size_t>(detail::measured(pattern, length)));
    const detail::Placeholders placeholders(whole);
    const std::size_t used = std::min(placeholders.consecutive(), static_cast<std::size_t>(count));
    constexpr std::size_t few = 8; // arguments that need no memory
    std::array<Text, few> place;
    std::vector<Text> many(used > few ? used : 0);
    Text* const arguments = used > few ? many.data() : place.data();
    std::transform(texts, texts + used, arguments, asText);
    // An argument may be the string's own text: it is read before that is written.
    Reference filled = filledBuffer(whole, placeholders, {arguments, used});
    if (!detail::givesWay(buffer_, filled->getCapacity())) {
        return replace(0, -1, filled->util::RWCharBuffer::getData(),
                       filled->util::RWCharBuffer::getLength() - 1, 0);
    }
    dropNarrowCache();
    adopt(filled.detach());
    return *this;
}

const String& String::formatv(const char16_t* pattern, int length, va_list arguments) {
    length = detail::measured(pattern, length);
    std::vector<const char16_t*> texts(
        detail::Placeholders({pattern, static_cast<std::size_t>(length)}).consecutive());
    for (const char16_t*& text : texts) {
        text = va_arg(arguments, const char16_t*);
    }
    return formatTexts(pattern, length, texts.data(), static_cast<int>(texts.size()));
}

const String& String::formatv(String pattern, va_list arguments) {
    return formatv(pattern.getData(), pattern.getLength(), arguments);
}

String String::valueOf(int value) { return integerText(value); }
String String::valueOf(unsigned int value) { return integerText(value); }
String String::valueOf(long value) { return integerText(value); }
String String::valueOf(unsigned long value) { return integerText(value); }
String String::valueOf(long long value) { return integerText(value); }
String String::valueOf(unsigned long long value) { return integerText(value); }
String String::valueOf(float value) { return floatText(static_cast<double>(value)); }
String String::valueOf(double value) { return floatText(value); }
String String::valueOf(bool value) { return value ? u"true"_lit : u"false"_lit; }
String String::valueOf(char16_t value) { return String(value); }

} // namespace qv
