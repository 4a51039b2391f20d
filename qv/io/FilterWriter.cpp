#include "qv/io/FilterWriter.h"

namespace qv::io {

FilterWriter::FilterWriter(Writer* out) : out_(out) {}

void FilterWriter::write(const String& text) { out_->write(text); }

void FilterWriter::write(const char16_t* text) { out_->write(text); }

void FilterWriter::write(const char16_t* text, std::int32_t length) { out_->write(text, length); }

void FilterWriter::write(char16_t unit) { out_->write(unit); }

void FilterWriter::flush() { out_->flush(); }

void FilterWriter::close() { out_->close(); }

} // namespace qv::io
