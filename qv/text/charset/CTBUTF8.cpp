#include "qv/text/charset/CTBUTF8.h"

#include "qv/text/charset/detail/UnitRuns.h"
#include "qv/text/charset/detail/Utf8Blocks.h"

#include <algorithm>

namespace qv::text::charset {

namespace {

/// Bytes of the form of a code point.
constexpr int formLength(std::uint32_t codePoint) noexcept {
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}

/// What the first byte of a form is marked with, by the form's length.
constexpr unsigned char firstByteMarks[] = {0x00, 0x00, 0xC0, 0xE0, 0xF0};

/// Writes a form, last byte first.
void writeForm(signed char* out, std::uint32_t codePoint, int length) noexcept {
    for (int i = length - 1; i > 0; --i) {
        out[i] = static_cast<signed char>(0x80 | (codePoint & 0x3F));
        codePoint >>= 6;
    }
    out[0] = static_cast<signed char>(firstByteMarks[length] | codePoint);
}

} // namespace

std::int32_t CTBUTF8::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                              signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    const detail::Utf8Blocks& blocks = detail::utf8Blocks();
    bool goesOn = true;
    while (goesOn && encoding.available() > 0) {
        if (!pending_.isSet()) {
            blocks.encode(encoding);
            detail::narrowRun<detail::AsciiRun>(encoding);
        }
        const char16_t* const next =
            encoding.in + std::min<std::ptrdiff_t>(encoding.available(), detail::utf8BlockUnits);
        while (goesOn && encoding.in < next) {
            goesOn = convertUnit(encoding);
        }
    }
    return encoding.commit();
}

/// @return false where the call must stop in front of the unit.
inline bool CTBUTF8::convertUnit(detail::Encoding& encoding) {
    const char16_t unit = *encoding.in;
    std::uint32_t codePoint = unit;
    if (pending_.isSet()) {
        codePoint = pending_.combineWith(unit);
        pending_.clear(); // kept: also where the room below is lacking
    } else if (detail::isLeading(unit)) {
        pending_.set(unit);
        ++encoding.in;
        return true;
    }
    const int length = formLength(codePoint);
    if (encoding.room() < length) {
        return false;
    }
    writeForm(encoding.out, codePoint, length);
    ++encoding.in;
    encoding.out += length;
    return true;
}

std::int32_t CTBUTF8::flush(signed char*, std::int32_t*, std::int32_t) { return pending_.flush(); }

void CTBUTF8::reset() { pending_.clear(); }

const char16_t* CTBUTF8::getEncodingName() { return u"UTF-8"; }

int CTBUTF8::getMaxBytesPerChar() { return 6; }

int CTBUTF8::getMaxCharsPerByte() { return 1; }

} // namespace qv::text::charset
