#include "qv/Exceptions.h"
#include "qv/collections/List.h"
#include "qv/collections/Map.h"
#include "qv/collections/qvcom/HashMap.h"
#include "qv/collections/qvcom/HashSet.h"
#include "tests/qv/collections/CollectionElements.h"
#include "tests/support/Printing.h"

#include <iterator>
#include <type_traits>

using elements::expectModified;
using elements::filled;
using elements::newText;
using elements::raw;
using elements::show;
using elements::Text;
using support::units;

using namespace qv::collections;
using qv::CastFailedException;
using qv::make;
using qv::Object;
using qv::Reference;
using qv::String;

namespace {

template <class Walked>
std::u16string textOf(Walked& walked) {
    std::u16string all;
    for (auto&& element : walked) {
        all += units(element);
    }
    return all;
}

Reference<List<String>> listOf(std::initializer_list<const char16_t*> texts) {
    return make<List<String>>(filled<qvcom::ArrayList>(texts));
}

TEST(TypedListTest, ForwardsEveryOperation) {
    const auto list = make<List<String>>(make<qvcom::ArrayList>());
    EXPECT_TRUE(list->isEmpty());
    EXPECT_TRUE(list->add(newText(u"a")));
    EXPECT_TRUE(list->add(0, newText(u"b")));
    EXPECT_TRUE(list->addAll(*listOf({u"c"})));
    EXPECT_TRUE(list->addAll(1, *listOf({u"d"})));
    EXPECT_EQ(textOf(*list), u"bdac");
    EXPECT_EQ(list->getSize(), 4);
    EXPECT_EQ(units(*list->get(1)), u"d");
    EXPECT_EQ(list->indexOf(newText(u"a")), 2);
    EXPECT_EQ(list->lastIndexOf(newText(u"x")), -1);
    EXPECT_TRUE(list->contains(newText(u"c")));
    EXPECT_EQ(units(*list->set(0, newText(u"e"))), u"b");
    EXPECT_EQ(units(*list->remove(0)), u"e");
    EXPECT_TRUE(list->remove(newText(u"a").get()));
    EXPECT_TRUE(list->removeAll(*listOf({u"d"})));
    EXPECT_FALSE(list->retainAll(*listOf({u"c"})));
    EXPECT_EQ(textOf(*list), u"c");
    list->clear();
    EXPECT_TRUE(list->isEmpty());
    EXPECT_THROW(list->get(0), qv::RangeErrorException);
    EXPECT_THROW(list->createListIterator(1), qv::RangeErrorException);
}

TEST(TypedListTest, HoldsElementsOnce) {
    const auto list = make<List<String>>(make<qvcom::ArrayList>());
    const auto text = newText(u"a");
    list->add(text);
    EXPECT_EQ(text->GetRefCount(), 2u);
    EXPECT_EQ(list->get(0).get(), text.get());
    EXPECT_EQ(text->GetRefCount(), 2u);
    for (const String& element : *list) {
        EXPECT_EQ(element.GetRefCount(), 3u);
    }
    list->createIterator()->next();
    list->set(0, text);
    EXPECT_EQ(text->GetRefCount(), 2u);
    list->remove(0);
    EXPECT_EQ(text->GetRefCount(), 1u);
}

TEST(TypedListTest, NullElementIsANullReference) {
    const auto list = make<List<String>>(make<qvcom::ArrayList>());
    list->add(nullptr);
    EXPECT_EQ(list->get(0).get(), nullptr);
    EXPECT_EQ(list->createIterator()->next().get(), nullptr);
    EXPECT_EQ(list->createListIterator(1)->previous().get(), nullptr);
    EXPECT_TRUE(list->contains(nullptr));
    EXPECT_EQ(list->remove(0).get(), nullptr);
}

TEST(TypedListTest, ElementOfAnotherClassIsACastFailure) {
    const auto inner = make<qvcom::ArrayList>();
    const auto object = make<Object>();
    inner->add(raw(object));
    const List<String> list(inner);
    EXPECT_THROW(list.get(0), CastFailedException);
    EXPECT_THROW(list.createConstIterator()->next(), CastFailedException);
    EXPECT_THROW(list.createConstListIterator(1)->previous(), CastFailedException);
    EXPECT_THROW(textOf(list), CastFailedException);
    EXPECT_EQ(object->GetRefCount(), 2u);
}

TEST(TypedListTest, ElementOfADerivedClassIsTaken) {
    struct Named : String {
        using String::String;
    };
    const auto list = listOf({u"a"});
    list->add(make<Named>(u"b"));
    EXPECT_EQ(textOf(*list), u"ab");
    EXPECT_EQ(units(*list->get(1)), u"b");
}

TEST(TypedListTest, SubListsAreViews) {
    const auto list = listOf({u"a", u"b", u"c"});
    const auto view = list->createSubList(1, 3);
    view->add(newText(u"d"));
    EXPECT_EQ(textOf(*list), u"abcd");
    EXPECT_EQ(view->getSize(), 3);
    const List<String>& constList = *list;
    const Reference<const List<String>> constView = constList.createSubList(0, 1);
    EXPECT_EQ(textOf(*constView), u"a");
    EXPECT_THROW(list->createSubList(2, 1), qv::RangeErrorException);
}

TEST(TypedListTest, ArgumentOfAComparisonIsKeptAsItStands) {
    const auto inner = filled<qvcom::ArrayList>({u"a"});
    const auto list = make<List<String>>(inner);
    const auto other = listOf({u"a"});
    EXPECT_FALSE(list->equals(*other)) << "a wrapper is no list";
    EXPECT_THROW(list->compareTo(*other), CastFailedException);
    EXPECT_FALSE(list->equals(*list));
    EXPECT_TRUE(list->equals(*inner));
    EXPECT_EQ(list->compareTo(*filled<qvcom::LinkedList>({u"a"})), 0);
    EXPECT_EQ(list->hashCode(), inner->hashCode());
}

TEST(TypedListTest, KeepsTheWrappedListAlive) {
    auto inner = filled<qvcom::ArrayList>({u"a"});
    auto list = make<List<String>>(inner);
    EXPECT_EQ(inner->GetRefCount(), 3u) << "once as a collection, once as a list";
    const auto walk = list->createIterator();
    list = nullptr;
    inner = nullptr;
    EXPECT_EQ(units(*walk->next()), u"a");
}

TEST(TypedIteratorTest, WalksAndRemoves) {
    const auto list = listOf({u"a", u"b"});
    const auto walk = list->createIterator();
    EXPECT_TRUE(walk->hasNext());
    EXPECT_EQ(units(*walk->next()), u"a");
    walk->remove();
    EXPECT_THROW(walk->remove(), qv::IllegalStateException);
    EXPECT_EQ(textOf(*list), u"b");
    list->add(0, newText(u"c"));
    expectModified([&] { walk->next(); });
}

TEST(TypedIteratorTest, ListWalksGoBothWaysAndChange) {
    const auto list = listOf({u"a", u"b"});
    const auto walk = list->createListIterator(1);
    EXPECT_TRUE(walk->hasPrevious());
    EXPECT_EQ(walk->nextIndex(), 1);
    EXPECT_EQ(walk->previousIndex(), 0);
    EXPECT_EQ(units(*walk->previous()), u"a");
    walk->set(newText(u"c"));
    EXPECT_TRUE(walk->add(newText(u"d")));
    EXPECT_EQ(units(*walk->next()), u"c");
    walk->remove();
    EXPECT_EQ(textOf(*list), u"db");
    const auto constWalk = list->createConstListIterator(2);
    EXPECT_FALSE(constWalk->hasNext());
    EXPECT_EQ(units(*constWalk->previous()), u"b");
}

TEST(TypedRangeTest, GivesElementsAsTheCollectionIs) {
    const auto list = listOf({u"a", u"b"});
    static_assert(std::is_same_v<decltype(*list->begin()), String&>);
    static_assert(std::is_same_v<decltype(*std::as_const(*list).begin()), const String&>);
    static_assert(std::input_iterator<decltype(list->begin())>);
    for (String& element : *list) {
        element.append(u"!");
    }
    EXPECT_EQ(textOf(std::as_const(*list)), u"a!b!");
    EXPECT_EQ(textOf(*listOf({})), u"");
}

TEST(TypedRangeTest, NullElementIsACastFailure) {
    const auto list = listOf({u"a"});
    list->add(nullptr);
    EXPECT_THROW(textOf(*list), CastFailedException);
}

TEST(TypedRangeTest, ChangeInTheLoopFails) {
    const auto list = listOf({u"a", u"b", u"c"});
    expectModified([&] {
        for (String& element : *list) {
            list->remove(&element);
        }
    });
    EXPECT_EQ(textOf(*list), u"bc");
}

TEST(TypedSetTest, ForwardsToTheSet) {
    const auto set = make<Set<String>>(make<qvcom::HashSet>());
    EXPECT_TRUE(set->add(newText(u"a")));
    EXPECT_FALSE(set->add(newText(u"a")));
    EXPECT_TRUE(set->contains(newText(u"a")));
    EXPECT_EQ(textOf(*set), u"a");
    const Reference<Collection<String>> collection(set.get());
    EXPECT_EQ(set->GetRefCount(), 2u);
    EXPECT_TRUE(collection->remove(newText(u"a")));
    EXPECT_TRUE(set->isEmpty());
    EXPECT_EQ(set->hashCode(), 0u);
    EXPECT_THROW(set->equals(*set), CastFailedException) << "a wrapper is no set";
    const auto walk = set->createConstIterator();
    EXPECT_FALSE(walk->hasNext());
}

TEST(TypedSetTest, EndsThroughEveryOneOfItsBases) {
    auto inner = make<qvcom::HashSet>();
    {
        const Reference<Object> object(make<Set<String>>(inner).get());
        EXPECT_EQ(inner->GetRefCount(), 2u);
    }
    EXPECT_EQ(inner->GetRefCount(), 1u);
}

TEST(TypedMapTest, ForwardsToTheMap) {
    const auto inner = make<qvcom::HashMap>();
    const auto map = make<Map<String, String>>(inner);
    EXPECT_TRUE(map->isEmpty());
    EXPECT_EQ(map->put(newText(u"k"), newText(u"v")).get(), nullptr);
    EXPECT_EQ(units(*map->put(newText(u"k"), newText(u"w"))), u"v");
    EXPECT_EQ(units(*map->get(newText(u"k"))), u"w");
    EXPECT_EQ(map->get(newText(u"x")).get(), nullptr);
    EXPECT_TRUE(map->containsKey(newText(u"k")));
    EXPECT_TRUE(map->containsValue(newText(u"w")));
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(textOf(*map->createKeySet()), u"k");
    EXPECT_EQ(textOf(*map->createValueCollection()), u"w");
    const auto other = make<Map<String, String>>(make<qvcom::HashMap>());
    other->putAll(*map);
    EXPECT_EQ(units(*other->remove(newText(u"k"))), u"w");
    EXPECT_TRUE(other->isEmpty());
    EXPECT_FALSE(map->equals(*map)) << "a wrapper is no map";
    EXPECT_THROW(map->compareTo(*other), CastFailedException);
    EXPECT_TRUE(map->equals(*inner));
    EXPECT_EQ(map->hashCode(), 0u);
    inner->put(Text(u"o"), raw(make<Object>()));
    EXPECT_THROW(map->get(newText(u"o")), CastFailedException);
    map->clear();
    EXPECT_EQ(map->getSize(), 2) << "the map's own clear";
}

} // namespace
