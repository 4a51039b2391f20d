#pragma once

#include "qv/collections/Collection.h"
#include "qv/collections/Set.h"
#include "qv/collections/qvcom/Map.h"

namespace qv::collections {

/// The typed face of a map: it wraps one map of the interface face, whose keys are `K` and whose
/// values are `V`.
///
/// Every operation is that of the wrapped map, with its failures; a value that is no `V` throws
/// CastFailedException where it is handed out. Kept: `compareTo` and `equals` hand their argument
/// on as it stands; a wrapper is no map of the interface face.
///
/// Thread safety: that of the wrapped map.
template <class K, class V>
class QV_API_TEMPLATE Map : public Object {
public:
    /// Owns: a reference on `map`.
    explicit Map(qvcom::Map* map) : map_(map) {}

    int compareTo(const Object& other) const override { return map_->compareTo(other); }
    bool equals(const Object& other) const override { return map_->equals(other); }
    std::uint32_t hashCode() const override { return map_->hashCode(); }

    void clear() { map_->clear(); }
    bool containsKey(const K* key) const { return map_->containsKey(detail::elementOf(key)); }
    bool containsValue(const V* value) const {
        return map_->containsValue(detail::elementOf(value));
    }
    /// Views of the map, as those of the interface face.
    Reference<Set<K>> createKeySet() { return make<Set<K>>(map_->createKeySet()); }
    Reference<Collection<V>> createValueCollection() {
        return make<Collection<V>>(map_->createValueCollection());
    }
    Reference<V> get(const K* key) const {
        return detail::castHeld<V>(map_->get(detail::elementOf(key)));
    }
    int getSize() const { return map_->getSize(); }
    bool isEmpty() const { return map_->isEmpty(); }
    Reference<V> put(K* key, V* value) {
        return detail::castHeld<V>(map_->put(detail::elementOf(key), detail::elementOf(value)));
    }
    void putAll(const Map& source) { map_->putAll(*source.map_); }
    Reference<V> remove(const K* key) {
        return detail::castHeld<V>(map_->remove(detail::elementOf(key)));
    }

private:
    Reference<qvcom::Map> map_;
};

QV_EXTERN_INSTANCE(Map<String, String>);

} // namespace qv::collections
