#include "qv/text/charset/CTBSingleByte.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/detail/UnitRuns.h"

#include <algorithm>

namespace qv::text::charset {

std::int32_t CTBSingleByte::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                                    signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    bool goesOn = true;
    while (goesOn && encoding.available() > 0) {
        goesOn =
            pending_.isSet() ? endPair(encoding) : writeByte(encoding, convertChar(*encoding.in));
    }
    return encoding.commit();
}

std::int32_t CTBSingleByte::flush(signed char*, std::int32_t*, std::int32_t) {
    return pending_.flush();
}

void CTBSingleByte::reset() { pending_.clear(); }

int CTBSingleByte::getMaxBytesPerChar() { return 1; }

int CTBSingleByte::getMaxCharsPerByte() { return 1; }

void CTBSingleByte::convertByTable(detail::Encoding& encoding, const int* pages,
                                   const unsigned char* bytes,
                                   void (*takeRun)(detail::Encoding&) noexcept) {
    bool goesOn = true;
    while (goesOn && encoding.available() > 0) {
        if (!pending_.isSet()) {
            takeRun(encoding);
        }
        const char16_t* const next =
            encoding.in + std::min<std::ptrdiff_t>(encoding.available(), detail::unitsBetweenRuns);
        while (goesOn && encoding.in < next) {
            const char16_t unit = *encoding.in;
            goesOn =
                pending_.isSet()
                    ? endPair(encoding)
                    : writeByte(encoding,
                                static_cast<signed char>(bytes[pages[unit >> 8] + (unit & 0xFF)]));
        }
    }
}

/// Takes the unit behind a leading surrogate.
/// @return false where the call must stop in front of it.
bool CTBSingleByte::endPair(detail::Encoding& encoding) {
    static_cast<void>(pending_.combineWith(*encoding.in));
    pending_.clear(); // kept: also where the room below is lacking
    return replaceUnit(encoding);
}

/// Takes a unit whose byte is `byte`.
/// @return false where the call must stop in front of it.
inline bool CTBSingleByte::writeByte(detail::Encoding& encoding, signed char byte) {
    const char16_t unit = *encoding.in;
    if (byte == 0 && unit != 0) {
        if (detail::isLeading(unit)) {
            pending_.set(unit);
            ++encoding.in;
            return true;
        }
        if (detail::isTrailing(unit)) {
            detail::throwTrailWithoutLead();
        }
        return replaceUnit(encoding);
    }
    if (encoding.room() < 1) {
        return false;
    }
    *encoding.out++ = byte;
    ++encoding.in;
    return true;
}

/// Takes a unit without a byte.
/// @return false where the call must stop in front of it.
bool CTBSingleByte::replaceUnit(detail::Encoding& encoding) const {
    if (!substitutionMode_) {
        throw UnmappableCharacterException();
    }
    if (substitutionCount_ == 1) {
        if (encoding.room() < 1) {
            return false;
        }
        *encoding.out++ = substitutionBytes_[0];
    }
    ++encoding.in;
    return true;
}

} // namespace qv::text::charset
