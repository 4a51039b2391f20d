#include "qv/io/NullOutputStream.h"

namespace qv::io {

void NullOutputStream::write(const signed char*, std::int32_t) {}

void NullOutputStream::write(signed char) {}

} // namespace qv::io
