#include "qv/Str1HashMap.h"

#include "tests/support/CountedObject.h"
#include "tests/support/Printing.h"

#include <gtest/gtest.h>
#include <limits>

using namespace qv;

namespace {

using Map = Str1HashMap<Str1>;

Str1 key(int number) { return Str1Copy(String(u"key").append(String::valueOf(number))); }

template <class V>
std::vector<std::u16string> keys(const Str1HashMap<V>& map) {
    std::vector<std::u16string> result;
    typename Str1HashMap<V>::KeyValueIterator iterator;
    map.iteratorInit(iterator);
    while (map.iteratorHasNext(iterator)) {
        const Str1* found = nullptr;
        const V* value = nullptr;
        map.iteratorNext(iterator, &found, &value);
        result.push_back(support::units(*found));
    }
    return result;
}

TEST(Str1HashMapTest, KeepsWhatIsPut) {
    Map map;
    EXPECT_TRUE(map.isEmpty());
    map.put(Str1Copy(u"a"), Str1Copy(u"1"));
    map.put(Str1Copy(u"b"), Str1Copy(u"2"));
    EXPECT_EQ(map.getSize(), 2);
    Str1 value;
    EXPECT_TRUE(map.get(Str1Copy(u"a"), value));
    EXPECT_EQ(value, u"1");
    EXPECT_TRUE(map.containsKey(Str1Copy(u"b")));
    EXPECT_FALSE(map.containsKey(Str1Copy(u"B")));
    EXPECT_FALSE(map.get(Str1Copy(u"c"), value));
    EXPECT_EQ(value, u"1") << "untouched";
}

TEST(Str1HashMapTest, EmptyKeyIsAKey) {
    Map map;
    map.put(Str1(), Str1Copy(u"empty"));
    Str1 value;
    EXPECT_TRUE(map.get(Str1(), value));
    EXPECT_EQ(value, u"empty");
}

TEST(Str1HashMapTest, PutOnAKnownKeyChangesTheValueOnly) {
    Map map;
    map.put(Str1Copy(u"a"), Str1Copy(u"1"));
    const int changes = map.getChangeCount();
    Str1 old;
    map.put(Str1Copy(u"a"), Str1Copy(u"2"), &old);
    EXPECT_EQ(old, u"1");
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_EQ(map.getChangeCount(), changes);
    map.put(Str1Copy(u"b"), Str1(), &old);
    EXPECT_EQ(old, u"1") << "a new key has no old value";
    EXPECT_EQ(map.getChangeCount(), changes + 1);
}

TEST(Str1HashMapTest, RemoveUnlinksAndGivesTheValue) {
    Map map(1, 100.0f); // one chain
    for (int i = 0; i < 5; ++i) {
        map.put(key(i), Str1Copy(String::valueOf(i)));
    }
    Str1 old;
    map.remove(key(2), &old);
    EXPECT_EQ(old, u"2");
    EXPECT_EQ(map.getSize(), 4);
    EXPECT_FALSE(map.containsKey(key(2)));
    map.remove(key(4));
    map.remove(key(0));
    map.remove(key(99), &old);
    EXPECT_EQ(old, u"2");
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"key3", u"key1"}));
}

TEST(Str1HashMapTest, GrowsWhenANewKeyMeetsTheThreshold) {
    Map map;
    EXPECT_EQ(Map::DEFAULT_CAPACITY, 101);
    EXPECT_EQ(Map::DEFAULT_LOAD, 0.75f);
    for (int i = 0; i < 75; ++i) {
        map.put(key(i), Str1());
    }
    EXPECT_EQ(map.getCapacity(), 101);
    map.put(key(0), Str1());
    EXPECT_EQ(map.getCapacity(), 101) << "a known key does not grow it";
    map.put(key(75), Str1());
    EXPECT_EQ(map.getCapacity(), 203);
    EXPECT_EQ(map.getSize(), 76);
    for (int i = 0; i < 76; ++i) {
        EXPECT_TRUE(map.containsKey(key(i)));
    }
}

