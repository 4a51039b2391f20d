#include "qv/collections/qvcom/HashMap.h"

#include "qv/collections/DefaultComparator.h"
#include "qv/collections/qvcom/HashMapIterator.h"
#include "tests/qv/collections/CollectionElements.h"

#include <algorithm>
#include <functional>

using namespace elements;

namespace {

/// A key with a hash of its choice. Keys of one number are equal.
struct Key : Object {
    Key(int keyNumber, std::uint32_t keyHash) : number(keyNumber), hash(keyHash) {}
    explicit Key(int keyNumber) : Key(keyNumber, static_cast<std::uint32_t>(keyNumber)) {}
    int compareTo(const Object& other) const override {
        return number - dynamic_cast<const Key&>(other).number;
    }
    std::uint32_t hashCode() const override { return hash; }
    int number;
    std::uint32_t hash;
};

Reference<Key> key(int number) { return make<Key>(number); }

int numberOf(IQVUnknown* element) { return dynamic_cast<const Key&>(*element).number; }

std::vector<int> keysOf(const Map& map) {
    std::vector<int> numbers;
    const auto walk = map.createKeySet()->createConstIterator();
    while (walk->hasNext()) {
        numbers.push_back(numberOf(walk->next()));
    }
    return numbers;
}

void put(Map& map, std::initializer_list<int> numbers) {
    for (const int number : numbers) {
        map.put(raw(key(number)), Text(u"v"));
    }
}

/// The table by its rule, written down in the plainest way.
struct Model {
    explicit Model(int tableCapacity, float tableLoad = 0.75f)
        : capacity(tableCapacity), load(tableLoad), buckets(static_cast<std::size_t>(capacity)) {}

    void put(std::uint32_t hash) {
        if (size >= static_cast<int>(static_cast<float>(capacity) * load)) {
            grow();
        }
        auto& bucket = buckets[hash % static_cast<std::uint32_t>(capacity)];
        bucket.insert(bucket.begin(), hash);
        ++size;
    }
    void grow() {
        const auto old = buckets;
        capacity = capacity * 2 + 1;
        buckets.assign(static_cast<std::size_t>(capacity), {});
        for (auto bucket = old.rbegin(); bucket != old.rend(); ++bucket) {
            for (const std::uint32_t hash : *bucket) {
                auto& target = buckets[hash % static_cast<std::uint32_t>(capacity)];
                target.insert(target.begin(), hash);
            }
        }
    }
    std::vector<int> walk() const {
        std::vector<int> all;
        for (auto bucket = buckets.rbegin(); bucket != buckets.rend(); ++bucket) {
            for (const std::uint32_t hash : *bucket) {
                all.push_back(static_cast<int>(hash));
            }
        }
        return all;
    }

