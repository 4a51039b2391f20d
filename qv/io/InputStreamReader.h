#pragma once

#include "qv/io/InputStream.h"
#include "qv/io/Reader.h"
#include "qv/io/detail/Wrapped.h"

#include <memory>
#include <string>

namespace qv::text::charset {
class ByteToCharConverter;
}

namespace qv::io {

/// Decodes a byte stream.
///
/// Bytes that the decoder leaves behind stay at the head of the buffer, where the next ones
/// complete them. When the stream has ended and they cannot become a character any more, each of
/// them gives one U+FFFD. What the stream throws, and a decoder on bad input, comes through `read`;
/// the units that the failed read had decoded by then are given by the next one.
class QV_API InputStreamReader : public Reader {
public:
    /// Owns: one reference to `in`; a null one is accepted, and what needs it then throws
    /// IllegalStateException. A null `encoding` is the default encoding. The buffer has `size`
    /// bytes, but never less than 6 nor less than the longest form of a character.
    /// @throws text::charset::UnknownEncodingException.
    explicit InputStreamReader(InputStream* in, const char16_t* encoding = nullptr,
                               std::int32_t size = 16384);
    ~InputStreamReader() override;

    // All but `close` throw IoException "stream closed" behind a `close`.

    using Reader::read;
    /// A character of two units that meets room for one is given in two reads.
    std::int32_t read(char16_t* destination, std::int32_t length) override;
    /// A lower bound: the bytes at hand, over the longest form of a character.
    std::int32_t available() override;
    /// Lets decoder and buffer go and closes the stream, each time it is called.
    void close() override;

    // Slot order is contract from here on.

    /// Borrows: the name, until `close`.
    virtual const char16_t* getEncodingName();

private:
    void ensureOpen() const;
    bool isUsedUp() const noexcept { return bufferPos_ >= bufferEnd_; }
    bool isFull() const noexcept { return bufferEnd_ - bufferPos_ >= bufferSize_; }
    void decode(char16_t* destination, std::int32_t* written, std::int32_t length);
    bool fillBuffer();
    std::int64_t unitsOf(std::int32_t bytes);
    void reserveHeldUnits(std::int32_t written, std::int32_t length);
    void releaseLongRoom();
    bool convertBuffer(char16_t* destination, std::int32_t* written, std::int32_t length);
    std::int32_t wordsEnd() const noexcept;
    bool convertIntoSingleUnit(char16_t* destination);
    std::int32_t takeHeldUnits(char16_t* destination, std::int32_t length);

    detail::Wrapped<InputStream> in_;
    Reference<text::charset::ByteToCharConverter> converter_; ///< null behind a close
    std::int32_t bufferSize_;
    std::unique_ptr<signed char[]> buffer_; ///< null behind a close
    std::int32_t bufferPos_ = 0;
    std::int32_t bufferEnd_ = 0;
    bool endOfInput_ = false;
    std::int32_t wordSize_;    ///< bytes that the decoder is given together
    std::u16string heldUnits_; ///< decoded; the last read had no room for them, or failed
};

} // namespace qv::io
