#include "qv/io/ByteBufferInputStream.h"

namespace qv::io {

ByteBufferInputStream::ByteBufferInputStream(ByteBuffer* buffer) : buffer_(buffer) {}

std::int32_t ByteBufferInputStream::read(signed char* destination, std::int32_t length) {
    ByteBuffer* const buffer = getBuffer();
    if (buffer->getPosition() >= buffer->getLimit()) {
        return -1;
    }
    return length < 1 ? 0
                      : static_cast<std::int32_t>(
                            buffer->get(destination, static_cast<unsigned int>(length)));
}

} // namespace qv::io
