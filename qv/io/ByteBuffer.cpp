#include "qv/io/ByteBuffer.h"

namespace qv::io {

ByteBuffer::~ByteBuffer() noexcept = default;

} // namespace qv::io
