#include "qv/io/OutputStream.h"

namespace qv::io {

void OutputStream::write(const char* bytes, std::int32_t length) {
    write(reinterpret_cast<const signed char*>(bytes), length);
}

void OutputStream::write(const unsigned char* bytes, std::int32_t length) {
    write(reinterpret_cast<const signed char*>(bytes), length);
}

void OutputStream::write(signed char byte) { write(&byte, 1); }

void OutputStream::flush() {}

void OutputStream::close() {}

} // namespace qv::io
