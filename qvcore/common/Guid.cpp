#include "qvcore/Guid.h"

#include "qv/Results.h"
#include "qvcore/common/RandomBytes.h"

#include <array>
#include <compare>
#include <cstdint>
#include <cstring>

namespace {

/// The order of the fields from the first to the last, which is the order of the text forms.
std::strong_ordering order(const GUID& left, const GUID& right) noexcept {
    if (const auto result = left.Data1 <=> right.Data1; result != 0) {
        return result;
    }
    if (const auto result = left.Data2 <=> right.Data2; result != 0) {
        return result;
    }
    if (const auto result = left.Data3 <=> right.Data3; result != 0) {
        return result;
    }
    return std::memcmp(left.Data4, right.Data4, sizeof left.Data4) <=> 0;
}

/// The text form; an `x` stands for a digit.
constexpr char16_t form[] = u"{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
constexpr int formSize = 39; // units, terminator included
static_assert(sizeof form == formSize * sizeof(char16_t));

constexpr int guidBytes = 16;
/// The bytes of an identifier as its text form shows them.
using ShownBytes = std::array<std::uint8_t, guidBytes>;

ShownBytes shown(const GUID& guid) noexcept {
    ShownBytes bytes;
    for (unsigned i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(guid.Data1 >> (24 - 8 * i));
    }
    for (unsigned i = 0; i < 2; ++i) {
        bytes[4 + i] = static_cast<std::uint8_t>(guid.Data2 >> (8 - 8 * i));
        bytes[6 + i] = static_cast<std::uint8_t>(guid.Data3 >> (8 - 8 * i));
    }
    std::memcpy(&bytes[8], guid.Data4, sizeof guid.Data4);
    return bytes;
}

GUID made(const ShownBytes& bytes) noexcept {
    GUID guid = {};
    for (unsigned i = 0; i < 4; ++i) {
        guid.Data1 = guid.Data1 << 8 | bytes[i];
    }
    guid.Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    std::memcpy(guid.Data4, &bytes[8], sizeof guid.Data4);
    return guid;
}

/// The value of a hexadecimal digit, or -1.
constexpr int digitValue(char16_t unit) noexcept {
    if (unit >= u'0' && unit <= u'9') {
        return unit - u'0';
    }
    if (unit >= u'A' && unit <= u'F') {
        return unit - u'A' + 10;
    }
    return unit >= u'a' && unit <= u'f' ? unit - u'a' + 10 : -1;
}

} // namespace

std::int32_t QVComCompareGUID(const GUID* left, const GUID* right) noexcept {
    const std::strong_ordering result = order(*left, *right);
    return result < 0 ? -1 : result > 0 ? 1 : 0;
}

std::int32_t QVComGUIDFromString(const char16_t* text, GUID* guid) noexcept {
    if (text == nullptr) {
        return qv::QV_E_INVALIDARG;
    }
    ShownBytes bytes = {};
    unsigned digits = 0;
    for (int i = 0; i < formSize; ++i) { // the terminator is part of the form
        if (form[i] != u'x' && text[i] != form[i]) {
            return qv::QV_E_INVALIDARG;
        }
        if (form[i] == u'x') {
            const int value = digitValue(text[i]);
            if (value < 0) {
                return qv::QV_E_INVALIDARG;
            }
            bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] << 4 | value);
            ++digits;
        }
    }
    *guid = made(bytes);
    return qv::QV_S_OK;
}

std::int32_t QVComStringFromGUID(const GUID* guid, char16_t* text, std::int32_t size) noexcept {
    if (size < formSize) {
        return qv::QV_E_BUFFERTOOSMALL;
    }
    const ShownBytes bytes = shown(*guid);
    unsigned digits = 0;
    for (int i = 0; i < formSize; ++i) {
        text[i] = form[i];
        if (form[i] == u'x') {
            const unsigned byte = bytes[digits / 2];
            text[i] = u"0123456789ABCDEF"[digits % 2 == 0 ? byte >> 4 : byte & 15];
            ++digits;
        }
    }
    return qv::QV_S_OK;
}

std::int32_t QVComGenerateGUID(GUID* guid) noexcept {
    ShownBytes bytes;
    const std::int32_t result = qv::core::fillWithRandomBytes(bytes.data(), bytes.size());
    if (result < 0) {
        return result;
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80); // the variant of the RFC
    *guid = made(bytes);
    return qv::QV_S_OK;
}
