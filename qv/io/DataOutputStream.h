#pragma once

#include "qv/io/FilterOutputStream.h"
#include "qv/util/AbstractBuffer.h"

namespace qv::io {

/// Writes numbers of fixed width in network byte order: most significant byte first, negative ones
/// as their two's complement, floating-point ones as their IEEE 754 bit patterns.
///
/// The bytes go out one by one, by the wrapped stream's `write` of a single byte. What it throws
/// passes through.
class QV_API DataOutputStream : public FilterOutputStream {
public:
    /// Owns: one reference to `out`, as FilterOutputStream does.
    using FilterOutputStream::FilterOutputStream;
    ~DataOutputStream() override;

    // Slot order is contract from here on.

    /// 1 byte: 0 or 1.
    virtual void writeBool(bool value);
    /// 1 byte.
    virtual void writeByte(signed char value);
    /// 2 bytes, by `writeInt16`.
    virtual void writeChar16(char16_t value);
    /// 4 bytes, by `writeInt32`.
    virtual void writeChar32(unsigned int value);
    /// 2 bytes.
    virtual void writeInt16(short value);
    /// 4 bytes.
    virtual void writeInt32(int value);
    /// 8 bytes, by two `writeInt32`, the high half first.
    virtual void writeInt64(std::int64_t value);
    /// 4 bytes, by `writeInt32`.
    virtual void writeFloat(float value);
    /// 8 bytes, by `writeInt64`.
    virtual void writeDouble(double value);
    /// Kept: writes nothing; the format has no texts.
    virtual void writeString(const util::AbstractCharBuffer& text);

    // Slot order ends here. Other names for the same forms:

    void writeChar(char16_t value) { writeInt16(static_cast<short>(value)); }
    void writeShort(short value) { writeInt16(value); }
    void writeUnsignedShort(unsigned short value) { writeInt16(static_cast<short>(value)); }
    void writeUnsignedInt16(std::uint16_t value) { writeInt16(static_cast<short>(value)); }
    void writeInt(int value) { writeInt32(value); }
    void writeUnsignedInt(unsigned int value) { writeInt32(static_cast<int>(value)); }
    void writeUnsignedInt32(std::uint32_t value) { writeInt32(static_cast<int>(value)); }
    void writeLong(std::int32_t value) { writeInt32(value); }
    void writeUnsignedLong(std::uint32_t value) { writeInt32(static_cast<int>(value)); }
    void writeUnsignedByte(unsigned char value) { writeByte(static_cast<signed char>(value)); }
    void writeUnsignedInt64(std::uint64_t value) { writeInt64(static_cast<std::int64_t>(value)); }
};

} // namespace qv::io
