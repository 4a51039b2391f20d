#include "qv/text/charset/ByteToCharConverter.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/CodecManager.h"
#include "qv/text/charset/SingleByteConverters.h"
#include "qv/text/charset/detail/Surrogates.h"
#include "qvcore/Encoding.h"

#include <algorithm>
#include <cassert>

namespace qv::text::charset {

namespace {

constexpr int defaultNameSize = 40;

} // namespace

bool ByteToCharConverter::getSubstitutionMode() { return substitutionMode_; }

void ByteToCharConverter::setSubstitutionMode(bool substitute) { substitutionMode_ = substitute; }

int ByteToCharConverter::getSubstitutionChars(char16_t* buffer, int max) {
    if (buffer == nullptr) {
        return substitutionCount_;
    }
    const int count = std::min(substitutionCount_, max);
    std::copy_n(substitutionChars_, count, buffer);
    return count;
}

void ByteToCharConverter::setSubstitutionChars(const char16_t* chars, int count) {
    assert(count >= 0 && count <= maxSubstitutionChars);
    std::copy_n(chars, count, substitutionChars_);
    substitutionCount_ = count;
}

ByteToCharConverter* ByteToCharConverter::getConverter(const char16_t* name) {
    if (name == nullptr) {
        return getDefaultConverter();
    }
    Object* const decoder = CodecManager::getInstance()->getDecoder(name);
    if (decoder == nullptr) {
        throw UnknownEncodingException(name);
    }
    return static_cast<ByteToCharConverter*>(decoder);
}

ByteToCharConverter* ByteToCharConverter::getDefaultConverter() {
    char16_t name[defaultNameSize] = {};
    QVGetDefaultCharEncoding(name, defaultNameSize);
    if (name[0] != 0) {
        return getConverter(name);
    }
    return new BTCASCII;
}

bool ByteToCharConverter::substitute(detail::Decoding& decoding, int spare) const {
    if (!substitutionMode_) {
        throw UnmappableCharacterException();
    }
    if (decoding.room() < substitutionCount_ + spare) {
        return false;
    }
    decoding.out = std::copy_n(substitutionChars_, substitutionCount_, decoding.out);
    return true;
}

bool ByteToCharConverter::writeCodePoint(detail::Decoding& decoding, std::uint32_t codePoint,
                                         int spare,
                                         const STRUCT_QV_STR_LIT_INFO& surrogateMessage) const {
    if (detail::isSurrogate(codePoint)) {
        throw InvalidCharacterException(surrogateMessage);
    }
    if (codePoint > 0x10FFFF) {
        return substitute(decoding, spare);
    }
    if (codePoint <= 0xFFFF) {
        *decoding.out++ = static_cast<char16_t>(codePoint);
        return true;
    }
    if (decoding.room() < 2) {
        return false;
    }
    *decoding.out++ = detail::leadOf(codePoint);
    *decoding.out++ = detail::trailOf(codePoint);
    return true;
}

} // namespace qv::text::charset
