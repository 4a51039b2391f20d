// Where an allocation fails, the collections are as they were and nothing is lost. On this system
// only: a Windows module has operators of its own, which a program cannot take the place of.

#include "qv/Exceptions.h"
#include "qv/collections/DefaultComparator.h"
#include "qv/collections/List.h"
#include "qv/collections/StringHashMap.h"
#include "qv/collections/qvcom/HashSet.h"
#include "tests/qv/collections/CollectionElements.h"
#include "tests/support/Allocations.h"

#include <utility>

using namespace elements;
using collections::StringHashMap;
using support::Allocations;

namespace {

/// Runs `work` with its first, second and so on allocation failing, until it needs no more. `check`
/// says that nothing is broken after each failure. @return how many failed.
template <class Work, class Check>
std::size_t failEach(Work work, Check check) {
    for (std::size_t failing = 1; failing < 1000; ++failing) {
        try {
            const Allocations allocations(failing);
            work();
            return failing - 1;
        } catch (const std::bad_alloc&) {
            check();
        }
    }
    ADD_FAILURE() << "no end";
    return 0;
}

template <class List>
class ListAllocationTest : public testing::Test {};
using Lists = testing::Types<ArrayList, LinkedList>;
TYPED_TEST_SUITE(ListAllocationTest, Lists);

TYPED_TEST(ListAllocationTest, FailureLeavesTheListAsItWas) {
    const auto list = make<TypeParam>();
    const Text element(u"x");
    fill(*list, {u"a", u"b", u"c", u"d"}); // the array is full
    const auto before = show(*list);
    const auto walk = list->createListIterator(2);
    const auto unchanged = [&] {
        EXPECT_EQ(show(*list), before);
        EXPECT_EQ(element.string->GetRefCount(), 1u);
    };
    EXPECT_GT(failEach([&] { list->add(1, element); }, unchanged), 0u);
    EXPECT_EQ(show(*list), u"a x b c d");
    expectModified([&] { walk->next(); });
    list->remove(1);
    EXPECT_EQ(element.string->GetRefCount(), 1u);
}

TYPED_TEST(ListAllocationTest, FailedAdditionCountsNothing) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c", u"d", u"e", u"f"});
    while (true) { // up to a full array
        const Allocations allocations;
        list->add(nullptr);
        if (allocations.count() > 0 || list->getSize() > 100) {
            break;
        }
    }
    const auto walk = list->createListIterator(0);
    std::size_t failures = 0;
    for (int i = 0; i < 100 && failures == 0; ++i) {
        const int size = list->getSize();
        failures = failEach([&] { walk->add(nullptr); }, [&] { EXPECT_EQ(list->getSize(), size); });
    }
    EXPECT_GT(failures, 0u);
    EXPECT_NO_THROW(walk->next());
}

TYPED_TEST(ListAllocationTest, CopyingFailsWhole) {
    int alive = 0;
    const auto source = make<TypeParam>();
    for (int i = 0; i < 10; ++i) {
        source->add(raw(make<CountedObject>(alive)));
    }
    Reference<TypeParam> copy;
    failEach([&] { copy = make<TypeParam>(*source); },
             [&] {
                 EXPECT_EQ(source->GetRefCount(), 1u);
                 EXPECT_EQ(source->get(0)->AddRef(), 3u);
                 source->get(0)->Release();
             });
    EXPECT_EQ(copy->getSize(), 10);
    copy = nullptr;
    source->clear();
    EXPECT_EQ(alive, 0);
}

