#include "qv/text/charset/CTBMultiByte.h"

#include <algorithm>

namespace qv::text::charset {

namespace {

constexpr int longestForm = 6;

} // namespace

std::int32_t CTBMultiByte::convert(const char16_t* src, std::int32_t* srcPos, std::int32_t srcEnd,
                                   signed char* dst, std::int32_t* dstPos, std::int32_t dstEnd) {
    detail::Encoding encoding(src, srcPos, srcEnd, dst, dstPos, dstEnd);
    while (encoding.available() > 0 && convertUnit(encoding)) {
    }
    return encoding.commit();
}

/// @return false where the call must stop in front of the unit.
bool CTBMultiByte::convertUnit(detail::Encoding& encoding) {
    const char16_t unit = *encoding.in;
    std::uint32_t codePoint = unit;
    if (pending_.isSet()) {
        codePoint = pending_.combineWith(unit);
        pending_.clear(); // kept: also where the room below is lacking
    }
    signed char form[longestForm];
    const int length = convertChar(codePoint, form, longestForm);
    if (length < 1 || length > longestForm) {
        return replaceUnit(encoding);
    }
    if (encoding.room() < length) {
        return false;
    }
    encoding.out = std::copy_n(form, length, encoding.out);
    ++encoding.in;
    return true;
}

/// What becomes of a unit without a form.
/// @return false where the room is lacking.
bool CTBMultiByte::replaceUnit(detail::Encoding& encoding) {
    const char16_t unit = *encoding.in;
    if (detail::isLeading(unit)) {
        pending_.set(unit);
    } else if (detail::isTrailing(unit)) {
        detail::throwTrailWithoutLead();
    } else if (!substitute(encoding, 0)) {
        return false;
    }
    ++encoding.in;
    return true;
}

std::int32_t CTBMultiByte::flush(signed char*, std::int32_t*, std::int32_t) {
    return pending_.flush();
}

void CTBMultiByte::reset() { pending_.clear(); }

const char16_t* CTBMultiByte::getEncodingName() { return encodingName_.getData(); }

int CTBMultiByte::getMaxBytesPerChar() { return maxBytesPerChar_; }

int CTBMultiByte::getMaxCharsPerByte() { return maxCharsPerByte_; }

} // namespace qv::text::charset
