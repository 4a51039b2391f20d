#pragma once

#include "qv/util/IBuffer.h"

inline constexpr GUID IID_IQVCharCodec{
    0xE9DE4D9A, 0xBF89, 0x4A97, {0xB9, 0x74, 0x1F, 0x50, 0xBC, 0x5A, 0x8C, 0x61}};

/// An encoding that a module outside the library serves, one code point at a time. The library
/// finds it under the ProgID "Velquor.CharCodec." and the encoding's name.
///
/// Every operation returns 0, or a negative result on failure.
class IQVCharCodec : public IQVUnknown {
public:
    /// Writes the encoding's name. Borrows: the buffer, during the call.
    virtual std::int32_t GetEncodingName(IQVCharBuffer* name) = 0;
    /// The longest byte form of one character, in bytes.
    virtual std::int32_t GetMaxBytesPerChar(int* count) = 0;
    /// The second bound, which converters report as it is.
    virtual std::int32_t GetMaxCharsPerByte(int* count) = 0;
    /// Decodes one code point. `length` is the number of bytes at `bytes`, and on return the number
    /// consumed; 0 means that more bytes are needed. The result is not looked at: a codec that
    /// fails leaves the code point, which is then U+FFFD, and says by the length what to skip.
    virtual std::int32_t DecodeChar(const signed char* bytes, int& length,
                                    unsigned int* codePoint) = 0;
    /// Appends the byte form of one code point to `bytes`: up to six bytes. A failure, and any
    /// other number of bytes, means that it has none. Borrows: the buffer, during the call.
    virtual std::int32_t EncodeChar(unsigned int codePoint, IQVByteBuffer* bytes) = 0;

protected:
    ~IQVCharCodec() = default;
};
