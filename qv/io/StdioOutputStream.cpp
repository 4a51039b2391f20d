#include "qv/io/StdioOutputStream.h"

#include "qv/io/detail/Stdio.h"

#include <utility>

namespace qv::io {

StdioOutputStream::StdioOutputStream() : file_(stdout) {}

void StdioOutputStream::write(signed char byte) { detail::writeByte(file_, byte); }

void StdioOutputStream::write(const signed char* bytes, std::int32_t length) {
    detail::writeBlock(file_, bytes, length);
}

void StdioOutputStream::flush() { detail::flush(file_); }

Reference<OutputStream> StdioOutputStream::getStdErrorStream() {
    return make<StdioFileOutputStream>(stderr, false);
}

StdioFileOutputStream::StdioFileOutputStream(std::FILE* file, bool owned)
    : file_(file), owned_(owned) {}

StdioFileOutputStream::~StdioFileOutputStream() noexcept { StdioFileOutputStream::close(); }

void StdioFileOutputStream::write(signed char byte) { detail::writeByte(file_, byte); }

void StdioFileOutputStream::write(const signed char* bytes, std::int32_t length) {
    detail::writeBlock(file_, bytes, length);
}

void StdioFileOutputStream::flush() { detail::flush(file_); }

void StdioFileOutputStream::close() {
    if (owned_ && file_ != nullptr) {
        QVStreamClose(std::exchange(file_, nullptr));
    }
    owned_ = false;
}

} // namespace qv::io
