#include "qv/io/FilterReader.h"

namespace qv::io {

FilterReader::FilterReader(Reader* in) : in_(in) {}

std::int32_t FilterReader::read(char16_t* destination, std::int32_t length) {
    return in_->read(destination, length);
}

int FilterReader::read() { return in_->read(); }

std::int32_t FilterReader::skip(std::int32_t count) { return in_->skip(count); }

std::int32_t FilterReader::available() { return in_->available(); }

void FilterReader::close() { in_->close(); }

bool FilterReader::markSupported() { return in_->markSupported(); }

void FilterReader::mark(std::int32_t limit) { in_->mark(limit); }

void FilterReader::reset() { in_->reset(); }

} // namespace qv::io
