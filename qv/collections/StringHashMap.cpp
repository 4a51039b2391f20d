#include "qv/collections/StringHashMap.h"

#include "qv/collections/qvcom/HashSet.h"
#include "qv/detail/Lengths.h"
#include "qv/detail/SampledHash.h"

namespace qv::collections {

namespace {

/// A key as a counted run of units.
struct Units {
    const char16_t* units;
    int length;

    friend bool operator==(const String& key, const Units& probe) {
        return key.equals(probe.units, probe.length);
    }
};

} // namespace

StringHashMap::StringHashMap(int capacity, float load) : table_(capacity, load) {}

StringHashMap::~StringHashMap() = default;

void StringHashMap::clear() { table_.clear(); }

Reference<Object> StringHashMap::get(const char16_t* key, int length) const {
    const Units units{key, qv::detail::measured(key, length)};
    return table_.get(qv::detail::sampledHash(units.units, units.length, false), units);
}

Reference<Object> StringHashMap::get(const String& key) const {
    return table_.get(key.hashCode(false), key);
}

int StringHashMap::getSize() const { return table_.getSize(); }

bool StringHashMap::containsKey(const char16_t* key, int length) const {
    // Kept: a null value counts as none; callers store it to say so.
    return get(key, length).get() != nullptr;
}

bool StringHashMap::containsKey(const String& key) const { return get(key).get() != nullptr; }

bool StringHashMap::isEmpty() const { return getSize() == 0; }

Reference<Object> StringHashMap::put(const String& key, Object* value) {
    return table_.put(key.hashCode(false), key, value);
}

Reference<Object> StringHashMap::remove(const String& key) {
    return table_.remove(key.hashCode(false), key);
}

Reference<const Set<String>> StringHashMap::createKeySet() const {
    const auto keys = make<qvcom::HashSet>();
    table_.forEachKey(
        [&](const String& key) { keys->add(detail::elementOf(make<String>(key).get())); });
    return Reference<const Set<String>>(new Set<String>(keys));
}

} // namespace qv::collections
