#include "qv/text/charset/CTBCom.h"

#include "qv/ErrorRule.h"
#include "qv/util/BufferLocks.h"
#include "qv/util/RWBuffer.h"

#include <algorithm>

namespace qv::text::charset {

CTBCom::CTBCom(IQVCharCodec* codec) : codec_(codec) {
    throwIfFailed(codec_->GetEncodingName(&encodingName_));
    throwIfFailed(codec_->GetMaxBytesPerChar(&maxBytesPerChar_));
    throwIfFailed(codec_->GetMaxCharsPerByte(&maxCharsPerByte_));
}

int CTBCom::convertChar(unsigned int codePoint, signed char* out, int max) {
    const Reference<util::RWByteBuffer> form = make<util::RWByteBuffer>(max);
    if (codec_->EncodeChar(codePoint, form) < 0) {
        return -1;
    }
    const int length = form->getLength();
    if (length < 1 || length > max) {
        return 0;
    }
    util::BufferReadLock lock(*form);
    std::copy_n(lock.getData(), length, out);
    lock.release();
    return length;
}

} // namespace qv::text::charset
