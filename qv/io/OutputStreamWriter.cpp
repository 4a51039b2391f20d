#include "qv/io/OutputStreamWriter.h"

#include "qv/detail/Units.h"
#include "qv/io/detail/StreamClosed.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/detail/Surrogates.h"

#include <algorithm>

namespace qv::io {

using text::charset::CharToByteConverter;

OutputStreamWriter::OutputStreamWriter(OutputStream* out, const char16_t* encoding,
                                       std::int32_t size)
    : out_(out), converter_(CharToByteConverter::getConverter(encoding)),
      bufferSize_(std::max({size, 6, converter_->getMaxBytesPerChar()})),
      buffer_(std::make_unique_for_overwrite<signed char[]>(static_cast<std::size_t>(bufferSize_))),
      longestForm_(std::max(converter_->getMaxBytesPerChar(), 1)) {}

OutputStreamWriter::~OutputStreamWriter() = default;

void OutputStreamWriter::ensureOpen() const {
    if (converter_.get() == nullptr) {
        detail::throwStreamClosed();
    }
}

void OutputStreamWriter::write(const char16_t* text, std::int32_t length) {
    ensureOpen();
    if (length > 0) {
        std::int32_t consumed = completeHeldPair(*text);
        encode(text, &consumed, length);
    }
}

/// Writes a leading surrogate that was held back, together with the unit that comes next.
/// @return how many units are gone that way, 0 or 1.
std::int32_t OutputStreamWriter::completeHeldPair(char16_t next) {
    if (!heldSurrogate_) {
        return 0;
    }
    const char16_t pair[] = {*heldSurrogate_, next};
    std::int32_t consumed = 0;
    try {
        encode(pair, &consumed, 2);
    } catch (...) {
        if (consumed == 2) {
            heldSurrogate_.reset(); // the buffer has the pair, only the sink did not take it
        }
        throw;
    }
    heldSurrogate_.reset();
    return 1;
}

void OutputStreamWriter::encode(const char16_t* text, std::int32_t* consumed, std::int32_t length) {
    while (*consumed < length) {
        const std::int32_t end = runEnd(text, *consumed, length);
        const std::int32_t start = *consumed;
        const bool hadRoom = count_ == 0;
        const std::int32_t written =
            converter_->convert(text, consumed, end, buffer_.get(), &count_, bufferSize_);
        if (count_ >= bufferSize_ || written == 0) {
            drain();
        }
        if (hadRoom && written == 0 && *consumed == start) {
            if (*consumed != length - 1 || !text::charset::detail::isLeading(text[*consumed])) {
                throw IoException(u"stream write error");
            }
            heldSurrogate_ = text[*consumed];
            return;
        }
    }
}

/// Where the run ends that goes to the encoder in one call. An encoder may forget the first half of
/// a pair that meets a full buffer, so that surrogates go in runs of their own for which there is
/// room.
std::int32_t OutputStreamWriter::runEnd(const char16_t* text, std::int32_t start,
                                        std::int32_t length) {
    if (std::int64_t{length - start} * longestForm_ <= bufferSize_ - count_) {
        return length; // there is room for all of it
    }
    const std::int32_t plain = qv::detail::findSurrogate(text + start, length - start);
    if (plain != 0) {
        return plain < 0 ? length : start + plain;
    }
    if (bufferSize_ - count_ < longestForm_) {
        drain();
    }
    const std::int32_t pairs = (bufferSize_ - count_) / longestForm_;
    const std::int32_t limit = length - start > 2 * pairs ? start + 2 * pairs : length;
    std::int32_t end = start + 1;
    while (end < limit && text::charset::detail::isSurrogate(text[end])) {
        ++end;
    }
    if (end < length && text::charset::detail::isLeading(text[end - 1])) {
        end += end - start > 1 ? -1 : 1; // a leading one goes with what stands behind it
    }
    return end;
}

void OutputStreamWriter::drain() {
    if (count_ > 0) {
        out_->write(buffer_.get(), count_);
        count_ = 0;
    }
}

void OutputStreamWriter::flush() {
    ensureOpen();
    if (heldSurrogate_) {
        text::charset::detail::throwLeadWithoutTrail();
    }
    converter_->flush(buffer_.get(), &count_, bufferSize_);
    while (count_ != 0) {
        drain();
        converter_->flush(buffer_.get(), &count_, bufferSize_);
    }
    out_->flush();
}

void OutputStreamWriter::close() {
    converter_ = nullptr;
    buffer_.reset();
    out_->close();
}

const char16_t* OutputStreamWriter::getEncodingName() {
    ensureOpen();
    return converter_->getEncodingName();
}

} // namespace qv::io
