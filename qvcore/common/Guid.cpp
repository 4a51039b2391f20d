#include "qvcore/Guid.h"

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

} // namespace

std::int32_t QVComCompareGUID(const GUID* left, const GUID* right) noexcept {
    const std::strong_ordering result = order(*left, *right);
    return result < 0 ? -1 : result > 0 ? 1 : 0;
}