    int capacity;
    float load;
    int size = 0;
    std::vector<std::vector<std::uint32_t>> buckets;
};

struct CountingMap : HashMap {
    using HashMap::HashMap;
    int changes() const { return modCount_; }
    void setChanges(int count) { modCount_ = count; }
};

TEST(HashMapTest, KeepsWhatIsPut) {
    const auto map = make<HashMap>();
    EXPECT_TRUE(map->isEmpty());
    EXPECT_EQ(map->put(Text(u"a"), Text(u"1")).get(), nullptr);
    EXPECT_EQ(map->put(Text(u"b"), Text(u"2")).get(), nullptr);
    EXPECT_EQ(map->getSize(), 2);
    EXPECT_FALSE(map->isEmpty());
    EXPECT_EQ(show(map->get(Text(u"a"))), u"1");
    EXPECT_EQ(show(map->get(Text(u"b"))), u"2");
    EXPECT_EQ(map->get(Text(u"c")).get(), nullptr);
    EXPECT_TRUE(map->containsKey(Text(u"a")));
    EXPECT_FALSE(map->containsKey(Text(u"c")));
    EXPECT_TRUE(map->containsValue(Text(u"2")));
    EXPECT_FALSE(map->containsValue(Text(u"3")));
}

TEST(HashMapTest, PutOnAKnownKeyKeepsTheFirstKey) {
    const auto map = make<CountingMap>();
    const Text first(u"a");
    const Text second(u"a");
    map->put(first, Text(u"1"));
    const int changes = map->changes();
    EXPECT_EQ(show(map->put(second, Text(u"2"))), u"1");
    EXPECT_EQ(map->changes(), changes);
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(map->createKeySet()->createIterator()->next().get(), first);
    EXPECT_EQ(second.string->GetRefCount(), 1u);
    EXPECT_EQ(show(map->get(second)), u"2");
}

TEST(HashMapTest, CountsNewKeysAndRemovals) {
    const auto map = make<CountingMap>();
    EXPECT_EQ(map->changes(), 0);
    put(*map, {1, 2, 3});
    EXPECT_EQ(map->changes(), 3);
    map->remove(raw(key(2)));
    EXPECT_EQ(map->changes(), 4);
    map->remove(raw(key(2)));
    EXPECT_EQ(map->changes(), 4);
    const auto walk = map->createKeySet()->createIterator();
    walk->next();
    walk->remove();
    EXPECT_EQ(map->changes(), 5);
    for (int i = 10; i < 200; ++i) {
        put(*map, {i});
    }
    EXPECT_EQ(map->changes(), 195) << "growing counts nothing";
    EXPECT_EQ(make<CountingMap>(*map)->changes(), map->getSize());
}

TEST(HashMapTest, RemoveGivesTheValue) {
    const auto map = make<HashMap>(1, 100.0f); // one chain
    for (int i = 0; i < 5; ++i) {
        map->put(raw(key(i)), Text(u"v"));
    }
    EXPECT_EQ(show(map->remove(raw(key(2)))), u"v");
    EXPECT_EQ(map->remove(raw(key(2))).get(), nullptr);
    EXPECT_EQ(map->getSize(), 4);
    map->remove(raw(key(4)));
    map->remove(raw(key(0)));
    EXPECT_EQ(keysOf(*map), (std::vector<int>{3, 1}));
}

TEST(HashMapTest, HoldsKeysAndValuesOnce) {
    int alive = 0;
    const auto first = make<CountedObject>(alive);
    const auto second = make<CountedObject>(alive);
    {
        const auto map = make<HashMap>();
        map->put(raw(first), raw(second));
        EXPECT_EQ(first->GetRefCount(), 2u);
        EXPECT_EQ(second->GetRefCount(), 2u);
        map->put(raw(first), raw(first));
        EXPECT_EQ(first->GetRefCount(), 3u);
        EXPECT_EQ(second->GetRefCount(), 1u);
        EXPECT_EQ(map->get(raw(first)).get(), raw(first));
        EXPECT_EQ(first->GetRefCount(), 3u);
        EXPECT_FALSE(map->containsKey(raw(second)));
        map->remove(raw(first));
        EXPECT_EQ(first->GetRefCount(), 1u);
        for (int i = 0; i < 300; ++i) {
            map->put(raw(make<CountedObject>(alive)), raw(second));
        }
        EXPECT_EQ(second->GetRefCount(), 301u) << "growing leaves the counts alone";
    }
    EXPECT_EQ(alive, 2);
    EXPECT_EQ(second->GetRefCount(), 1u);
}

TEST(HashMapTest, NullIsAKeyAndAValue) {
    const auto map = make<HashMap>();
    map->put(nullptr, Text(u"of null"));
    EXPECT_EQ(show(map->get(nullptr)), u"of null");
    EXPECT_TRUE(map->containsKey(nullptr));
    map->put(Text(u"a"), nullptr);
    EXPECT_EQ(map->get(Text(u"a")).get(), nullptr);
    EXPECT_TRUE(map->containsKey(Text(u"a")));
    EXPECT_FALSE(map->containsKey(Text(u"b")));
    EXPECT_TRUE(map->containsValue(nullptr));
    EXPECT_EQ(map->put(Text(u"a"), Text(u"1")).get(), nullptr);
    EXPECT_EQ(map->getSize(), 2);
    EXPECT_EQ(show(map->remove(nullptr)), u"of null");
    EXPECT_EQ(map->getSize(), 1);
}

TEST(HashMapTest, OrderIsBucketsFromTheLastAndChainsFromTheNewest) {
    const auto map = make<HashMap>(3, 100.0f);
    put(*map, {0, 3, 1, 6, 4, 2});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{2, 4, 1, 6, 3, 0}));
}

TEST(HashMapTest, OneBucketGivesTheKeysBackward) {
    const auto map = make<HashMap>(1, 100.0f);
    put(*map, {3, 1, 2});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{2, 1, 3}));
}

TEST(HashMapTest, GrowthTurnsChainsRound) {
    const auto map = make<HashMap>(1, 2.0f);
    put(*map, {2, 5});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{5, 2}));
    put(*map, {0}); // three buckets: 2 and 5 stand in the last
    EXPECT_EQ(keysOf(*map), (std::vector<int>{2, 5, 0}));
}

TEST(HashMapTest, GrowsAtTheThreshold) {
    // Of the keys 0 to 75, only in 203 buckets does 150 stand before 75.
    const auto order = [](int count) {
        const auto map = make<HashMap>();
        map->put(raw(key(150)), nullptr);
        for (int i = 0; i < count - 1; ++i) {
            map->put(raw(key(i)), nullptr);
        }
        return keysOf(*map).front();
    };
    EXPECT_EQ(order(75), 73) << "101 buckets: 150 stands in the 49th";
    EXPECT_EQ(order(76), 150) << "203 buckets";
}

TEST(HashMapTest, SmallestTableGrowsAtOnce) {
    const auto map = make<HashMap>(1, 0.75f);
    put(*map, {0});
    // Three buckets with a threshold of 2: the third key makes it 7.
    put(*map, {5});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{5, 0}));
    put(*map, {6});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{6, 5, 0}));
    put(*map, {7});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{6, 5, 7, 0}));
}

TEST(HashMapTest, OrderFollowsTheModelThroughGrowth) {
    for (const int capacity : {1, 7, 101}) {
        const auto map = make<HashMap>(capacity, 0.75f);
        Model model(capacity);
        std::uint32_t state = 12345;
        for (int i = 0; i < 3000; ++i) {
            state = state * 1103515245u + 12345u;
            const auto number = static_cast<int>(state >> 1);
            if (map->containsKey(raw(key(number)))) {
                continue;
            }
            put(*map, {number});
            model.put(static_cast<std::uint32_t>(number));
        }
        EXPECT_EQ(keysOf(*map), model.walk()) << capacity;
    }
}

