#include "qv/io/Reader.h"

#include "qv/Exceptions.h"
#include "qv/io/detail/Skip.h"

namespace qv::io {

int Reader::read() {
    char16_t unit = 0;
    return read(&unit, 1) > 0 ? unit : -1;
}

std::int32_t Reader::skip(std::int32_t count) {
    return detail::skipByReading<char16_t>(*this, count);
}

std::int32_t Reader::available() { return 0; }

void Reader::close() {}

bool Reader::markSupported() { return false; }

void Reader::mark(std::int32_t) {}

void Reader::reset() { throw IoException(u"mark/reset not supported"); }

} // namespace qv::io
