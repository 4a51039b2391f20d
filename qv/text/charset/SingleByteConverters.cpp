#include "qv/text/charset/SingleByteConverters.h"

#include "qv/text/charset/detail/CodePages.h"
#include "qv/text/charset/detail/UnitRuns.h"
#include "qv/text/charset/detail/WordOrder.h"

#include <cstdint>
#include <typeinfo>

namespace qv::text::charset {

namespace {

/// True where the dynamic type is exactly one of `Leaves`: then no derived class can have
/// overridden the step, and a table may stand for it.
template <class... Leaves, class Base>
bool isExactly(const Base& converter) noexcept {
    const std::type_info& type = typeid(converter);
    return ((&type == &typeid(Leaves)) || ...);
}

template <class Conversion>
void takeNoRun(Conversion&) noexcept {}

constexpr int bytesPerVector = 16;

bool overlap(const signed char* in, const char16_t* out, std::int32_t count) noexcept {
    const auto inStart = reinterpret_cast<std::uintptr_t>(in);
    const auto outStart = reinterpret_cast<std::uintptr_t>(out);
    const auto bytes = static_cast<std::uintptr_t>(count);
    return inStart < outStart + bytes * sizeof *out && outStart < inStart + bytes;
}

/// Widens bytes as signed values, one by one where the ranges overlap.
void widenSigned(const signed char* in, char16_t* out, std::int32_t count) noexcept {
    if (!overlap(in, out, count)) {
        for (; count >= bytesPerVector; count -= bytesPerVector, in += 16, out += 16) {
            const __m128i bytes = detail::loadVector(in);
            detail::storeVector(out, _mm_srai_epi16(_mm_unpacklo_epi8(bytes, bytes), 8));
            detail::storeVector(out + 8, _mm_srai_epi16(_mm_unpackhi_epi8(bytes, bytes), 8));
        }
    }
    for (; count > 0; --count) {
        *out++ = static_cast<char16_t>(*in++);
    }
}

} // namespace

std::int32_t BTCASCII::convert(const signed char* src, std::int32_t* srcPos, std::int32_t srcEnd,
                               char16_t* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    if (!isExactly<BTCASCII>(*this)) {
        return BTCSingleByte::convert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    }
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    convertByTable(decoding, detail::asciiPage.data(), &detail::widenRun<detail::AsciiRun>);
    return decoding.commit();
}

const char16_t* BTCASCII::getEncodingName() { return u"ASCII"; }

char16_t BTCASCII::convertByte(signed char byte) {
    return detail::asciiPage[static_cast<unsigned char>(byte)];
}

std::int32_t CTBASCII::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                               signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    if (!isExactly<CTBASCII>(*this)) {
        return CTBSingleByte::convert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    }
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    convertByTable(encoding, detail::asciiInverse.pages.data(), detail::asciiInverse.bytes.data(),
                   &detail::narrowRun<detail::AsciiRun>);
    return encoding.commit();
}

const char16_t* CTBASCII::getEncodingName() { return u"ASCII"; }

signed char CTBASCII::convertChar(char16_t unit) {
    return static_cast<signed char>(unit < 0x80 ? unit : 0);
}

std::int32_t BTCISO8859_1::convert(const signed char* src, std::int32_t* srcPos,
                                   std::int32_t srcEnd, char16_t* dst, std::int32_t* dstPos,
                                   std::int32_t dstEnd) {
    const std::int32_t count = detail::wordCount(srcEnd - *srcPos, dstEnd - *dstPos);
    widenSigned(src + *srcPos, dst + *dstPos, count);
    *srcPos += count;
    *dstPos += count;
    return count;
}

const char16_t* BTCISO8859_1::getEncodingName() { return u"ISO8859_1"; }

char16_t BTCISO8859_1::convertByte(signed char byte) { return static_cast<unsigned char>(byte); }

std::int32_t CTBISO8859_1::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                                   signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    if (!isExactly<CTBISO8859_1>(*this)) {
        return CTBSingleByte::convert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    }
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    convertByTable(encoding, detail::latin1Inverse.pages.data(), detail::latin1Inverse.bytes.data(),
                   &detail::narrowRun<detail::Latin1Run>);
    return encoding.commit();
}

const char16_t* CTBISO8859_1::getEncodingName() { return u"ISO8859_1"; }

signed char CTBISO8859_1::convertChar(char16_t unit) {
    return static_cast<signed char>(unit < 0x100 ? unit : 0);
}

BTCSingleByteTable::BTCSingleByteTable(const char16_t* name, const char16_t* table) noexcept
    : name_(name), table_(table) {}

std::int32_t BTCSingleByteTable::convert(const signed char* src, std::int32_t* srcPos,
                                         std::int32_t srcEnd, char16_t* dst, std::int32_t* dstPos,
                                         std::int32_t dstEnd) {
    detail::Decoding decoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    if (isExactly<BTCCP437>(*this)) {
        convertByTable(decoding, table_, &detail::widenRun<detail::AsciiRun>);
    } else if (isExactly<BTCCP1252>(*this)) {
        convertByTable(decoding, table_, &detail::widenRun<detail::Cp1252Run>);
    } else if (isExactly<BTCSingleByteTable>(*this)) {
        convertByTable(decoding, table_, &takeNoRun<detail::Decoding>);
    } else {
        return BTCSingleByte::convert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    }
    return decoding.commit();
}

const char16_t* BTCSingleByteTable::getEncodingName() { return name_; }

char16_t BTCSingleByteTable::convertByte(signed char byte) {
    return table_[static_cast<unsigned char>(byte)];
}

CTBSingleByteTable::CTBSingleByteTable(const char16_t* name, const int* pages,
                                       const unsigned char* bytes) noexcept
    : name_(name), pages_(pages), bytes_(bytes) {}

std::int32_t CTBSingleByteTable::convert(const char16_t* src, std::int32_t* srcPos,
                                         std::int32_t srcEnd, signed char* dst,
                                         std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    if (isExactly<CTBCP437>(*this)) {
        convertByTable(encoding, pages_, bytes_, &detail::narrowRun<detail::AsciiRun>);
    } else if (isExactly<CTBCP1252>(*this)) {
        convertByTable(encoding, pages_, bytes_, &detail::narrowRun<detail::Cp1252Run>);
    } else if (isExactly<CTBSingleByteTable>(*this)) {
        convertByTable(encoding, pages_, bytes_, &takeNoRun<detail::Encoding>);
    } else {
        return CTBSingleByte::convert(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    }
    return encoding.commit();
}

const char16_t* CTBSingleByteTable::getEncodingName() { return name_; }

signed char CTBSingleByteTable::convertChar(char16_t unit) {
    return static_cast<signed char>(bytes_[pages_[unit >> 8] + (unit & 0xFF)]);
}

BTCCP437::BTCCP437() noexcept : BTCSingleByteTable(u"CP437", detail::cp437Page.data()) {}

CTBCP437::CTBCP437() noexcept
    : CTBSingleByteTable(u"CP437", detail::cp437Inverse.pages.data(),
                         detail::cp437Inverse.bytes.data()) {}

BTCCP1252::BTCCP1252() noexcept : BTCSingleByteTable(u"CP1252", detail::cp1252Page.data()) {}

CTBCP1252::CTBCP1252() noexcept
    : CTBSingleByteTable(u"CP1252", detail::cp1252Inverse.pages.data(),
                         detail::cp1252Inverse.bytes.data()) {}

} // namespace qv::text::charset
