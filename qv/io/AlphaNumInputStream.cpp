#include "qv/io/AlphaNumInputStream.h"

#include "qv/io/detail/OneByteCalls.h"
#include "qv/io/detail/Skip.h"

namespace qv::io {

namespace {

constexpr int letterBits = 5;
constexpr int byteBits = 8;

} // namespace

AlphaNumInputStream::AlphaNumInputStream(InputStream* in, const char16_t* alphabet)
    : FilterInputStream(in), alphabet_(alphabet) {}

AlphaNumInputStream::~AlphaNumInputStream() = default;

int AlphaNumInputStream::getValue(signed char letter) const {
    const int value = alphabet_.value(static_cast<unsigned char>(letter));
    if (value < 0) {
        throw text::charset::InvalidCharacterException(u"Invalid AlphaNum character");
    }
    return value;
}

/// Fills the area with what the letters make, and counts each that was good into `rest`.
/// @return bytes stored.
template <class Source>
inline std::int32_t AlphaNumInputStream::decode(Rest& rest, Source nextLetter,
                                                signed char* destination,
                                                std::int32_t length) const {
    std::int32_t count = 0;
    while (count < length) {
        const int letter = nextLetter();
        if (letter < 0) {
            break;
        }
        const auto value = static_cast<std::uint32_t>(getValue(static_cast<signed char>(letter)));
        rest.bits = rest.bits << letterBits | value;
        rest.count += letterBits;
        if (rest.count >= byteBits) {
            rest.count -= byteBits;
            destination[count++] = static_cast<signed char>(rest.bits >> rest.count);
        }
    }
    if (count < length && rest.count > 0) { // kept: the end makes a byte of what is left
        destination[count++] = static_cast<signed char>(rest.bits << (byteBits - rest.count));
        rest.count = 0;
    }
    return count;
}

std::int32_t AlphaNumInputStream::read(signed char* destination, std::int32_t length) {
    if (length < 1) {
        return -1;
    }
    Rest rest = rest_;
    std::int32_t count = 0;
    try {
        count = detail::withNextByte(in_.operator->(), [&](auto nextLetter) {
            return decode(rest, nextLetter, destination, length);
        });
    } catch (...) {
        rest_ = rest;
        throw;
    }
    rest_ = rest;
    return count > 0 ? count : -1;
}

int AlphaNumInputStream::read() {
    signed char byte = 0;
    return read(&byte, 1) > 0 ? static_cast<unsigned char>(byte) : -1;
}

std::int32_t AlphaNumInputStream::skip(std::int32_t count) {
    return detail::skipByReading<signed char>(*this, count);
}

std::int32_t AlphaNumInputStream::available() {
    return static_cast<std::int32_t>(std::int64_t{in_->available()} * letterBits / byteBits);
}

} // namespace qv::io
