#include "qv/io/ByteBufferOutputStream.h"

namespace qv::io {

ByteBufferOutputStream::ByteBufferOutputStream(ByteBuffer* buffer) : buffer_(buffer) {}

void ByteBufferOutputStream::write(const signed char* bytes, std::int32_t length) {
    const auto count = static_cast<unsigned int>(length);
    if (length > 0 && buffer_->put(bytes, count) < count) {
        overflowed_ = 1;
    }
}

} // namespace qv::io
