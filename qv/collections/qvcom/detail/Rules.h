#pragma once

#include "qv/ErrorRule.h"
#include "qv/IQVComparator.h"

/// The rules that all collections follow: how elements are judged, and how a change is noticed.
namespace qv::collections::qvcom::detail {

/// What a walk throws behind a change by others, and at its end where the source does not.
[[noreturn]] void throwWalkFailed();
[[noreturn]] void throwRangeError();

/// The order of a stored element and a probe. @throws ResultException with the comparator's result.
inline int compareElements(IQVComparator* comparator, const IQVUnknown* stored,
                           const IQVUnknown* probe) {
    std::int32_t order = 0;
    throwIfFailed(comparator->Compare(stored, probe, &order));
    return order;
}

/// @throws ResultException with the comparator's result.
inline std::uint32_t hashElement(IQVComparator* comparator, const IQVUnknown* element) {
    std::uint32_t hash = 0;
    throwIfFailed(comparator->Hash(element, &hash));
    return hash;
}

/// One more change on a counter, which goes round at its end.
inline void countChange(std::int32_t& counter) noexcept {
    counter = static_cast<std::int32_t>(static_cast<std::uint32_t>(counter) + 1);
}

/// Takes one change back.
inline void uncountChange(std::int32_t& counter) noexcept {
    counter = static_cast<std::int32_t>(static_cast<std::uint32_t>(counter) - 1);
}

/// @throws Exception where the source of a walk or view was changed by others.
inline void checkUnmodified(std::int32_t expected, std::int32_t actual) {
    if (expected != actual) {
        throwWalkFailed();
    }
}

/// For an index of an element. @throws RangeErrorException.
inline void checkElementIndex(int index, int size) {
    if (index < 0 || index >= size) {
        throwRangeError();
    }
}

/// For an index between elements. @throws RangeErrorException.
inline void checkPlaceIndex(int index, int size) {
    if (index < 0 || index > size) {
        throwRangeError();
    }
}

} // namespace qv::collections::qvcom::detail