TEST(Str1HashMapTest, OrderIsBucketsFirstToLastAndChainsFromTheNewest) {
    Map map(2, 100.0f);
    // One-unit keys hash to their unit: even ones stand in bucket 0, odd ones in bucket 1.
    for (const char16_t* text : {u"a", u"b", u"c", u"d"}) {
        map.put(Str1Copy(text), Str1());
    }
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"d", u"b", u"c", u"a"}));
}

/// True if two keys that differ in one unit only stand in one chain, where the one put last comes
/// first.
bool shareAChain(int length, std::size_t changed) {
    std::u16string first(static_cast<std::size_t>(length), u'a');
    std::u16string second = first;
    second[changed] = u'b';
    const auto order = [](const std::u16string& one, const std::u16string& other) {
        Map map(100003, 1.0f);
        map.put(Str1Copy(one.c_str()), Str1());
        map.put(Str1Copy(other.c_str()), Str1());
        return keys(map);
    };
    return order(first, second) != order(second, first);
}

TEST(Str1HashMapTest, LongKeysAreSampled) {
    EXPECT_TRUE(shareAChain(64, 1)) << "every other unit counts from 64 units on";
    EXPECT_FALSE(shareAChain(64, 0));
    EXPECT_FALSE(shareAChain(64, 2));
    EXPECT_FALSE(shareAChain(63, 1)) << "shorter keys count whole";
    EXPECT_FALSE(shareAChain(63, 62));
    EXPECT_TRUE(shareAChain(96, 2)) << "every third";
    EXPECT_FALSE(shareAChain(96, 3));
}

TEST(Str1HashMapTest, KeysOfOneHashAreToldApart) {
    std::u16string text(64, u'a');
    Map map;
    map.put(Str1Copy(text.c_str()), Str1Copy(u"1"));
    text[1] = u'b';
    EXPECT_FALSE(map.containsKey(Str1Copy(text.c_str())));
    map.put(Str1Copy(text.c_str()), Str1Copy(u"2"));
    EXPECT_EQ(map.getSize(), 2);
    Str1 value;
    EXPECT_TRUE(map.get(Str1Copy(text.c_str()), value));
    EXPECT_EQ(value, u"2");
}

TEST(Str1HashMapTest, GrowthReversesChainsFromTheLastBucket) {
    Map map(1, 2.0f);
    for (const char16_t* text : {u"a", u"d"}) { // both leave the same remainder by 3
        map.put(Str1Copy(text), Str1());
    }
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"d", u"a"}));
    map.put(Str1Copy(u"b"), Str1()); // 97 and 100 leave 1, 98 leaves 2
    EXPECT_EQ(map.getCapacity(), 3);
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"a", u"d", u"b"}));
}

TEST(Str1HashMapTest, GrowthWalksTheOldBucketsFromTheLast) {
    Map map(2, 1.0f);
    map.put(Str1Copy(u"a"), Str1()); // 97 stands in bucket 1
    map.put(Str1Copy(u"f"), Str1()); // 102 in bucket 0
    map.put(Str1Copy(u"b"), Str1());
    EXPECT_EQ(map.getCapacity(), 5);
    // 97 and 102 leave 2 by 5, and the one moved last comes first; 98 leaves 3.
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"f", u"a", u"b"}));
}

TEST(Str1HashMapTest, KeysHashByThirtySevens) {
    Map map(1000, 1.0f);
    // 97 * 37 + 98 is 3687, 98 * 37 + 97 is 3723, 99 * 37 + 37 is 3700, 108 * 37 + 4 is 4000.
    for (const char16_t* text : {u"ab", u"ba", u"c%", u"l\x0004"}) {
        map.put(Str1Copy(text), Str1());
    }
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"l\x0004", u"ab", u"c%", u"ba"}));
    Map small(3, 1.0f);
    small.put(Str1Copy(u"ab"), Str1()); // bucket 0
    small.put(Str1Copy(u"bb"), Str1()); // 98 * 37 + 98 is 3724: bucket 1
    EXPECT_EQ(keys(small), (std::vector<std::u16string>{u"ab", u"bb"}));
}

