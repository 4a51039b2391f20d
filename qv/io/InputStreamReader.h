#pragma once

#include "qv/io/InputStream.h"
#include "qv/io/Reader.h"
#include "qv/io/detail/Wrapped.h"

#include <memory>
#include <optional>

namespace qv::text::charset {
class ByteToCharConverter;
}

namespace qv::io {

/// Decodes a byte stream.
///
/// Bytes that the decoder leaves behind stay at the head of the buffer, where the next ones
/// complete them. When the stream has ended and they cannot become a character any more, each of
/// them gives one U+FFFD. A decoder that throws on bad input does so through `read`.
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
    bool fillBuffer();
    bool convertBuffer(char16_t* destination, std::int32_t* written, std::int32_t length);
    std::int32_t convertIntoSingleUnit(char16_t* destination, std::int32_t end);
    std::int32_t takeHeldUnit(char16_t* destination) noexcept;

    detail::Wrapped<InputStream> in_;
    Reference<text::charset::ByteToCharConverter> converter_; ///< null behind a close
    std::int32_t bufferSize_;
    std::unique_ptr<signed char[]> buffer_; ///< null behind a close
    std::int32_t bufferPos_ = 0;
    std::int32_t bufferEnd_ = 0;
    bool endOfInput_ = false;
    std::int32_t wordSize_;            ///< bytes that the decoder is given together
    std::optional<char16_t> heldUnit_; ///< decoded, and the last read had no room for it
};

} // namespace qv::io
