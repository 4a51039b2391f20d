#include "qv/io/StringWriter.h"

namespace qv::io {

StringWriter::StringWriter(int capacity) : text_(capacity) {}

void StringWriter::write(const char16_t* text, std::int32_t length) {
    if (length > 0) {
        text_.append(text, length);
    }
}

String StringWriter::toString() const { return text_; }

} // namespace qv::io
