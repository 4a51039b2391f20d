#include "qv/io/FilterInputStream.h"

namespace qv::io {

FilterInputStream::FilterInputStream(InputStream* in) : in_(in) {}

std::int32_t FilterInputStream::read(signed char* destination, std::int32_t length) {
    return in_->read(destination, length);
}

int FilterInputStream::read() { return in_->read(); }

std::int32_t FilterInputStream::skip(std::int32_t count) { return in_->skip(count); }

std::int32_t FilterInputStream::available() { return in_->available(); }

void FilterInputStream::close() { in_->close(); }

bool FilterInputStream::markSupported() { return in_->markSupported(); }

void FilterInputStream::mark(std::int32_t limit) { in_->mark(limit); }

void FilterInputStream::reset() { in_->reset(); }

} // namespace qv::io
