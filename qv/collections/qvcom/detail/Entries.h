#pragma once

#include "qv/collections/qvcom/MapEntry.h"

#include <utility>

namespace qv::collections::qvcom::detail {

/// An element of an entry set, as the entry that it is.
class HeldEntry {
public:
    /// @throws CastFailedException for an element that is no entry.
    explicit HeldEntry(Reference<IQVUnknown> element)
        : entry_(entryOf(element)), element_(std::move(element)) {}

    MapEntry& operator*() const noexcept { return *entry_; }
    MapEntry* operator->() const noexcept { return entry_; }

private:
    static MapEntry* entryOf(IQVUnknown* element);

    MapEntry* entry_;
    Reference<IQVUnknown> element_;
};

} // namespace qv::collections::qvcom::detail