TEST(HashMapTest, HashesArePlacedUnsigned) {
    const auto map = make<HashMap>(10, 100.0f);
    map->put(raw(make<Key>(1, 0xFFFFFFFFu)), nullptr); // remainder 5
    map->put(raw(make<Key>(2, 0x80000000u)), nullptr); // remainder 8
    map->put(raw(make<Key>(3, 6u)), nullptr);
    EXPECT_EQ(keysOf(*map), (std::vector<int>{2, 3, 1}));
}

TEST(HashMapTest, ComparesOnlyKeysOfEqualHashes) {
    const auto comparator = make<FailingComparator>();
    const auto map = make<HashMap>(comparator.get(), nullptr, 1, 100.0f);
    for (int i = 0; i < 10; ++i) {
        put(*map, {i});
    }
    EXPECT_EQ(comparator->comparisons, 0);
    EXPECT_EQ(comparator->hashes, 10);
    EXPECT_TRUE(map->containsKey(raw(key(5))));
    EXPECT_EQ(comparator->comparisons, 1);
    map->put(raw(make<Key>(99, 5)), nullptr);
    EXPECT_EQ(comparator->comparisons, 2) << "one hash, another key";
    EXPECT_EQ(map->getSize(), 11);
}

TEST(HashMapTest, GrowthAsksTheComparatorForNothing) {
    const auto comparator = make<FailingComparator>();
    const auto map = make<HashMap>(comparator.get(), nullptr, 1, 0.75f);
    for (int i = 0; i < 1000; ++i) {
        put(*map, {i});
    }
    EXPECT_EQ(comparator->hashes, 1000);
    EXPECT_EQ(comparator->comparisons, 0);
}

TEST(HashMapTest, StoredKeyIsAskedFirst) {
    const auto comparator = make<InitialComparator>();
    const auto values = make<InitialComparator>();
    const auto map = make<HashMap>(comparator.get(), values.get(), 101, 0.75f);
    map->put(Text(u"apple"), Text(u"red"));
    EXPECT_TRUE(map->containsKey(Text(u"avocado")));
    EXPECT_TRUE(map->containsValue(Text(u"rosy")));
    EXPECT_EQ(comparator->asked, (std::vector<std::u16string>{u"apple,avocado"}));
    EXPECT_EQ(values->asked, (std::vector<std::u16string>{u"red,rosy"}));
}

