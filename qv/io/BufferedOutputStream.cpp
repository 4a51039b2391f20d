#include "qv/io/BufferedOutputStream.h"

namespace qv::io {

BufferedOutputStream::BufferedOutputStream(OutputStream* out, std::int32_t size)
    : BufferedOutput(out, size) {}

BufferedOutputStream::~BufferedOutputStream() = default;

} // namespace qv::io
