#include "qv/collections/IntegerHashMap.h"

#include "qv/collections/qvcom/HashSet.h"

namespace qv::collections {

namespace {

std::uint32_t hashOf(int key) noexcept { return static_cast<std::uint32_t>(key); }

} // namespace

IntegerHashMap::IntegerHashMap(int capacity, float load) : table_(capacity, load) {}

IntegerHashMap::~IntegerHashMap() = default;

void IntegerHashMap::clear() { table_.clear(); }

Reference<Object> IntegerHashMap::get(int key) const { return table_.get(hashOf(key), key); }

int IntegerHashMap::getSize() const { return table_.getSize(); }

bool IntegerHashMap::isEmpty() const { return getSize() == 0; }

Reference<Object> IntegerHashMap::put(int key, Object* value) {
    return table_.put(hashOf(key), key, value);
}

Reference<Object> IntegerHashMap::remove(int key) { return table_.remove(hashOf(key), key); }

Reference<const Set<Integer32>> IntegerHashMap::createKeySet() const {
    const auto keys = make<qvcom::HashSet>();
    table_.forEachKey([&](int key) { keys->add(detail::elementOf(make<Integer32>(key).get())); });
    return Reference<const Set<Integer32>>(new Set<Integer32>(keys));
}

} // namespace qv::collections