TYPED_TEST(ListAllocationTest, WalksAndViewsFailClean) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    const auto view = list->createSubList(1, 3);
    const Text element(u"c");
    const auto clean = [&] { EXPECT_EQ(list->GetRefCount(), 2u); };
    EXPECT_GT(failEach([&] { list->createIterator(); }, clean), 0u);
    EXPECT_GT(failEach([&] { list->createListIterator(1); }, clean), 0u);
    EXPECT_GT(failEach([&] { list->createSubList(0, 1); }, clean), 0u);
    EXPECT_GT(failEach([&] { view->createListIterator(1); }, clean), 0u);
    EXPECT_GT(failEach([&] { list->indexOf(element); }, clean), 0u);
    EXPECT_GT(failEach([&] { static_cast<void>(list->hashCode()); }, clean), 0u);
    EXPECT_GT(failEach([&] { list->equals(*filled<ArrayList>({u"a", u"b", u"c"})); }, clean), 0u);
    EXPECT_EQ(show(*view), u"b c");
}

TEST(ListsAllocationTest, ClearNeedsNoMemory) {
    const auto array = filled<ArrayList>({u"a", u"b"});
    const auto linked = filled<LinkedList>({u"a", u"b"});
    const Allocations allocations;
    array->clear();
    linked->clear();
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(ListsAllocationTest, EmptyArrayListHasNoArray) {
    collections::GetDefaultComparator();
    const Allocations allocations;
    const auto list = make<ArrayList>();
    EXPECT_EQ(allocations.count(), 1u) << "the list itself";
}

TEST(ListsAllocationTest, ArrayGrowsByHalf) {
    const auto list = make<ArrayList>();
    std::vector<int> growths;
    for (int i = 0; i < 30; ++i) {
        const Allocations allocations;
        list->add(nullptr);
        if (allocations.count() > 0) {
            growths.push_back(i);
        }
    }
    EXPECT_EQ(growths, (std::vector<int>{0, 1, 2, 3, 4, 6, 9, 13, 19, 28}));
}

TEST(HashMapAllocationTest, FailureLeavesTheMapAsItWas) {
    const auto map = make<HashMap>(2, 1.0f);
    map->put(Text(u"a"), Text(u"1"));
    map->put(Text(u"b"), Text(u"2")); // the next key grows the table
    const auto walk = map->createEntrySet()->createIterator();
    const Text key(u"c");
    const Text value(u"3");
    const auto unchanged = [&] {
        EXPECT_EQ(map->getSize(), 2);
        EXPECT_EQ(show(*map->createKeySet()), u"a b");
        EXPECT_EQ(key.string->GetRefCount(), 1u);
        EXPECT_EQ(value.string->GetRefCount(), 1u);
    };
    EXPECT_EQ(failEach([&] { map->put(key, value); }, unchanged), 2u) << "an entry and a table";
    EXPECT_EQ(map->getSize(), 3);
    EXPECT_EQ(show(map->get(Text(u"c"))), u"3");
    expectModified([&] { walk->next(); });
}

TEST(HashMapAllocationTest, FailedPutDoesNotDisturbAWalk) {
    const auto map = make<HashMap>(2, 1.0f);
    map->put(Text(u"a"), nullptr);
    map->put(Text(u"b"), nullptr);
    const auto walk = map->createKeySet()->createIterator();
    walk->next();
    for (const std::size_t failing : {1u, 2u}) {
        const Text key(u"c");
        const Allocations allocations(failing);
        EXPECT_THROW(map->put(key, nullptr), std::bad_alloc);
    }
    EXPECT_EQ(show(walk->next()), u"b");
}

TEST(HashMapAllocationTest, LookingUpAndClearingNeedNoMemory) {
    const auto map = make<HashMap>();
    const Text key(u"a");
    map->put(key, key);
    const Allocations allocations;
    EXPECT_TRUE(map->containsKey(key));
    EXPECT_TRUE(map->containsValue(key));
    EXPECT_NE(map->get(key).get(), nullptr);
    map->put(key, nullptr);
    map->remove(key);
    map->clear();
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(HashMapAllocationTest, CopiesFailWhole) {
    int alive = 0;
    const auto source = make<HashMap>(3, 1.0f);
    for (int i = 0; i < 10; ++i) {
        source->put(raw(make<CountedObject>(alive)), raw(make<CountedObject>(alive)));
    }
    EXPECT_GT(
        failEach([&] { make<HashMap>(*source); }, [&] { EXPECT_EQ(source->GetRefCount(), 1u); }),
        10u);
    const auto& face = static_cast<const Map&>(*source);
    EXPECT_GT(failEach([&] { make<HashMap>(face, 0.75f); },
                       [&] { EXPECT_EQ(source->GetRefCount(), 1u); }),
              10u);
    source->clear();
    EXPECT_EQ(alive, 0);
}

TEST(HashMapAllocationTest, ViewsFailClean) {
    const auto map = make<HashMap>();
    map->put(Text(u"a"), Text(u"1"));
    const auto clean = [&] { EXPECT_EQ(map->GetRefCount(), 1u); };
    EXPECT_EQ(failEach([&] { map->createKeySet()->createIterator()->next(); }, clean), 4u);
    EXPECT_EQ(failEach([&] { map->createValueCollection()->createIterator(); }, clean), 4u);
    EXPECT_EQ(failEach([&] { map->createEntrySet()->createIterator()->next(); }, clean), 2u);
}

TEST(HashSetAllocationTest, FailureLeavesTheSetAsItWas) {
    const auto set = make<HashSet>();
    set->add(nullptr);
    const Text element(u"x");
    EXPECT_EQ(failEach([&] { set->add(element); },
                       [&] {
                           EXPECT_EQ(set->getSize(), 1);
                           EXPECT_EQ(element.string->GetRefCount(), 1u);
                       }),
              1u);
    EXPECT_EQ(set->getSize(), 2);
    EXPECT_EQ(failEach([&] { make<HashSet>(); }, [] {}), 3u);
}

TEST(StringHashMapAllocationTest, FailureLeavesTheMapAsItWas) {
    StringHashMap map(2, 1.0f);
    const auto value = make<Object>();
    map.put(u"a", value);
    map.put(u"b", value);
    const String key(u"c");
    EXPECT_EQ(failEach([&] { map.put(key, value); },
                       [&] {
                           EXPECT_EQ(map.getSize(), 2);
                           EXPECT_EQ(value->GetRefCount(), 3u);
                           EXPECT_TRUE(map.containsKey(u"a", -1));
                           EXPECT_FALSE(map.containsKey(key));
                       }),
              2u);
    EXPECT_TRUE(map.containsKey(key));
    EXPECT_GT(failEach([&] { map.createKeySet(); }, [] {}), 6u);
    const Allocations allocations;
    EXPECT_TRUE(map.containsKey(key));
    EXPECT_TRUE(map.containsKey(u"c", -1));
    map.remove(key);
    map.clear();
    EXPECT_EQ(allocations.count(), 0u);
}

TEST(TypedFaceAllocationTest, WrappersFailClean) {
    const auto inner = filled<ArrayList>({u"a", u"b"});
    const auto list = make<collections::List<String>>(inner);
    const auto clean = [&] { EXPECT_EQ(inner->GetRefCount(), 3u); };
    EXPECT_EQ(failEach([&] { list->createIterator(); }, clean), 2u);
    EXPECT_EQ(failEach([&] { list->createListIterator(0); }, clean), 2u);
    EXPECT_EQ(failEach([&] { list->createSubList(0, 1); }, clean), 2u);
    EXPECT_EQ(failEach(
                  [&] {
                      for (const String& element : *list) {
                          static_cast<void>(element);
                      }
                  },
                  clean),
              1u);
}

TEST(ComponentFaceAllocationTest, FailureIsItsResult) {
    const auto list = filled<ArrayList>({u"a"});
    const auto other = filled<ArrayList>({u"a"});
    const IQVComparable& face = *list;
    std::int32_t order = 99;
    const Allocations allocations(1);
    EXPECT_EQ(face.CompareTo(raw(other), &order), QV_E_OUTOFMEMORY);
    EXPECT_EQ(order, 0);
}

} // namespace
