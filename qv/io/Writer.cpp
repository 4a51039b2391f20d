#include "qv/io/Writer.h"

#include "qv/String.h"
#include "qv/util/BufferLocks.h"
#include "qvcore/Text.h"

namespace qv::io {

void Writer::write(const String& text) {
    util::BufferReadLock<char16_t> lock(text);
    write(lock.getData(), text.getLength());
    lock.release();
}

void Writer::write(const char16_t* text) { write(text, QVStrLenW_32(text)); }

void Writer::write(char16_t unit) { write(&unit, 1); }

void Writer::flush() {}

void Writer::close() {}

} // namespace qv::io
