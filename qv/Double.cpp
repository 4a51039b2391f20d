#include "qv/Double.h"

#include "qv/detail/AsNumber.h"
#include "qv/detail/Truncated.h"

#include <type_traits>

namespace qv {

namespace {

template <class Value>
Value parsed(const String& text) {
    if constexpr (std::is_same_v<Value, float>) {
        return Number::parseFloat(text);
    } else {
        return Number::parseDouble(text);
    }
}

} // namespace

template <class Value>
RealOf<Value>::RealOf(const String& text) : value_(parsed<Value>(text)) {}

template <class Value>
RealOf<Value>::~RealOf() noexcept = default;

template <class Value>
int RealOf<Value>::compareTo(const Number& other) const {
    if (&other == this) {
        return 0;
    }
    const double mine = toDouble();
    const double theirs = other.toDouble();
    if (mine == theirs) {
        return 0;
    }
    return theirs > mine ? -1 : 1;
}

template <class Value>
int RealOf<Value>::compareTo(const Object& other) const {
    return &other == this ? 0 : compareTo(detail::asNumber(other));
}

template <class Value>
String RealOf<Value>::toString() const {
    return String::valueOf(value_);
}

template <class Value>
std::int64_t RealOf<Value>::toInt64() const {
    return detail::truncated(toDouble());
}

template class RealOf<double>;
template class RealOf<float>;

} // namespace qv
