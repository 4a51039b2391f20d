#include "qv/io/OutputStreamWriter.h"

#include "qv/detail/Units.h"
#include "qv/io/detail/StreamClosed.h"
#include "qv/text/charset/AMP7Converters.h"
#include "qv/text/charset/CharToByteUTF.h"
#include "qv/text/charset/detail/Surrogates.h"

#include <algorithm>

namespace qv::io {

using text::charset::CharToByteConverter;

namespace {

/// True for encoders that stop in front of a pair for which the room is lacking: those of words, to
/// which surrogates are nothing special or which ask for room first, and AMP-7. The others may
/// forget the pair's first half there.
bool keepsPairs(CharToByteConverter* converter) {
    return dynamic_cast<text::charset::CharToByteUTF*>(converter) != nullptr ||
           dynamic_cast<text::charset::CTBAMP7*>(converter) != nullptr;
}

} // namespace

OutputStreamWriter::OutputStreamWriter(OutputStream* out, const char16_t* encoding,
                                       std::int32_t size)
    : out_(out), converter_(CharToByteConverter::getConverter(encoding)),
      bufferSize_(std::max({size, 6, converter_->getMaxBytesPerChar()})),
      roomForPair_(keepsPairs(converter_) ? 0 : std::max(converter_->getMaxBytesPerChar(), 1)),
      buffer_(std::make_unique_for_overwrite<signed char[]>(
          static_cast<std::size_t>(bufferSize_) + static_cast<std::size_t>(roomForPair_))) {}

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
    if (isOverfull()) {
        drain();
    }
    std::int32_t written = 0; // since a block went out
    while (*consumed < length) {
        const std::int32_t start = *consumed;
        const bool hadRoom = count_ == 0;
        const std::int32_t step = encodeRun(text, consumed, length);
        const bool moved = step != 0 || *consumed != start;
        written += step;
        if (count_ >= bufferSize_ || written == 0 || !moved) {
            drain();
            written = 0;
        }
        if (hadRoom && !moved) {
            if (*consumed != length - 1 || !text::charset::detail::isLeading(text[*consumed])) {
                throw IoException(u"stream write error");
            }
            heldSurrogate_ = text[*consumed];
            return;
        }
    }
}

/// Gives the encoder as much as it can be given in one call. Where it may forget a pair that meets
/// a full buffer, surrogates go in runs of their own for which there is room.
/// @return what the encoder says that it has written.
std::int32_t OutputStreamWriter::encodeRun(const char16_t* text, std::int32_t* consumed,
                                           std::int32_t length) {
    const std::int32_t start = *consumed;
    const std::int32_t room = bufferSize_ - count_;
    if (std::int64_t{length - start} * roomForPair_ <= room) {
        return convert(text, consumed, length, bufferSize_); // there is room for all of it
    }
    const std::int32_t plain = qv::detail::findSurrogate(text + start, length - start);
    if (plain != 0) {
        return convert(text, consumed, plain < 0 ? length : start + plain, bufferSize_);
    }
    if (room < roomForPair_) {
        return encodeBehindTheEnd(text, consumed, surrogatesEnd(text, start, length, 1));
    }
    return convert(text, consumed, surrogatesEnd(text, start, length, room / roomForPair_),
                   bufferSize_);
}

std::int32_t OutputStreamWriter::convert(const char16_t* text, std::int32_t* consumed,
                                         std::int32_t end, std::int32_t bufferEnd) {
    return converter_->convert(text, consumed, end, buffer_.get(), &count_, bufferEnd);
}

/// Encodes one pair, or a surrogate alone, for which the room may be lacking: the form may end in
/// the spare room behind the buffer, and goes to the front of the next block then.
std::int32_t OutputStreamWriter::encodeBehindTheEnd(const char16_t* text, std::int32_t* consumed,
                                                    std::int32_t end) {
    const std::int32_t before = count_;
    const std::int32_t written = convert(text, consumed, end, before + roomForPair_);
    if (isOverfull()) {
        out_->write(buffer_.get(), before);
        count_ -= before;
        std::copy_n(buffer_.get() + before, count_, buffer_.get());
    }
    return written;
}

/// Where the surrogates that begin at `start` end, or the first `pairs` of them. A leading one goes
/// with what stands behind it.
std::int32_t OutputStreamWriter::surrogatesEnd(const char16_t* text, std::int32_t start,
                                               std::int32_t length, std::int32_t pairs) {
    const std::int32_t limit = length - start > 2 * pairs ? start + 2 * pairs : length;
    std::int32_t end = start + 1;
    while (end < limit && text::charset::detail::isSurrogate(text[end])) {
        ++end;
    }
    if (end < length && text::charset::detail::isLeading(text[end - 1])) {
        end += end - start > 1 ? -1 : 1;
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
    if (isOverfull()) {
        drain();
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
