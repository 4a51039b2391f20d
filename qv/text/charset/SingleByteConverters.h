#pragma once

#include "qv/text/charset/BTCSingleByte.h"
#include "qv/text/charset/CTBSingleByte.h"

/// The single-byte encodings of the library, and those that a caller makes from tables.
///
/// Thread safety: one thread at a time, all of them.
namespace qv::text::charset {

/// Decodes ASCII; bytes above 0x7F have no character.
class QV_API BTCASCII : public BTCSingleByte {
public:
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    const char16_t* getEncodingName() override;

protected:
    char16_t convertByte(signed char byte) override;
};

/// Encodes ASCII.
class QV_API CTBASCII : public CTBSingleByte {
public:
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    const char16_t* getEncodingName() override;

protected:
    signed char convertChar(char16_t unit) override;
};

/// Decodes ISO 8859-1.
class QV_API BTCISO8859_1 : public BTCSingleByte {
public:
    /// Moves as many bytes as there are and fit; nothing is substituted.
    /// Kept: a byte is widened as a signed value, so that 0xE9 becomes U+FFE9, other than in
    /// `convertByte`; callers have data that was read that way.
    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    const char16_t* getEncodingName() override;

protected:
    char16_t convertByte(signed char byte) override;
};

/// Encodes ISO 8859-1.
class QV_API CTBISO8859_1 : public CTBSingleByte {
public:
    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    const char16_t* getEncodingName() override;

protected:
    signed char convertChar(char16_t unit) override;
};

/// Decodes by a table of 256 characters, U+FFFD for the bytes that have none.
class QV_API BTCSingleByteTable : public BTCSingleByte {
public:
    /// Borrows: both, as long as the converter lives.
    BTCSingleByteTable(const char16_t* name, const char16_t* table) noexcept;

    std::int32_t convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    const char16_t* getEncodingName() override;

protected:
    char16_t convertByte(signed char byte) override;

private:
    const char16_t* name_;
    const char16_t* table_;
};

/// Encodes by a table of two levels: the byte of a character c stands at bytes[pages[c >> 8] + (c &
/// 255)], 0 for none.
class QV_API CTBSingleByteTable : public CTBSingleByte {
public:
    /// Borrows: all three, as long as the converter lives. `pages` has 256 entries.
    CTBSingleByteTable(const char16_t* name, const int* pages, const unsigned char* bytes) noexcept;

    std::int32_t convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                         signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) override;
    const char16_t* getEncodingName() override;

protected:
    signed char convertChar(char16_t unit) override;

private:
    const char16_t* name_;
    const int* pages_;
    const unsigned char* bytes_;
};

/// Decodes IBM code page 437; the control codes have no graphic forms.
class QV_API BTCCP437 : public BTCSingleByteTable {
public:
    BTCCP437() noexcept;
};

/// Encodes IBM code page 437.
class QV_API CTBCP437 : public CTBSingleByteTable {
public:
    CTBCP437() noexcept;
};

/// Decodes Windows code page 1252; the bytes 0x81, 0x8D, 0x8F, 0x90 and 0x9D have no character.
class QV_API BTCCP1252 : public BTCSingleByteTable {
public:
    BTCCP1252() noexcept;
};

/// Encodes Windows code page 1252.
class QV_API CTBCP1252 : public CTBSingleByteTable {
public:
    CTBCP1252() noexcept;
};

} // namespace qv::text::charset
