#pragma once

#include "qv/Exceptions.h"
#include "qv/Number.h"

namespace qv::detail {

/// The number that an object is. @throws CastFailedException for any other object.
inline const Number& asNumber(const Object& object) {
    const auto* const number = dynamic_cast<const Number*>(&object);
    if (number == nullptr) {
        throw CastFailedException();
    }
    return *number;
}

} // namespace qv::detail
