#include "qv/io/NullWriter.h"

namespace qv::io {

void NullWriter::write(const String&) {}

void NullWriter::write(const char16_t*) {}

void NullWriter::write(const char16_t*, std::int32_t) {}

void NullWriter::write(char16_t) {}

} // namespace qv::io
