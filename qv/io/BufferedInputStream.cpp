#include "qv/io/BufferedInputStream.h"

namespace qv::io {

BufferedInputStream::BufferedInputStream(InputStream* in, std::int32_t size)
    : BufferedInput(in, size) {}

int BufferedInputStream::read() { return nextUnit(); }

} // namespace qv::io
