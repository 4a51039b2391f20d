#pragma once

#include "qv/io/OutputStream.h"
#include "qv/io/Writer.h"
#include "qv/io/detail/Wrapped.h"

#include <memory>
#include <optional>

namespace qv::text::charset {
class CharToByteConverter;
}

namespace qv::io {

/// Encodes into a byte stream, through a buffer of bytes.
///
/// A pair of surrogates may be split over two writes. What the encoder throws on bad input comes
/// through `write` and `flush`.
///
/// Kept: neither `close` nor the destructor hands on what is buffered; callers `flush` first.
class QV_API OutputStreamWriter : public Writer {
public:
    /// Owns: one reference to `out`; a null one is accepted, and what needs it then throws
    /// IllegalStateException. A null `encoding` is the default encoding. The buffer has `size`
    /// bytes, but never less than 6 nor less than the longest form of a character.
    /// @throws text::charset::UnknownEncodingException.
    explicit OutputStreamWriter(OutputStream* out, const char16_t* encoding = nullptr,
                                std::int32_t size = 16384);
    ~OutputStreamWriter() override;

    // All but `close` throw IoException "stream closed" behind a `close`.

    using Writer::write;
    /// @throws IoException "stream write error", where the encoder does not move on with room
    /// enough.
    void write(const char16_t* text, std::int32_t length) override;
    /// @throws text::charset::InvalidCharacterException, where a leading surrogate still waits for
    /// its other half.
    void flush() override;
    /// Lets encoder and buffer go, with what they hold, and closes the stream, each time it is
    /// called.
    void close() override;

    // Slot order is contract from here on.

    /// Borrows: the name, until `close`.
    virtual const char16_t* getEncodingName();

private:
    void ensureOpen() const;
    std::int32_t completeHeldPair(char16_t next);
    void encode(const char16_t* text, std::int32_t* consumed, std::int32_t length);
    std::int32_t encodeRun(const char16_t* text, std::int32_t* consumed, std::int32_t length);
    std::int32_t convert(const char16_t* text, std::int32_t* consumed, std::int32_t end,
                         std::int32_t bufferEnd);
    std::int32_t encodeBehindTheEnd(const char16_t* text, std::int32_t* consumed, std::int32_t end);
    static std::int32_t surrogatesEnd(const char16_t* text, std::int32_t start, std::int32_t length,
                                      std::int32_t pairs);
    /// Of a pair behind the buffer's end, where the sink has refused the block in front of it.
    bool isOverfull() const noexcept { return count_ > bufferSize_; }
    void drain();

    detail::Wrapped<OutputStream> out_;
    Reference<text::charset::CharToByteConverter> converter_; ///< null behind a close
    std::int32_t bufferSize_;
    std::int32_t roomForPair_;              ///< in bytes; 0 for an encoder that needs no care
    std::unique_ptr<signed char[]> buffer_; ///< null behind a close; room for a pair behind its end
    std::int32_t count_ = 0;
    std::optional<char16_t> heldSurrogate_; ///< a leading one that the encoder does not take alone
};

} // namespace qv::io