TEST(Str1HashMapTest, EmptyKeyStandsInTheFirstBucket) {
    Map map(10, 1.0f);
    map.put(Str1(), Str1());
    map.put(Str1Copy(u"d"), Str1()); // 100: bucket 0, in front of what stands there
    map.put(Str1Copy(u"e"), Str1()); // 101: bucket 1
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"d", u"", u"e"}));
}

TEST(Str1HashMapTest, ClearKeepsTheCapacity) {
    Map map;
    for (int i = 0; i < 200; ++i) {
        map.put(key(i), Str1());
    }
    const int capacity = map.getCapacity();
    map.clear();
    EXPECT_EQ(map.getSize(), 0);
    EXPECT_EQ(map.getCapacity(), capacity);
    EXPECT_TRUE(keys(map).empty());
    map.put(key(1), Str1());
    EXPECT_EQ(map.getSize(), 1);
}

TEST(Str1HashMapTest, OnlyNewKeysAreCountedAsChanges) {
    Map map;
    map.put(Str1Copy(u"a"), Str1());
    map.put(Str1Copy(u"b"), Str1());
    EXPECT_EQ(map.getChangeCount(), 2);
    map.remove(Str1Copy(u"a"));
    map.remove(Str1Copy(u"none"));
    map.clear();
    EXPECT_EQ(map.getChangeCount(), 2);
    map.put(Str1Copy(u"a"), Str1());
    EXPECT_EQ(map.getChangeCount(), 3);
}

TEST(Str1HashMapTest, LoadBeyondAllNumbersNeverGrowsTheTable) {
    for (const float load :
         {1e30f, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        Map map(3, load);
        for (int i = 0; i < 50; ++i) {
            map.put(key(i), Str1());
        }
        EXPECT_EQ(map.getCapacity(), 3);
        EXPECT_EQ(map.getSize(), 50);
        EXPECT_TRUE(map.containsKey(key(49)));
    }
}

TEST(Str1HashMapTest, LongChainEndsWithoutRecursion) {
    Str1HashMap<void*> map(1, 1e9f);
    for (int i = 0; i < 3000; ++i) {
        map.put(key(i), nullptr);
    }
    EXPECT_EQ(map.getSize(), 3000);
}

TEST(Str1HashMapTest, ValuesAreHeldAndReleased) {
    int alive = 0;
    {
        Str1HashMap<CopyReference<ComObject>> map;
        map.put(Str1Copy(u"a"), new support::CountedObject(alive));
        map.put(Str1Copy(u"b"), new support::CountedObject(alive));
        CopyReference<ComObject> value;
        EXPECT_TRUE(map.get(Str1Copy(u"a"), value));
        EXPECT_EQ(value->GetRefCount(), 2u);
        map.remove(Str1Copy(u"a"));
        EXPECT_EQ(value->GetRefCount(), 1u);
        map.put(Str1Copy(u"b"), nullptr);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(Str1HashMapTest, KeyInsideAnotherObjectIsCopied) {
    Map map;
    {
        Str1Fixed<128> text(u"short lived");
        map.put(text, Str1());
    }
    EXPECT_TRUE(map.containsKey(Str1Copy(u"short lived")));
}

TEST(Str1HashMapTest, KeyOfTheCallersIsNotChangedByLaterWrites) {
    Map map;
    Str1 text = Str1Copy(u"key");
    map.put(text, Str1());
    text.append(u"!");
    EXPECT_TRUE(map.containsKey(Str1Copy(u"key")));
}

TEST(Str1HashMapLCTest, KeysAreKnownInLowerCase) {
    Str1HashMapLC<Str1> map;
    map.put(Str1Copy(u"HeLLo"), Str1Copy(u"1"));
    Str1 value;
    EXPECT_TRUE(map.get(Str1Copy(u"hEllO"), value));
    EXPECT_EQ(value, u"1");
    EXPECT_EQ(keys(map), (std::vector<std::u16string>{u"hello"}));
    map.put(Str1Copy(u"HELLO"), Str1Copy(u"2"));
    EXPECT_EQ(map.getSize(), 1);
    map.remove(Str1Copy(u"Hello"));
    EXPECT_TRUE(map.isEmpty());
}

} // namespace
