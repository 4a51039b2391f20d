#include "qv/collections/IntegerHashMap.h"

#include "tests/support/CountedObject.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace qv;
using collections::IntegerHashMap;
using support::CountedObject;

namespace {

constexpr int least = std::numeric_limits<int>::min();
constexpr int greatest = std::numeric_limits<int>::max();

std::vector<int> keysOf(const IntegerHashMap& map) {
    std::vector<int> keys;
    const auto set = map.createKeySet();
    for (const Integer32& key : *set) {
        keys.push_back(key);
    }
    return keys;
}

TEST(IntegerHashMapTest, KeepsWhatIsPut) {
    IntegerHashMap map;
    const auto one = make<Object>();
    const auto two = make<Object>();
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(map.put(1, one).get(), nullptr);
    EXPECT_EQ(map.get(1).get(), one.get());
    EXPECT_EQ(map.get(2).get(), nullptr);
    EXPECT_EQ(map.put(1, two).get(), one.get());
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_FALSE(map.isEmpty());
    EXPECT_EQ(one->GetRefCount(), 1u);
    EXPECT_EQ(map.remove(1).get(), two.get());
    EXPECT_EQ(map.remove(1).get(), nullptr);
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(two->GetRefCount(), 1u);
}

TEST(IntegerHashMapTest, EveryNumberIsAKey) {
    IntegerHashMap map;
    const auto value = make<Object>();
    for (const int key : {least, -1, 0, 1, greatest}) {
        map.put(key, value);
    }
    EXPECT_EQ(map.getSize(), 5);
    for (const int key : {least, -1, 0, 1, greatest}) {
        EXPECT_EQ(map.get(key).get(), value.get()) << key;
    }
    EXPECT_EQ(map.get(2).get(), nullptr);
}

TEST(IntegerHashMapTest, NegativeKeysStayNegativeInTheKeySet) {
    IntegerHashMap map;
    map.put(-5, make<Object>());
    map.put(least, make<Object>());
    const auto keys = map.createKeySet();
    EXPECT_TRUE(keys->contains(make<Integer32>(-5)));
    EXPECT_TRUE(keys->contains(make<Integer32>(least)));
    EXPECT_FALSE(keys->contains(make<Integer32>(5)));
}

TEST(IntegerHashMapTest, NegativeKeysArePlacedUnsigned) {
    // As unsigned numbers -5 and -106 leave 2^32 mod 101 less 5; as signed ones they leave others.
    // In one bucket the newer is added first, and stands behind the other in the set.
    IntegerHashMap map;
    map.put(-5, make<Object>());
    map.put(-106, make<Object>());
    EXPECT_EQ(keysOf(map), (std::vector<int>{-5, -106}));
}

TEST(IntegerHashMapTest, KeySetIsASnapshotInTheOrderOfASet) {
    IntegerHashMap map(2, 100.0f);
    for (const int key : {3, 1, 2}) {
        map.put(key, make<Object>());
    }
    const auto keys = map.createKeySet();
    map.remove(1);
    EXPECT_EQ(keys->getSize(), 3);
    EXPECT_EQ(keysOf(map), (std::vector<int>{3, 2}));
}

TEST(IntegerHashMapTest, NullValueIsAnEntry) {
    IntegerHashMap map;
    map.put(1, nullptr);
    EXPECT_EQ(map.get(1).get(), nullptr);
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_EQ(keysOf(map), std::vector<int>{1});
}

TEST(IntegerHashMapTest, ClearKeepsTheStaleSize) {
    int alive = 0;
    IntegerHashMap map;
    map.put(1, make<CountedObject>(alive));
    map.clear();
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_FALSE(map.isEmpty());
    EXPECT_EQ(map.get(1).get(), nullptr);
    EXPECT_TRUE(keysOf(map).empty());
    map.put(2, nullptr);
    EXPECT_EQ(map.getSize(), 2);
}

TEST(IntegerHashMapTest, HoldsManyKeys) {
    IntegerHashMap map(1, 0.75f);
    const auto value = make<Object>();
    for (int i = -3000; i < 3000; ++i) {
        map.put(i, value);
    }
    EXPECT_EQ(map.getSize(), 6000);
    EXPECT_EQ(map.createKeySet()->getSize(), 6000);
    for (int i = -3000; i < 3000; ++i) {
        ASSERT_EQ(map.remove(i).get(), value.get());
    }
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(value->GetRefCount(), 1u);
}

TEST(IntegerHashMapTest, NegativeCapacityIsNoMemory) {
    EXPECT_THROW(IntegerHashMap(-1, 0.75f), std::bad_alloc);
}

} // namespace
