#include "qv/io/InputStream.h"

#include "qv/Exceptions.h"
#include "qv/io/detail/Skip.h"

namespace qv::io {

std::int32_t InputStream::read(char* destination, std::int32_t length) {
    return read(reinterpret_cast<signed char*>(destination), length);
}

std::int32_t InputStream::read(unsigned char* destination, std::int32_t length) {
    return read(reinterpret_cast<signed char*>(destination), length);
}

int InputStream::read() {
    signed char byte = 0;
    return read(&byte, 1) > 0 ? static_cast<unsigned char>(byte) : -1;
}

std::int32_t InputStream::skip(std::int32_t count) {
    return detail::skipByReading<signed char>(*this, count);
}

std::int32_t InputStream::available() { return 0; }

void InputStream::close() {}

bool InputStream::markSupported() { return false; }

void InputStream::mark(std::int32_t) {}

void InputStream::reset() { throw IoException(u"mark/reset not supported"); }

} // namespace qv::io
