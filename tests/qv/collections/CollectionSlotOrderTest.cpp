// The tables of the collections' interfaces, whose order other modules are built on.

#include "qv/Object.h"
#include "qv/collections/IntegerHashMap.h"
#include "qv/collections/List.h"
#include "qv/collections/StringHashMap.h"
#include "qv/collections/qvcom/Map.h"
#include "tests/support/Slots.h"

using namespace qv;
namespace face = qv::collections::qvcom;
using collections::IntegerHashMap;
using collections::StringHashMap;
using support::expectConsecutive;
using support::slotOf;

namespace {

template <class Face>
std::vector<std::ptrdiff_t> unknownSlots() {
    return {slotOf(&Face::QueryInterface), slotOf(&Face::AddRef), slotOf(&Face::Release)};
}

void expectBehindUnknown(std::vector<std::ptrdiff_t> unknown,
                         const std::vector<std::ptrdiff_t>& own) {
    unknown.insert(unknown.end(), own.begin(), own.end());
    EXPECT_EQ(unknown.front(), 0);
    expectConsecutive(unknown);
}

using Face = face::Collection;
using face::MapEntry;

TEST(CollectionSlotOrderTest, Collection) {
    expectBehindUnknown(unknownSlots<Face>(),
                        {slotOf(&Face::add), slotOf(&Face::addAll), slotOf(&Face::clear),
                         slotOf(&Face::compareTo), slotOf(&Face::contains),
                         slotOf(&Face::containsAll), slotOf(&Face::createIterator),
                         slotOf(&Face::createConstIterator), slotOf(&Face::equals),
                         slotOf(&Face::getSize), slotOf(&Face::hashCode), slotOf(&Face::remove),
                         slotOf(&Face::removeAll), slotOf(&Face::retainAll)});
}

TEST(CollectionSlotOrderTest, ListBehindCollection) {
    using L = face::List;
    using Any = Reference<IQVUnknown>;
    expectConsecutive(
        {slotOf(&Face::retainAll), slotOf(static_cast<bool (L::*)(int, IQVUnknown*)>(&L::add)),
         slotOf(static_cast<bool (L::*)(int, const Face&)>(&L::addAll)),
         slotOf(static_cast<Any (L::*)(int)>(&L::remove)), slotOf(&L::createListIterator),
         slotOf(&L::createConstListIterator),
         slotOf(static_cast<Reference<const L> (L::*)(int, int) const>(&L::createSubList)),
         slotOf(static_cast<Reference<L> (L::*)(int, int)>(&L::createSubList)), slotOf(&L::get),
         slotOf(&L::indexOf), slotOf(&L::lastIndexOf), slotOf(&L::set)});
}

TEST(CollectionSlotOrderTest, Map) {
    using M = face::Map;
    using S = face::Set;
    expectBehindUnknown(
        unknownSlots<M>(),
        {slotOf(&M::clear), slotOf(&M::compareTo), slotOf(&M::containsKey),
         slotOf(&M::containsValue),
         slotOf(static_cast<Reference<const S> (M::*)() const>(&M::createEntrySet)),
         slotOf(static_cast<Reference<S> (M::*)()>(&M::createEntrySet)),
         slotOf(static_cast<Reference<const S> (M::*)() const>(&M::createKeySet)),
         slotOf(static_cast<Reference<S> (M::*)()>(&M::createKeySet)),
         slotOf(static_cast<Reference<const Face> (M::*)() const>(&M::createValueCollection)),
         slotOf(static_cast<Reference<Face> (M::*)()>(&M::createValueCollection)),
         slotOf(&M::equals), slotOf(&M::get), slotOf(&M::getSize), slotOf(&M::hashCode),
         slotOf(&M::put), slotOf(&M::putAll), slotOf(&M::remove)});
}

TEST(CollectionSlotOrderTest, MapEntry) {
    expectBehindUnknown(unknownSlots<MapEntry>(),
                        {slotOf(&MapEntry::compareTo), slotOf(&MapEntry::equals),
                         slotOf(&MapEntry::getKey), slotOf(&MapEntry::getValue),
                         slotOf(&MapEntry::hashCode), slotOf(&MapEntry::setValue)});
}

TEST(CollectionSlotOrderTest, Iterators) {
    using C = face::ConstIterator;
    expectBehindUnknown(unknownSlots<C>(), {slotOf(&C::hasNext), slotOf(&C::next)});
    expectConsecutive({slotOf(&C::next), slotOf(&face::Iterator::remove)});
    using L = face::ConstListIterator;
    expectConsecutive({slotOf(&C::next), slotOf(&L::hasPrevious), slotOf(&L::previous),
                       slotOf(&L::nextIndex), slotOf(&L::previousIndex)});
    expectConsecutive({slotOf(&face::Iterator::remove), slotOf(&face::ListIterator::add),
                       slotOf(&face::ListIterator::set)});
}

TEST(CollectionSlotOrderTest, TypedCollectionBehindObject) {
    using C = collections::Collection<String>;
    EXPECT_EQ(slotOf(&C::compareTo), slotOf(&Object::compareTo));
    expectConsecutive({slotOf(&Object::toString), slotOf(&C::add), slotOf(&C::contains),
                       slotOf(&C::remove), slotOf(&C::addAll), slotOf(&C::clear),
                       slotOf(&C::createIterator), slotOf(&C::createConstIterator),
                       slotOf(&C::getSize), slotOf(&C::isEmpty), slotOf(&C::removeAll),
                       slotOf(&C::retainAll)});
}

TEST(CollectionSlotOrderTest, TypedListBehindTypedCollection) {
    using C = collections::Collection<String>;
    using L = collections::List<String>;
    expectConsecutive(
        {slotOf(&C::retainAll), slotOf(static_cast<bool (L::*)(int, String*)>(&L::add)),
         slotOf(static_cast<bool (L::*)(int, const C&)>(&L::addAll)),
         slotOf(static_cast<Reference<String> (L::*)(int)>(&L::remove)),
         slotOf(&L::createListIterator), slotOf(&L::createConstListIterator),
         slotOf(static_cast<Reference<const L> (L::*)(int, int) const>(&L::createSubList)),
         slotOf(static_cast<Reference<L> (L::*)(int, int)>(&L::createSubList)), slotOf(&L::get),
         slotOf(&L::indexOf), slotOf(&L::lastIndexOf), slotOf(&L::set)});
}

TEST(CollectionSlotOrderTest, StringHashMapBehindObject) {
    using M = StringHashMap;
    using Any = Reference<Object>;
    expectConsecutive(
        {slotOf(&Object::toString), slotOf(&M::clear),
         slotOf(static_cast<Any (M::*)(const char16_t*, int) const>(&M::get)),
         slotOf(static_cast<Any (M::*)(const String&) const>(&M::get)), slotOf(&M::getSize),
         slotOf(static_cast<bool (M::*)(const char16_t*, int) const>(&M::containsKey)),
         slotOf(static_cast<bool (M::*)(const String&) const>(&M::containsKey)),
         slotOf(&M::isEmpty), slotOf(&M::put), slotOf(&M::remove), slotOf(&M::createKeySet)});
}

TEST(CollectionSlotOrderTest, IntegerHashMapBehindObject) {
    using M = IntegerHashMap;
    expectConsecutive({slotOf(&Object::toString), slotOf(&M::clear), slotOf(&M::get),
                       slotOf(&M::getSize), slotOf(&M::isEmpty), slotOf(&M::put),
                       slotOf(&M::remove), slotOf(&M::createKeySet)});
}

} // namespace
