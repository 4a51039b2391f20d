#include "qv/io/BufferedWriter.h"

namespace qv::io {

BufferedWriter::BufferedWriter(Writer* out, std::int32_t size) : BufferedOutput(out, size) {}

BufferedWriter::~BufferedWriter() = default;

} // namespace qv::io
