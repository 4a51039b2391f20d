#pragma once

#include "qv/String.h"
#include "qv/io/FilterInputStream.h"

namespace qv::io {

/// Reads what DataOutputStream writes: numbers of fixed width in network byte order.
///
/// The bytes are taken one by one, by the wrapped stream's `read` of a single byte; it is to give
/// 0 to 255. All bytes of a number are asked for before any is looked at. Where one is missing,
/// every read but `readString` throws UnexpectedEOFException; what there was is passed then.
class QV_API DataInputStream : public FilterInputStream {
public:
    /// Owns: one reference to `in`, as FilterInputStream does.
    using FilterInputStream::FilterInputStream;
    ~DataInputStream() override;

    // Slot order is contract from here on.

    /// Fills the whole area by as many block reads as it takes; none for a `length` below 1.
    virtual void readFully(signed char* area, std::int32_t length);
    /// 1 byte, which is true unless it is 0.
    virtual bool readBool();
    /// 1 byte.
    virtual signed char readByte();
    /// 2 bytes, by `readInt16`.
    virtual char16_t readChar16();
    /// 4 bytes, by `readInt32`.
    virtual unsigned int readChar32();
    /// 2 bytes.
    virtual short readInt16();
    /// 4 bytes.
    virtual int readInt32();
    /// 8 bytes, by two `readInt32`, the high half first.
    /// Kept: a low half with its highest bit set makes the high half all ones; readers of the
    /// format have always seen such values so.
    virtual std::int64_t readInt64();
    /// 4 bytes, by `readInt32`.
    virtual float readFloat();
    /// 8 bytes, by `readInt64`. Kept: with what that does to half of all values.
    virtual double readDouble();
    /// Kept: takes nothing and gives an empty text; the format has no texts.
    virtual String readString();

    // Slot order ends here. Other names for the same forms:

    char16_t readChar() { return static_cast<char16_t>(readInt16()); }
    short readShort() { return readInt16(); }
    unsigned short readUnsignedShort() { return static_cast<unsigned short>(readInt16()); }
    std::uint16_t readUnsignedInt16() { return static_cast<std::uint16_t>(readInt16()); }
    int readInt() { return readInt32(); }
    unsigned int readUnsignedInt() { return static_cast<unsigned int>(readInt32()); }
    std::uint32_t readUnsignedInt32() { return static_cast<std::uint32_t>(readInt32()); }
    std::int32_t readLong() { return readInt32(); }
    std::uint32_t readUnsignedLong() { return static_cast<std::uint32_t>(readInt32()); }
    unsigned char readUnsignedByte() { return static_cast<unsigned char>(readByte()); }
    std::uint64_t readUnsignedInt64() { return static_cast<std::uint64_t>(readInt64()); }
};

} // namespace qv::io
