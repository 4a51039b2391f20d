#include "qv/io/InputStreamReader.h"

#include "qv/io/detail/StreamClosed.h"
#include "qv/text/charset/UTF32Converters.h"

#include <algorithm>
#include <utility>

namespace qv::io {

using text::charset::ByteToCharConverter;

namespace {

constexpr char16_t replacement = u'\uFFFD';

/// The bytes that a decoder must be given together: UTF-32 reads whole words, also past the end.
std::int32_t wordSizeOf(ByteToCharConverter* converter) {
    return dynamic_cast<text::charset::BTCUTF32*>(converter) != nullptr ? 4 : 1;
}

} // namespace

InputStreamReader::InputStreamReader(InputStream* in, const char16_t* encoding, std::int32_t size)
    : in_(in), converter_(ByteToCharConverter::getConverter(encoding)),
      bufferSize_(std::max({size, 6, converter_->getMaxBytesPerChar()})),
      buffer_(std::make_unique_for_overwrite<signed char[]>(static_cast<std::size_t>(bufferSize_))),
      wordSize_(wordSizeOf(converter_)) {}

InputStreamReader::~InputStreamReader() = default;

void InputStreamReader::ensureOpen() const {
    if (converter_.get() == nullptr) {
        detail::throwStreamClosed();
    }
}

std::int32_t InputStreamReader::read(char16_t* destination, std::int32_t length) {
    ensureOpen();
    if (length < 1) {
        return 0;
    }
    if (!heldUnits_.empty()) {
        return takeHeldUnits(destination, length);
    }
    std::int32_t written = 0;
    try {
        decode(destination, &written, length);
    } catch (...) {
        heldUnits_.assign(destination, static_cast<std::size_t>(written));
        throw;
    }
    releaseLongRoom();
    return written > 0 ? written : -1;
}

/// Decodes up to `length` units, and none only at the end.
void InputStreamReader::decode(char16_t* destination, std::int32_t* written, std::int32_t length) {
    bool stuck = false; // the decoder has left bytes behind
    while (*written < length) {
        if (stuck || isUsedUp()) {
            if (!endOfInput_ && *written > 0 && (isFull() || in_->available() == 0)) {
                return;
            }
            if (!fillBuffer()) {
                if (isUsedUp()) {
                    converter_->flush(destination, written, length);
                    return;
                }
                if (length - *written == 1 && convertIntoSingleUnit(destination + *written)) {
                    ++*written; // left behind for want of room, not of bytes
                    return;
                }
                destination[(*written)++] = replacement;
                ++bufferPos_;
                stuck = false;
                continue;
            }
        }
        stuck = convertBuffer(destination, written, length);
    }
}

/// Brings the bytes left behind to the front and reads on behind them.
/// @return false if nothing can come: at the end of the stream, or with the whole buffer left
/// behind.
bool InputStreamReader::fillBuffer() {
    if (endOfInput_ || isFull()) {
        return false;
    }
    const std::int32_t left = bufferEnd_ - bufferPos_;
    std::copy_n(buffer_.get() + bufferPos_, left, buffer_.get());
    bufferPos_ = 0;
    bufferEnd_ = left;
    const std::int32_t read = in_->read(buffer_.get() + left, bufferSize_ - left);
    if (read == -1) {
        endOfInput_ = true;
        return false;
    }
    bufferEnd_ += read;
    return true;
}

/// The most units that bytes give. A decoder's own number leaves out the pair that it may write for
/// a bad byte.
std::int64_t InputStreamReader::unitsOf(std::int32_t bytes) {
    return std::int64_t{bytes} * std::max(converter_->getMaxCharsPerByte(), 2);
}

/// Takes room for all units of a read that the decoder fails behind the bytes at hand: holding them
/// then allocates nothing, and cannot fail.
void InputStreamReader::reserveHeldUnits(std::int32_t written, std::int32_t length) {
    const std::int64_t units = written + unitsOf(bufferEnd_ - bufferPos_);
    heldUnits_.reserve(static_cast<std::size_t>(std::min<std::int64_t>(units, length)));
}

/// Keeps the room that a read of one buffer needs, so that not every read takes it anew.
void InputStreamReader::releaseLongRoom() {
    if (heldUnits_.empty() && std::cmp_greater(heldUnits_.capacity(), unitsOf(bufferSize_))) {
        std::u16string().swap(heldUnits_);
    }
}

/// @return true if the decoder has left bytes behind.
bool InputStreamReader::convertBuffer(char16_t* destination, std::int32_t* written,
                                      std::int32_t length) {
    reserveHeldUnits(*written, length);
    converter_->convert(buffer_.get(), &bufferPos_, wordsEnd(), destination, written, length);
    if (length == 1 && *written == 0 && !isUsedUp() && convertIntoSingleUnit(destination)) {
        *written = 1;
    }
    return !isUsedUp();
}

/// Where the whole words in the buffer end.
std::int32_t InputStreamReader::wordsEnd() const noexcept {
    return bufferPos_ + (bufferEnd_ - bufferPos_) / wordSize_ * wordSize_;
}

/// Decodes a character of two units where there is room for one, and holds the second for the next
/// read.
/// @return false if the bytes are no character.
bool InputStreamReader::convertIntoSingleUnit(char16_t* destination) {
    char16_t units[2];
    std::int32_t count = 0;
    converter_->convert(buffer_.get(), &bufferPos_, wordsEnd(), units, &count, 2);
    if (count == 2) {
        heldUnits_.assign(1, units[1]);
    }
    if (count == 0) {
        return false;
    }
    *destination = units[0];
    return true;
}

std::int32_t InputStreamReader::takeHeldUnits(char16_t* destination, std::int32_t length) {
    const std::size_t count = heldUnits_.copy(destination, static_cast<std::size_t>(length));
    heldUnits_.erase(0, count);
    return static_cast<std::int32_t>(count);
}

std::int32_t InputStreamReader::available() {
    ensureOpen();
    auto bytes = static_cast<std::uint32_t>(in_->available());
    if (bufferEnd_ > 0) {
        bytes += static_cast<std::uint32_t>(bufferEnd_ - bufferPos_);
    }
    return static_cast<std::int32_t>(bytes) / std::max(converter_->getMaxBytesPerChar(), 1);
}

void InputStreamReader::close() {
    converter_ = nullptr;
    buffer_.reset();
    in_->close();
}

const char16_t* InputStreamReader::getEncodingName() {
    ensureOpen();
    return converter_->getEncodingName();
}

} // namespace qv::io
