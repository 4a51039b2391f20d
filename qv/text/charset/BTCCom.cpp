#include "qv/text/charset/BTCCom.h"

#include "qv/ErrorRule.h"
#include "qv/text/charset/detail/Surrogates.h"

namespace qv::text::charset {

BTCCom::BTCCom(IQVCharCodec* codec) : codec_(codec) {
    throwIfFailed(codec_->GetEncodingName(&encodingName_));
    throwIfFailed(codec_->GetMaxBytesPerChar(&maxBytesPerChar_));
    throwIfFailed(codec_->GetMaxCharsPerByte(&maxCharsPerByte_));
}

unsigned int BTCCom::convertBytes(const signed char* bytes, int& length) {
    unsigned int codePoint = detail::replacementChar;
    static_cast<void>(codec_->DecodeChar(bytes, length, &codePoint));
    return codePoint;
}

} // namespace qv::text::charset
