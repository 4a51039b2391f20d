#include "qv/util/Comparator.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qv/Reference.h"

#include <typeinfo>

namespace qv::util {

namespace {

// The comparator interface's table stands right behind the qv::Object part.
constexpr qvcom::InterfaceData comparatorMap[] = {
    qvcom::offsetRow(IID_IQVComparator, sizeof(Object)),
    qvcom::chainRow(&qvcom::chainToObject),
    qvcom::endRow(),
};

/// An object that is exactly a string, as most keys are: its order and hash are known without the
/// way through its interfaces, which costs far more than the comparison itself. Null otherwise.
const String* asString(const IQVUnknown* object) noexcept {
    if (object == nullptr || &typeid(*object) != &typeid(String)) {
        return nullptr;
    }
    return static_cast<const String*>(dynamic_cast<const void*>(object));
}

/// The object's order of its own, or null.
Reference<IQVComparable> comparableOf(const IQVUnknown* object) {
    void* face = nullptr;
    if (object == nullptr ||
        const_cast<IQVUnknown*>(object)->QueryInterface(IID_IQVComparable, &face) < 0) {
        return nullptr;
    }
    return Reference<IQVComparable>::adopt(static_cast<IQVComparable*>(face));
}

std::uintptr_t addressOf(const IQVUnknown* object) noexcept {
    return reinterpret_cast<std::uintptr_t>(object);
}

} // namespace

std::int32_t Comparator::QueryInterface(const GUID& iid, void** out) noexcept {
    return qvcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

int Comparator::compareTo(const Object& other) const {
    if (!equals(other)) {
        throw CastFailedException();
    }
    return 0;
}

bool Comparator::equals(const Object& other) const { return typeid(*this) == typeid(other); }

int Comparator::compare(const Object& left, const Object& right) { return left.compareTo(right); }

std::uint32_t Comparator::hash(const Object& object) { return object.hashCode(); }

std::int32_t Comparator::Compare(const IQVUnknown* left, const IQVUnknown* right,
                                 std::int32_t* result) noexcept {
    *result = 0;
    if (const String* const text = asString(left)) {
        if (const String* const other = asString(right)) {
            return toResult([&] { *result = text == other ? 0 : text->compare(*other); });
        }
    }
    if (const auto comparable = comparableOf(left)) {
        return comparable->CompareTo(right, result);
    }
    const std::uintptr_t a = addressOf(left);
    const std::uintptr_t b = addressOf(right);
    *result = static_cast<int>(a > b) - static_cast<int>(a < b);
    return QV_S_OK;
}

std::int32_t Comparator::Hash(const IQVUnknown* object, std::uint32_t* result) noexcept {
    *result = 0;
    if (const String* const text = asString(object)) {
        return toResult([&] { *result = text->hashCode(false); });
    }
    if (const auto comparable = comparableOf(object)) {
        return comparable->HashCode(result);
    }
    *result = static_cast<std::uint32_t>(addressOf(object));
    return QV_S_OK;
}

const qvcom::InterfaceData* Comparator::GetComIntfMap() noexcept { return comparatorMap; }

} // namespace qv::util
