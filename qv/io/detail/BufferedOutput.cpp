#include "qv/io/detail/BufferedOutput.h"

#include <algorithm>

namespace qv::io::detail {

template <class Sink, class Unit>
BufferedOutput<Sink, Unit>::BufferedOutput(Sink* out, std::int32_t size)
    : out_(out), bufferSize_(std::max(size, 16)),
      buffer_(std::make_unique_for_overwrite<Unit[]>(static_cast<std::size_t>(bufferSize_))) {}

template <class Sink, class Unit>
void BufferedOutput<Sink, Unit>::write(const Unit* units, std::int32_t length) {
    ensureOpen();
    if (length >= bufferSize_) {
        flushBuffer();
        out_->write(units, length);
        return;
    }
    if (length > bufferSize_ - count_) {
        flushBuffer();
    }
    if (length > 0) {
        std::copy_n(units, length, buffer_.get() + count_);
        count_ += length;
    }
}

template <class Sink, class Unit>
void BufferedOutput<Sink, Unit>::write(Unit unit) {
    ensureOpen();
    if (count_ >= bufferSize_) {
        flushBuffer();
    }
    buffer_.get()[count_++] = unit;
}

template <class Sink, class Unit>
void BufferedOutput<Sink, Unit>::flush() {
    ensureOpen();
    flushBuffer();
    out_->flush();
}

template <class Sink, class Unit>
void BufferedOutput<Sink, Unit>::close() {
    buffer_.reset();
    out_->close();
}

template <class Sink, class Unit>
void BufferedOutput<Sink, Unit>::flushBuffer() {
    if (count_ > 0) {
        out_->write(buffer_.get(), count_);
        count_ = 0;
    }
}

template class BufferedOutput<OutputStream, signed char>;
template class BufferedOutput<Writer, char16_t>;

} // namespace qv::io::detail
