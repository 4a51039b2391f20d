#include "qv/text/charset/CharToByteConverter.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/CodecManager.h"
#include "qv/text/charset/SingleByteConverters.h"
#include "qvcore/Encoding.h"

#include <algorithm>
#include <cassert>

namespace qv::text::charset {

namespace {

constexpr int defaultNameSize = 40;

} // namespace

bool CharToByteConverter::getSubstitutionMode() { return substitutionMode_; }

void CharToByteConverter::setSubstitutionMode(bool substitute) { substitutionMode_ = substitute; }

int CharToByteConverter::getSubstitutionBytes(signed char* buffer, int max) {
    if (buffer == nullptr) {
        return substitutionCount_;
    }
    const int count = std::min(substitutionCount_, max);
    std::copy_n(substitutionBytes_, count, buffer);
    return count;
}

void CharToByteConverter::setSubstitutionBytes(const signed char* bytes, int count) {
    assert(count >= 0 && count <= maxSubstitutionBytes);
    std::copy_n(bytes, count, substitutionBytes_);
    substitutionCount_ = count;
}

CharToByteConverter* CharToByteConverter::getConverter(const char16_t* name) {
    if (name == nullptr) {
        return getDefaultConverter();
    }
    Object* const encoder = CodecManager::getInstance()->getEncoder(name);
    if (encoder == nullptr) {
        throw UnknownEncodingException(name);
    }
    return static_cast<CharToByteConverter*>(encoder);
}

CharToByteConverter* CharToByteConverter::getDefaultConverter() {
    char16_t name[defaultNameSize] = {};
    QVGetDefaultCharEncoding(name, defaultNameSize);
    if (name[0] != 0) {
        return getConverter(name);
    }
    return new CTBASCII;
}

bool CharToByteConverter::substitute(detail::Encoding& encoding, int spare) const {
    if (!substitutionMode_) {
        throw UnmappableCharacterException();
    }
    if (encoding.room() < substitutionCount_ + spare) {
        return false;
    }
    encoding.out = std::copy_n(substitutionBytes_, substitutionCount_, encoding.out);
    return true;
}

} // namespace qv::text::charset
