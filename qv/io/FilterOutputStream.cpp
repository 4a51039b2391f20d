#include "qv/io/FilterOutputStream.h"

namespace qv::io {

FilterOutputStream::FilterOutputStream(OutputStream* out) : out_(out) {}

void FilterOutputStream::write(const signed char* bytes, std::int32_t length) {
    out_->write(bytes, length);
}

void FilterOutputStream::write(signed char byte) { out_->write(byte); }

void FilterOutputStream::flush() { out_->flush(); }

void FilterOutputStream::close() { out_->close(); }

} // namespace qv::io