TEST(HashMapTest, FailureOfTheComparatorChangesNothing) {
    const auto comparator = make<FailingComparator>();
    const auto map = make<HashMap>(comparator.get(), comparator.get(), 101, 0.75f);
    const Text a(u"a");
    map->put(a, a);
    const auto walk = map->createEntrySet()->createIterator();
    const auto results = [&](auto work) {
        try {
            work();
        } catch (const ResultException& exception) {
            return exception.getResult();
        }
        return 0;
    };
    const Text other(u"a");
    comparator->failure = QV_E_INVALIDARG;
    EXPECT_EQ(results([&] { map->put(other, other); }), QV_E_INVALIDARG);
    EXPECT_EQ(results([&] { map->get(other); }), QV_E_INVALIDARG);
    EXPECT_EQ(results([&] { map->containsKey(other); }), QV_E_INVALIDARG);
    EXPECT_EQ(results([&] { map->containsValue(other); }), QV_E_INVALIDARG);
    EXPECT_EQ(results([&] { map->remove(other); }), QV_E_INVALIDARG);
    comparator->failure = 0;
    comparator->hashFailure = QV_E_OUTOFMEMORY;
    EXPECT_EQ(results([&] { map->put(other, other); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(results([&] { map->get(other); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(results([&] { map->remove(other); }), QV_E_OUTOFMEMORY);
    comparator->hashFailure = 0;
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(other.string->GetRefCount(), 1u);
    EXPECT_NE(walk->next().get(), nullptr) << "nothing was counted";
}

TEST(HashMapTest, ClearKeepsTheStaleSize) {
    const auto map = make<CountingMap>();
    int alive = 0;
    for (int i = 0; i < 3; ++i) {
        map->put(raw(key(i)), raw(make<CountedObject>(alive)));
    }
    const int changes = map->changes();
    map->clear();
    EXPECT_EQ(map->getSize(), 3);
    EXPECT_FALSE(map->isEmpty());
    EXPECT_EQ(map->changes(), changes);
    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(map->containsKey(raw(key(1))));
    EXPECT_EQ(map->get(raw(key(1))).get(), nullptr);
    EXPECT_TRUE(keysOf(*map).empty());
    put(*map, {7});
    EXPECT_EQ(map->getSize(), 4);
    map->remove(raw(key(7)));
    EXPECT_EQ(map->getSize(), 3);
}

TEST(HashMapTest, StaleSizePullsTheNextGrowthForwardAsKept) {
    const auto map = make<HashMap>(3, 1.0f); // grows at the fourth key
    put(*map, {0, 1, 2});
    map->clear();
    put(*map, {3, 5}); // 7 buckets already: 5, 3
    EXPECT_EQ(keysOf(*map), (std::vector<int>{5, 3}));
    put(*map, {7}); // 0 in 7 buckets, in front of nothing
    EXPECT_EQ(keysOf(*map), (std::vector<int>{5, 3, 7}));
}

TEST(HashMapTest, ClearKeepsTheCapacity) {
    const auto map = make<HashMap>(5, 100.0f);
    put(*map, {4, 9});
    map->clear();
    put(*map, {6, 3, 5});
    EXPECT_EQ(keysOf(*map), (std::vector<int>{3, 6, 5}));
}

TEST(HashMapTest, ClearOfAViewLeavesTheSizeRight) {
    for (int view = 0; view < 3; ++view) {
        const auto map = make<HashMap>();
        put(*map, {1, 2, 3, 102});
        const Reference<Collection> views[] = {map->createEntrySet(), map->createKeySet(),
                                               map->createValueCollection()};
        views[view]->clear();
        EXPECT_EQ(map->getSize(), 0) << view;
        EXPECT_TRUE(views[view]->isEmpty());
    }
}

TEST(HashMapTest, WalkAfterClearGoesOnOverTheNewTable) {
    const auto map = make<HashMap>(5, 100.0f);
    put(*map, {4, 9, 2, 1});
    const auto walk = map->createEntrySet()->createIterator();
    walk->next();
    EXPECT_TRUE(walk->hasNext());
    map->clear();
    EXPECT_FALSE(walk->hasNext());
    EXPECT_THROW(walk->remove(), IllegalStateException);
    expectModified([&] { walk->next(); });
}

TEST(HashMapTest, WalkInAChainAfterClearTouchesNoOldEntry) {
    const auto map = make<HashMap>(1, 100.0f);
    put(*map, {1, 2, 3});
    const auto walk = map->createKeySet()->createIterator();
    EXPECT_EQ(numberOf(walk->next()), 3);
    map->clear();
    expectModified([&] { walk->next(); });
}

TEST(HashMapTest, LoadIsTheThresholdsFactor) {
    // 101 * 0.1 is 10: the eleventh key grows the table.
    const auto map = make<HashMap>(101, 0.1f);
    put(*map, {150, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(keysOf(*map).front(), 150 % 101 > 9 ? 150 : 9);
    put(*map, {60});
    EXPECT_EQ(keysOf(*map)[0], 150);
    EXPECT_EQ(keysOf(*map)[1], 60);
}

TEST(HashMapTest, LoadsBeyondAllNumbersNeverGrowTheTable) {
    for (const float load : {1e30f, std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::quiet_NaN(), -1e30f}) {
        const auto map = make<HashMap>(1, load);
        put(*map, {1, 2, 3, 4, 5});
        EXPECT_EQ(keysOf(*map), (std::vector<int>{5, 4, 3, 2, 1}));
    }
}

TEST(HashMapTest, LoadOfZeroGrowsWithEveryKey) {
    const auto map = make<HashMap>(1, 0.0f);
    Model model(1, 0.0f);
    for (int i = 0; i < 10; ++i) {
        put(*map, {i});
        model.put(static_cast<std::uint32_t>(i));
    }
    EXPECT_EQ(keysOf(*map), model.walk());
}

TEST(HashMapTest, NegativeCapacityIsNoMemory) {
    EXPECT_THROW(make<HashMap>(-1, 0.75f), std::bad_alloc);
    EXPECT_THROW(make<HashMap>(std::numeric_limits<int>::min(), 0.75f), std::bad_alloc);
}

TEST(HashMapTest, LongChainEndsWithoutRecursion) {
    constexpr int length = 100000;
    const auto value = make<Object>();
    {
        collections::detail::ChainedTable<HashMapEntry, Reference<HashMapEntry>> table(1, 1e30f);
        for (int i = 0; i < length; ++i) {
            table.insert(HashMapEntry::create(nullptr, Element(raw(value)), 0));
        }
        EXPECT_EQ(value->GetRefCount(), length + 1u);
    }
    EXPECT_EQ(value->GetRefCount(), 1u);
}

TEST(HashMapTest, HashIsAlwaysZeroAsKept) {
    const auto map = make<HashMap>();
    EXPECT_EQ(map->hashCode(), 0u);
    put(*map, {1, 2, 3});
    EXPECT_EQ(map->hashCode(), 0u);
}

TEST(HashMapTest, MapsOfTheSameContentAreEqual) {
    const auto one = make<HashMap>();
    const auto other = make<HashMap>(3, 5.0f);
    for (int i = 0; i < 10; ++i) {
        one->put(raw(key(i)), Text(u"v"));
        other->put(raw(key(9 - i)), Text(u"v"));
    }
    EXPECT_TRUE(one->equals(*other));
    EXPECT_EQ(one->compareTo(*other), 0);
    EXPECT_TRUE(one->equals(*one));
    other->put(raw(key(3)), Text(u"w"));
    EXPECT_FALSE(one->equals(*other));
    EXPECT_LT(one->compareTo(*other), 0);
    EXPECT_GT(other->compareTo(*one), 0);
    EXPECT_FALSE(one->equals(*make<HashMap>()));
    EXPECT_FALSE(one->equals(Object()));
    EXPECT_THROW(one->compareTo(Object()), CastFailedException);
    EXPECT_EQ(one->compareTo(*one), 0);
}

TEST(HashMapTest, MapComparisonEndsWithTheSizes) {
    const auto small = make<HashMap>();
    put(*small, {1});
    const auto large = make<HashMap>();
    put(*large, {1, 2, 3});
    EXPECT_EQ(small->compareTo(*large), -2);
    EXPECT_EQ(make<HashMap>()->compareTo(*large), -3);
    EXPECT_NE(large->compareTo(*small), 0);
}

TEST(HashMapTest, MapComparisonAndNullValues) {
    const auto withNull = make<HashMap>();
    withNull->put(Text(u"k"), nullptr);
    const auto withOther = make<HashMap>();
    withOther->put(Text(u"x"), nullptr);
    EXPECT_EQ(withNull->compareTo(*withOther), 1) << "a null value for a key that the other lacks";
    const auto withValue = make<HashMap>();
    withValue->put(Text(u"k"), Text(u"v"));
    EXPECT_EQ(withNull->compareTo(*withValue), -1);
    const auto same = make<HashMap>();
    same->put(Text(u"k"), nullptr);
    EXPECT_EQ(withNull->compareTo(*same), 0);
    EXPECT_TRUE(withNull->equals(*same));
    EXPECT_NE(withValue->compareTo(*withNull), 0);
}

TEST(HashMapTest, ComparisonAsksTheValueComparator) {
    const auto values = make<InitialComparator>();
    const auto one =
        make<HashMap>(collections::GetDefaultComparator().get(), values.get(), 11, 1.0f);
    one->put(Text(u"k"), Text(u"apple"));
    const auto other = make<HashMap>();
    other->put(Text(u"k"), Text(u"avocado"));
    EXPECT_TRUE(one->equals(*other));
    EXPECT_FALSE(other->equals(*one));
}

TEST(HashMapTest, PutAllTakesTheEntries) {
    const auto source = make<HashMap>();
    put(*source, {1, 2});
    const auto map = make<HashMap>();
    put(*map, {2, 3});
    map->putAll(*source);
    EXPECT_EQ(map->getSize(), 3);
    EXPECT_EQ(map->get(raw(key(1))).get(), source->get(raw(key(1))).get());
    map->putAll(*map);
    EXPECT_EQ(map->getSize(), 3);
}

TEST(HashMapTest, CopyOfAMapGetsTwiceItsSizeInBuckets) {
    const auto order = [](int count) {
        const auto source = make<HashMap>();
        for (int i = 0; i < count; ++i) {
            put(*source, {i + 6});
        }
        return keysOf(*make<HashMap>(static_cast<const Map&>(*source), 0.75f));
    };
    // 6 to 10: below 11 as they are, and the last first.
    EXPECT_EQ(order(5), (std::vector<int>{10, 9, 8, 7, 6}));
    // 6 to 11 in 12 buckets; in 11 the 11 would be last.
    EXPECT_EQ(order(6), (std::vector<int>{11, 10, 9, 8, 7, 6}));
    EXPECT_TRUE(order(0).empty());
}

TEST(HashMapTest, CopyOfAMapTakesItsSizeAndTheLoadThatIsGiven) {
    const auto source = make<HashMap>();
    put(*source, {0, 11, 22, 33, 44}); // one chain in 11 buckets
    const auto& map = static_cast<const Map&>(*source);
    const auto comparator = collections::GetDefaultComparator();
    const Reference<HashMap> never[] = {
        make<HashMap>(map, 100.0f), make<HashMap>(map, comparator.get(), comparator.get(), 100.0f)};
    const Reference<HashMap> often[] = {
        make<HashMap>(map, 0.1f), make<HashMap>(map, comparator.get(), comparator.get(), 0.1f)};
    for (const auto& copy : never) {
        put(*copy, {55, 66, 77, 88, 99});
        EXPECT_EQ(keysOf(*copy), (std::vector<int>{99, 88, 77, 66, 55, 0, 11, 22, 33, 44}))
            << "all in one chain still, the last in front; 44 was walked, and put, first";
    }
    for (const auto& copy : often) {
        EXPECT_EQ(keysOf(*copy), (std::vector<int>{44, 33, 22, 11, 0}))
            << "by value, in more buckets than there are values";
    }
}

TEST(HashMapTest, CopyOfAMapTakesComparators) {
    const auto source = make<HashMap>();
    source->put(Text(u"apple"), Text(u"red"));
    const auto comparator = make<InitialComparator>();
    const auto copy =
        make<HashMap>(static_cast<const Map&>(*source), comparator.get(), comparator.get(), 0.75f);
    EXPECT_EQ(comparator->GetRefCount(), 3u);
    EXPECT_EQ(show(copy->get(Text(u"a"))), u"red");
}

TEST(HashMapTest, CopySharesComparatorsLoadAndCapacity) {
    const auto comparator = make<InitialComparator>();
    const auto source = make<HashMap>(comparator.get(), comparator.get(), 1, 100.0f);
    for (const char16_t* const name : {u"apple", u"berry", u"cherry"}) {
        source->put(Text(name), Text(name));
    }
    const auto copy = make<HashMap>(*source);
    EXPECT_EQ(comparator->GetRefCount(), 5u);
    EXPECT_EQ(copy->getSize(), 3);
    EXPECT_EQ(show(*source->createKeySet()), u"cherry berry apple");
    EXPECT_EQ(show(*copy->createKeySet()), u"apple berry cherry") << "one chain, turned round";
    EXPECT_EQ(copy->get(Text(u"a")).get(), source->get(Text(u"a")).get());
    copy->remove(Text(u"a"));
    EXPECT_EQ(source->getSize(), 3);
}

TEST(HashMapTest, RemoveOfItsOwnKeyIsSafe) {
    const auto map = make<HashMap>();
    map->put(Text(u"a"), Text(u"1"));
    const IQVUnknown* const own = map->createKeySet()->createIterator()->next().get();
    EXPECT_EQ(show(map->remove(own)), u"1");
    EXPECT_TRUE(map->isEmpty());
}

TEST(HashMapTest, ObjectThatEndsFindsTheMapInOrder) {
    struct AtEnd : Object {
        explicit AtEnd(std::function<void()> work) : work_(std::move(work)) {}
        ~AtEnd() override { work_(); }
        std::function<void()> work_;
    };
    const auto map = make<HashMap>();
    std::vector<std::size_t> seen;
    const auto note = [&] { seen.push_back(keysOf(*map).size()); };
    for (int i = 0; i < 4; ++i) {
        map->put(raw(key(i)), raw(make<AtEnd>(note)));
    }
    map->remove(raw(key(0)));
    map->put(raw(key(1)), nullptr);
    const auto walk = map->createEntrySet()->createIterator();
    walk->next();
    walk->remove();
    EXPECT_EQ(seen, (std::vector<std::size_t>{3, 3, 2}));
    map->put(raw(key(9)), raw(make<AtEnd>([&] { put(*map, {11, 12}); })));
    map->clear();
    EXPECT_EQ(keysOf(*map), (std::vector<int>{12, 11}));
}

// --- Walks ---

TEST(HashMapIteratorTest, ShowsKeysValuesOrEntries) {
    const auto map = make<HashMap>();
    map->put(Text(u"k"), Text(u"v"));
    EXPECT_EQ(show(make<HashMapIterator>(*map, HashMapIterator::KEYS)->next()), u"k");
    EXPECT_EQ(show(make<HashMapIterator>(*map, HashMapIterator::VALUES)->next()), u"v");
    const auto entry = make<HashMapIterator>(*map, HashMapIterator::ENTRIES)->next();
    EXPECT_NE(dynamic_cast<MapEntry*>(entry.get()), nullptr);
}

TEST(HashMapIteratorTest, EndThrows) {
    const auto map = make<HashMap>();
    const auto walk = map->createEntrySet()->createIterator();
    EXPECT_FALSE(walk->hasNext());
    expectModified([&] { walk->next(); });
    put(*map, {1});
    const auto other = map->createEntrySet()->createIterator();
    other->next();
    expectModified([&] { other->next(); });
}

TEST(HashMapIteratorTest, NewKeysAndRemovalsEndIt) {
    const auto ends = [](auto change, bool expected) {
        const auto map = make<HashMap>();
        put(*map, {1, 2, 3});
        const auto walk = map->createEntrySet()->createIterator();
        walk->next();
        change(*map);
        EXPECT_TRUE(walk->hasNext());
        if (expected) {
            expectModified([&] { walk->next(); });
            expectModified([&] { walk->remove(); });
        } else {
            EXPECT_NE(walk->next().get(), nullptr);
            walk->remove();
            EXPECT_EQ(map->getSize(), 2);
        }
    };
    ends([](Map& map) { put(map, {4}); }, true);
    ends([](Map& map) { map.remove(raw(key(1))); }, true);
    ends([](Map& map) { map.createKeySet()->remove(raw(key(1))); }, true);
    ends([](Map& map) { put(map, {1}); }, false);
    ends([](Map& map) { map.remove(raw(key(9))); }, false);
    ends([](Map& map) { map.putAll(map); }, false);
}

TEST(HashMapIteratorTest, AnswersAfterARemovalByOthersAsItStood) {
    const auto map = make<HashMap>();
    put(*map, {1});
    const auto walk = map->createEntrySet()->createIterator();
    EXPECT_TRUE(walk->hasNext());
    map->remove(raw(key(1)));
    EXPECT_TRUE(walk->hasNext());
    expectModified([&] { walk->next(); });
}

TEST(HashMapIteratorTest, ValuesMayChangeDuringAWalk) {
    const auto map = make<HashMap>();
    put(*map, {1, 2, 3});
    const auto walk = map->createEntrySet()->createIterator();
    while (walk->hasNext()) {
        const auto element = walk->next();
        auto& entry = dynamic_cast<MapEntry&>(*element);
        EXPECT_EQ(show(entry.setValue(Text(u"set"))), u"v");
        EXPECT_EQ(show(map->put(entry.getKey(), Text(u"put"))), u"set");
    }
    EXPECT_EQ(show(*map->createValueCollection()), u"put put put");
}

TEST(HashMapIteratorTest, RemovesWhatItPassed) {
    const auto map = make<HashMap>(2, 100.0f);
    put(*map, {0, 1, 2, 3, 4, 5});
    const auto walk = map->createKeySet()->createIterator();
    EXPECT_THROW(walk->remove(), IllegalStateException);
    std::vector<int> left;
    while (walk->hasNext()) {
        const int number = numberOf(walk->next());
        if (number % 3 == 0) {
            walk->remove();
            EXPECT_THROW(walk->remove(), IllegalStateException);
        } else {
            left.push_back(number);
        }
    }
    EXPECT_EQ(keysOf(*map), left);
    EXPECT_EQ(left, (std::vector<int>{5, 1, 4, 2}));
    EXPECT_EQ(map->getSize(), 4);
}

TEST(HashMapIteratorTest, LookingAheadBeforeRemovingDoesNoHarm) {
    const auto map = make<HashMap>();
    put(*map, {1, 2, 50});
    const auto walk = map->createKeySet()->createIterator();
    walk->next();
    EXPECT_TRUE(walk->hasNext());
    walk->remove();
    EXPECT_EQ(keysOf(*map), (std::vector<int>{2, 1}));
    EXPECT_EQ(numberOf(walk->next()), 2);
}

TEST(HashMapIteratorTest, KeepsItsMapAlive) {
    int alive = 0;
    auto map = make<HashMap>();
    map->put(raw(key(1)), raw(make<CountedObject>(alive)));
    auto walk = map->createEntrySet()->createIterator();
    EXPECT_EQ(map->GetRefCount(), 2u);
    map = nullptr;
    EXPECT_NE(walk->next().get(), nullptr);
    EXPECT_EQ(alive, 1);
    walk = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(HashMapIteratorTest, NullKeysAndValuesComeBackAsNull) {
    const auto map = make<HashMap>();
    map->put(nullptr, nullptr);
    EXPECT_EQ(map->createKeySet()->createIterator()->next().get(), nullptr);
    EXPECT_EQ(map->createValueCollection()->createIterator()->next().get(), nullptr);
}

TEST(HashMapIteratorTest, CounterThatWentAllTheWayRoundDoesNoHarm) {
    const auto map = make<CountingMap>(1, 100.0f);
    put(*map, {1, 2, 3});
    const auto walk = map->createKeySet()->createIterator();
    EXPECT_EQ(numberOf(walk->next()), 3);
    const int changes = map->changes();
    map->remove(raw(key(2))); // where the walk would go on
    map->setChanges(changes);
    EXPECT_FALSE(walk->hasNext());
    EXPECT_THROW(walk->remove(), IllegalStateException);
    map->setChanges(std::numeric_limits<int>::max());
    put(*map, {4});
    EXPECT_EQ(map->changes(), std::numeric_limits<int>::min());
}

// --- Entries ---

TEST(HashMapEntryTest, HasNoOrderAndNoHashAsKept) {
    const auto map = make<HashMap>();
    put(*map, {5});
    const auto element = map->createEntrySet()->createIterator()->next();
    const auto& entry = dynamic_cast<const MapEntry&>(*element);
    EXPECT_EQ(entry.compareTo(Object()), 0);
    EXPECT_TRUE(entry.equals(Object()));
    EXPECT_EQ(entry.hashCode(), 0u);
}

TEST(HashMapEntryTest, OutlivesItsRemoval) {
    const auto map = make<HashMap>(1, 100.0f);
    put(*map, {1, 2, 3});
    const auto walk = map->createEntrySet()->createIterator();
    const auto first = walk->next();
    walk->remove();
    const auto second = walk->next();
    map->remove(raw(key(2)));
    EXPECT_EQ(numberOf(dynamic_cast<MapEntry&>(*first).getKey()), 3);
    EXPECT_EQ(show(dynamic_cast<MapEntry&>(*first).getValue()), u"v");
    EXPECT_EQ(numberOf(dynamic_cast<MapEntry&>(*second).getKey()), 2);
    EXPECT_EQ(dynamic_cast<MapEntry&>(*second).getValue().get(), nullptr)
        << "removal by key takes the value";
    EXPECT_EQ(keysOf(*map), std::vector<int>{1});
}

TEST(HashMapEntryTest, TakesItsPartsOver) {
    Reference<IQVUnknown> newKey(Text(u"k"));
    Reference<IQVUnknown> newValue(Text(u"v"));
    Reference<HashMapEntry> next = HashMapEntry::create(nullptr, nullptr, 0);
    const auto entry =
        make<HashMapEntry>(std::move(newKey), std::move(newValue), 7u, std::move(next));
    EXPECT_EQ(newKey.get(), nullptr);
    EXPECT_EQ(newValue.get(), nullptr);
    EXPECT_EQ(next.get(), nullptr);
    EXPECT_EQ(show(entry->getKey()), u"k");
    EXPECT_EQ(show(entry->setValue(nullptr)), u"v");
    EXPECT_EQ(entry->getValue().get(), nullptr);
}

// --- Views ---

TEST(HashMapViewTest, EntrySetContainsEqualPairs) {
    const auto map = make<HashMap>();
    map->put(Text(u"k"), Text(u"v"));
    const auto other = make<HashMap>();
    other->put(Text(u"k"), Text(u"v"));
    const auto entry = other->createEntrySet()->createIterator()->next();
    EXPECT_TRUE(map->createEntrySet()->contains(entry));
    other->put(Text(u"k"), Text(u"w"));
    EXPECT_FALSE(map->createEntrySet()->contains(entry));
    EXPECT_THROW(map->createEntrySet()->contains(Text(u"k")), CastFailedException);
    EXPECT_THROW(map->createEntrySet()->contains(nullptr), CastFailedException);
}

TEST(HashMapViewTest, EntrySetAsksTheComparatorOfEachSideTheStoredOneFirst) {
    using Asked = std::vector<std::u16string>;
    const auto keys = make<InitialComparator>();
    const auto values = make<InitialComparator>();
    const auto map = make<HashMap>(keys.get(), values.get(), 11, 1.0f);
    map->put(Text(u"apple"), Text(u"red"));
    const auto other = make<HashMap>();
    other->put(Text(u"avocado"), Text(u"rosy"));
    const auto entry = other->createEntrySet()->createIterator()->next();
    EXPECT_TRUE(map->createEntrySet()->contains(entry));
    EXPECT_EQ(keys->asked, (Asked{u"apple,avocado"}));
    EXPECT_EQ(values->asked, (Asked{u"red,rosy"}));
}

/// By address, since entries answer no order: whatever the map has its keys compared by.
TEST(HashMapViewTest, EntrySetRemovesByTheDefaultComparator) {
    const auto comparator = make<InitialComparator>();
    const auto map = make<HashMap>(comparator.get(), comparator.get(), 101, 0.75f);
    map->put(Text(u"a"), nullptr);
    map->put(Text(u"b"), nullptr);
    const auto entries = map->createEntrySet();
    EXPECT_EQ(entries->getSize(), 2);
    const auto walk = entries->createIterator();
    walk->next();
    const auto second = walk->next();
    EXPECT_TRUE(entries->remove(second));
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(show(*map->createKeySet()), u"b");
    EXPECT_THROW(entries->add(nullptr), UnsupportedOperationException);
}

TEST(HashMapViewTest, KeySetIsTheMap) {
    const auto map = make<HashMap>();
    put(*map, {1, 2, 3});
    const auto keys = map->createKeySet();
    EXPECT_EQ(keys->getSize(), 3);
    EXPECT_TRUE(keys->contains(raw(key(2))));
    EXPECT_FALSE(keys->contains(raw(key(9))));
    EXPECT_TRUE(keys->remove(raw(key(2))));
    EXPECT_FALSE(map->containsKey(raw(key(2))));
    put(*map, {7});
    EXPECT_TRUE(keys->contains(raw(key(7))));
    EXPECT_THROW(keys->add(raw(key(8))), UnsupportedOperationException);
    EXPECT_FALSE(std::as_const(*map).createKeySet()->isEmpty());
}

TEST(HashMapViewTest, ValueCollectionIsTheMap) {
    const auto map = make<HashMap>();
    map->put(Text(u"a"), Text(u"1"));
    map->put(Text(u"b"), Text(u"2"));
    const auto values = map->createValueCollection();
    EXPECT_EQ(show(*values), u"2 1");
    EXPECT_TRUE(values->contains(Text(u"2")));
    EXPECT_TRUE(values->remove(Text(u"2")));
    EXPECT_FALSE(map->containsKey(Text(u"b")));
    EXPECT_THROW(values->add(Text(u"3")), UnsupportedOperationException);
    EXPECT_EQ(std::as_const(*map).createValueCollection()->getSize(), 1);
}

TEST(HashMapViewTest, ViewsUseTheMapsComparators) {
    const auto keys = make<InitialComparator>();
    const auto values = make<InitialComparator>();
    const auto map = make<HashMap>(keys.get(), values.get(), 11, 1.0f);
    map->put(Text(u"apple"), Text(u"red"));
    EXPECT_TRUE(map->createKeySet()->containsAll(*filled<ArrayList>({u"a"})));
    EXPECT_TRUE(map->createValueCollection()->containsAll(*filled<ArrayList>({u"r"})));
    EXPECT_TRUE(map->createValueCollection()->removeAll(*filled<ArrayList>({u"r"})));
    EXPECT_TRUE(map->isEmpty());
}

TEST(HashMapViewTest, ViewsRemoveByTheComparatorOfTheirSide) {
    using Asked = std::vector<std::u16string>;
    const auto keys = make<InitialComparator>();
    const auto values = make<InitialComparator>();
    const auto map = make<HashMap>(keys.get(), values.get(), 11, 1.0f);
    map->put(Text(u"apple"), Text(u"red"));
    EXPECT_TRUE(map->createValueCollection()->remove(Text(u"r")));
    EXPECT_EQ(keys->asked, Asked());
    EXPECT_EQ(values->asked, (Asked{u"red,r"}));
    map->put(Text(u"apple"), Text(u"red"));
    values->asked.clear();
    EXPECT_TRUE(map->createKeySet()->remove(Text(u"a")));
    EXPECT_EQ(keys->asked, (Asked{u"apple,a"}));
    EXPECT_EQ(values->asked, Asked());
}

TEST(HashMapViewTest, RetainAllOfKeysFailsBehindItsOwnRemovalAsKept) {
    const auto map = make<HashMap>();
    for (const char16_t* const name : {u"a", u"b", u"c"}) {
        map->put(Text(name), nullptr);
    }
    expectModified([&] { map->createKeySet()->retainAll(*filled<ArrayList>({u"a", u"b"})); });
    EXPECT_EQ(show(*map->createKeySet()), u"b a");
    EXPECT_TRUE(map->createKeySet()->retainAll(*filled<ArrayList>({u"b"})))
        << "only the last one goes";
}

TEST(HashMapViewTest, ViewsKeepTheMapAlive) {
    int alive = 0;
    auto map = make<HashMap>();
    map->put(raw(key(1)), raw(make<CountedObject>(alive)));
    auto entries = map->createEntrySet();
    auto keys = map->createKeySet();
    auto values = map->createValueCollection();
    EXPECT_EQ(map->GetRefCount(), 4u);
    map = nullptr;
    EXPECT_EQ(keys->getSize() + values->getSize() + entries->getSize(), 3);
    entries = nullptr;
    keys = nullptr;
    EXPECT_EQ(alive, 1);
    values = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(HashMapViewTest, ViewsAreMadeAnew) {
    const auto map = make<HashMap>();
    EXPECT_NE(map->createKeySet().get(), map->createKeySet().get());
    const auto keys = map->createKeySet();
    EXPECT_FALSE(keys->equals(dynamic_cast<const Object&>(*map->createKeySet())));
    EXPECT_TRUE(keys->equals(dynamic_cast<const Object&>(*keys)));
}

} // namespace
