#include "qv/Object.h"

#include "qv/Class.h"
#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qvcore/NumberText.h"

#include <functional>
#include <typeinfo>

namespace qv {

namespace {

// IQVComparable's table stands right behind the qv::ComObject part.
constexpr qvcom::InterfaceData objectMap[] = {
    qvcom::offsetRow(IID_IQVComparable, sizeof(ComObject)),
    qvcom::endRow(),
};

int compareAddresses(const void* left, const void* right) noexcept {
    const auto a = reinterpret_cast<std::uintptr_t>(left);
    const auto b = reinterpret_cast<std::uintptr_t>(right);
    return static_cast<int>(a > b) - static_cast<int>(a < b);
}

constexpr int hashDigits = 8;

} // namespace

std::int32_t Object::QueryInterface(const GUID& iid, void** out) noexcept {
    return qvcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

void Object::clone() const { throw Exception(); }

int Object::compareTo(const Object& other) const { return compareAddresses(this, &other); }

bool Object::equals(const Object& other) const { return this == &other; }

const Class* Object::getClass() const { return Class::forType(&typeid(*this)); }

std::uint32_t Object::hashCode() const {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(this));
}

String Object::toString() const {
    String text(u'@', 1, 1 + hashDigits);
    char16_t digits[34];
    text.append(QVLToStrW(static_cast<std::int32_t>(hashCode()), digits, 16));
    text.insert(0, getClass()->getName());
    return text;
}

const qvcom::InterfaceData* Object::GetComIntfMap() noexcept { return objectMap; }

namespace detail {

const Object& ComparableFace::whole() const noexcept { return static_cast<const Object&>(*this); }

std::int32_t ComparableFace::CompareTo(const IQVUnknown* other,
                                       std::int32_t* result) const noexcept {
    *result = 0;
    return toResult([&] {
        if (const auto* object = dynamic_cast<const Object*>(other)) {
            *result = whole().compareTo(*object);
        } else {
            // Kept: the sign is opposite to that of compareTo; callers sort by it.
            *result = compareAddresses(other, static_cast<const ComObject*>(&whole()));
        }
    });
}

std::int32_t ComparableFace::HashCode(std::uint32_t* result) const noexcept {
    *result = 0;
    return toResult([&] { *result = whole().hashCode(); });
}

} // namespace detail

} // namespace qv
