#include "qvcore/Encoding.h"

#include "qv/Results.h"
#include "qvcore/common/DefaultEncoding.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qv::core {

namespace {

constexpr std::int32_t cannotServe = -1;

/// UTF-8 with the operations of SystemCodeSet.
struct Utf8CodeSet {
    Encoded<char> encode(char32_t character) const noexcept { return encodeUtf8(character); }
    Decoded decode(std::string_view text) const noexcept { return decodeUtf8(text); }
};

/// Runs `use` with the code set of the default encoding.
/// @return what it gives, or `otherwise` if the default encoding cannot be served.
template <typename Use>
std::int32_t withDefaultCodeSet(std::int32_t otherwise, Use use) {
    if (defaultEncodingName().isUtf8) {
        Utf8CodeSet codeSet;
        return use(codeSet);
    }
    SystemCodeSet codeSet;
    return codeSet.isUsable() ? use(codeSet) : otherwise;
}

/// Encodes the text's characters one by one and gives each form to `take`, an empty one for what
/// has none, until that returns false.
template <typename CodeSet, typename Take>
void encodeAll(CodeSet& codeSet, std::u16string_view text, Take take) {
    while (!text.empty()) {
        const Decoded decoded = decodeUtf16(text);
        const Encoded<char> form = decoded.character == Decoded::bad
                                       ? Encoded<char>{{}, 0}
                                       : codeSet.encode(decoded.character);
        if (!take(form)) {
            return;
        }
        text.remove_prefix(decoded.units);
    }
}

/// The reverse: gives each character, or Decoded::bad, to `take`.
template <typename CodeSet, typename Take>
void decodeAll(CodeSet& codeSet, std::string_view text, Take take) {
    while (!text.empty()) {
        const Decoded decoded = codeSet.decode(text);
        if (!take(decoded.character)) {
            return;
        }
        text.remove_prefix(decoded.units);
    }
}

/// Fills an area of limited size with whole characters: behind the first one that does not fit,
/// nothing is written any more, and only the units are counted.
template <typename Unit>
class BoundedWriter {
public:
    BoundedWriter(Unit* area, std::size_t capacity) noexcept : area_(area), capacity_(capacity) {}

    /// @return false if the character did not fit.
    bool write(std::basic_string_view<Unit> character) noexcept {
        counted_ += character.size();
        if (counted_ > capacity_) {
            return false;
        }
        std::copy(character.begin(), character.end(), area_ + written_);
        written_ = counted_;
        return true;
    }
    std::size_t written() const noexcept { return written_; }
    std::size_t counted() const noexcept { return counted_; }

private:
    Unit* area_;
    std::size_t capacity_;
    std::size_t written_ = 0;
    std::size_t counted_ = 0;
};

std::int32_t toCount(std::size_t count) noexcept {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(count, most));
}

} // namespace

std::int32_t toSystemText(std::u16string_view text, std::string& result) {
    return withDefaultCodeSet(QV_E_INVALIDNAME, [&](auto& codeSet) {
        bool hasForm = true;
        result.clear();
        encodeAll(codeSet, text, [&](const Encoded<char>& form) {
            result += form.view();
            hasForm = form.count != 0;
            return hasForm;
        });
        return hasForm ? QV_S_OK : QV_E_INVALIDNAME;
    });
}

std::int32_t fromSystemText(std::string_view text, std::u16string& result) {
    return withDefaultCodeSet(QV_E_INVALIDNAME, [&](auto& codeSet) {
        bool isText = true;
        result.clear();
        decodeAll(codeSet, text, [&](char32_t character) {
            isText = character != Decoded::bad;
            if (isText) {
                result += encodeUtf16(character).view();
            }
            return isText;
        });
        return isText ? QV_S_OK : QV_E_INVALIDNAME;
    });
}

} // namespace qv::core

using namespace qv::core;

void QVGetDefaultCharEncoding(char16_t* buffer, std::int32_t size) noexcept {
    if (buffer == nullptr || size < 1) {
        return;
    }
    const DefaultEncodingName name = defaultEncodingName();
    const std::size_t length = std::strlen(name.text);
    const bool fits = length < static_cast<std::size_t>(size);
    char16_t* end = std::copy_n(name.text, fits ? length : 0, buffer);
    *end = 0;
}

std::int32_t QVUnicodeToAnsi(char* destination, const char16_t* source,
                             std::int32_t size) noexcept {
    if (destination == nullptr || source == nullptr || size < 1) {
        return 0;
    }
    return withDefaultCodeSet(cannotServe, [&](auto& codeSet) {
        BoundedWriter<char> writer(destination, static_cast<std::size_t>(size - 1));
        encodeAll(codeSet, source, [&](const Encoded<char>& form) {
            return writer.write(form.count == 0 ? std::string_view("?") : form.view());
        });
        destination[writer.written()] = 0;
        return toCount(writer.written() + 1);
    });
}

std::int32_t QVAnsiToUnicode(char16_t* destination, const char* source, std::int32_t length,
                             std::int32_t size) noexcept {
    if (source == nullptr || (destination == nullptr && size > 0)) {
        return 0;
    }
    const std::size_t bytes = length < 0 ? std::strlen(source) : static_cast<std::size_t>(length);
    const std::size_t capacity = size < 0 ? 0 : static_cast<std::size_t>(size);
    return withDefaultCodeSet(cannotServe, [&](auto& codeSet) {
        BoundedWriter<char16_t> writer(destination, capacity);
        decodeAll(codeSet, {source, bytes}, [&](char32_t character) {
            writer.write(
                encodeUtf16(character == Decoded::bad ? replacementCharacter : character).view());
            return true;
        });
        return toCount(writer.counted());
    });
}
