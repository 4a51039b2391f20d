#include "qv/collections/StringHashMap.h"

#include "qv/Exceptions.h"
#include "tests/support/CountedObject.h"
#include "tests/support/Printing.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

using namespace qv;
using collections::StringHashMap;
using support::CountedObject;
using support::units;

namespace {

std::vector<std::u16string> keysOf(const StringHashMap& map) {
    std::vector<std::u16string> keys;
    const auto set = map.createKeySet();
    for (const String& key : *set) {
        keys.push_back(units(key));
    }
    return keys;
}

String keyText(int number) { return String(u"key").append(String::valueOf(number)); }

TEST(StringHashMapTest, KeepsWhatIsPut) {
    StringHashMap map;
    const auto value = make<Object>();
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(map.put(u"a", value).get(), nullptr);
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_FALSE(map.isEmpty());
    EXPECT_EQ(map.get(String(u"a")).get(), value.get());
    EXPECT_EQ(map.get(String(u"b")).get(), nullptr);
    EXPECT_TRUE(map.containsKey(String(u"a")));
    EXPECT_FALSE(map.containsKey(String(u"A")));
    EXPECT_EQ(value->GetRefCount(), 2u);
}

TEST(StringHashMapTest, KeysMayBeCountedOrTerminated) {
    StringHashMap map;
    const auto value = make<Object>();
    map.put(u"key", value);
    EXPECT_EQ(map.get(u"key", -1).get(), value.get());
    EXPECT_EQ(map.get(u"keyx", 3).get(), value.get());
    EXPECT_EQ(map.get(u"keyx", -1).get(), nullptr);
    EXPECT_EQ(map.get(u"key", 2).get(), nullptr);
    EXPECT_TRUE(map.containsKey(u"key", -1));
    EXPECT_TRUE(map.containsKey(u"keyx", 3));
    EXPECT_FALSE(map.containsKey(u"ke", -1));
}

TEST(StringHashMapTest, EmptyAndNullKeysAreTheEmptyText) {
    StringHashMap map;
    const auto value = make<Object>();
    map.put(String(), value);
    EXPECT_EQ(map.get(u"", -1).get(), value.get());
    EXPECT_EQ(map.get(u"abc", 0).get(), value.get());
    EXPECT_EQ(map.get(nullptr, -1).get(), value.get());
    EXPECT_EQ(map.get(nullptr, 0).get(), value.get());
    EXPECT_EQ(map.get(u"abc", std::numeric_limits<int>::min()).get(), value.get());
}

TEST(StringHashMapTest, KeysMayHoldTerminatorsAndAnyUnit) {
    StringHashMap map;
    const auto value = make<Object>();
    map.put(String(u"a\0b", 3), value);
    EXPECT_EQ(map.get(u"a\0b", 3).get(), value.get());
    EXPECT_EQ(map.get(u"a", -1).get(), nullptr);
    map.put(String(u"\xD800\x4E2D\xFFFF"), value);
    EXPECT_EQ(map.get(u"\xD800\x4E2D\xFFFF", -1).get(), value.get());
}

TEST(StringHashMapTest, PutOnAKnownKeyGivesTheOldValue) {
    StringHashMap map;
    const auto one = make<Object>();
    const auto two = make<Object>();
    map.put(u"a", one);
    EXPECT_EQ(map.put(u"a", two).get(), one.get());
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_EQ(one->GetRefCount(), 1u);
    EXPECT_EQ(map.put(u"a", nullptr).get(), two.get());
    EXPECT_EQ(map.put(u"a", one).get(), nullptr);
}

TEST(StringHashMapTest, NullValueCountsAsAbsentAsKept) {
    StringHashMap map;
    map.put(u"a", nullptr);
    EXPECT_FALSE(map.containsKey(u"a", -1));
    EXPECT_FALSE(map.containsKey(String(u"a")));
    EXPECT_EQ(map.get(u"a", -1).get(), nullptr);
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_EQ(keysOf(map), std::vector<std::u16string>{u"a"});
}

TEST(StringHashMapTest, RemoveGivesTheValue) {
    StringHashMap map(1, 100.0f);
    const auto value = make<Object>();
    for (int i = 0; i < 5; ++i) {
        map.put(keyText(i), value);
    }
    EXPECT_EQ(map.remove(keyText(2)).get(), value.get());
    EXPECT_EQ(map.remove(keyText(2)).get(), nullptr);
    EXPECT_EQ(map.getSize(), 4);
    EXPECT_EQ(value->GetRefCount(), 5u);
    EXPECT_FALSE(map.containsKey(keyText(2)));
    EXPECT_TRUE(map.containsKey(keyText(0)));
    EXPECT_TRUE(map.containsKey(keyText(4)));
}

TEST(StringHashMapTest, KeyIsTheStringAsItWas) {
    StringHashMap map;
    String key(u"a");
    map.put(key, make<Object>());
    key.append(u"b");
    EXPECT_TRUE(map.containsKey(u"a", -1));
    EXPECT_FALSE(map.containsKey(u"ab", -1));
}

TEST(StringHashMapTest, ClearKeepsTheStaleSize) {
    int alive = 0;
    StringHashMap map;
    map.put(u"a", make<CountedObject>(alive));
    map.clear();
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(map.getSize(), 1);
    EXPECT_FALSE(map.isEmpty());
    EXPECT_FALSE(map.containsKey(u"a", -1));
    EXPECT_TRUE(keysOf(map).empty());
    map.put(u"a", make<CountedObject>(alive));
    EXPECT_EQ(map.getSize(), 2);
    EXPECT_TRUE(map.containsKey(u"a", -1));
}

TEST(StringHashMapTest, KeySetIsASnapshot) {
    StringHashMap map;
    map.put(u"a", make<Object>());
    const auto keys = map.createKeySet();
    map.put(u"b", make<Object>());
    map.remove(u"a");
    EXPECT_EQ(keys->getSize(), 1);
    EXPECT_TRUE(keys->contains(make<String>(u"a")));
    EXPECT_EQ(map.createKeySet()->getSize(), 1);
}

TEST(StringHashMapTest, KeySetHasTheOrderOfASet) {
    StringHashMap map(3, 100.0f); // 97, 98, 99 and 100: in the set they stand in the last buckets
    for (const char16_t* const key : {u"a", u"d", u"b", u"c"}) {
        map.put(key, make<Object>());
    }
    EXPECT_EQ(keysOf(map), (std::vector<std::u16string>{u"d", u"c", u"b", u"a"}));
}

TEST(StringHashMapTest, KeySetAddsFromTheFirstBucketAndTheHeads) {
    // 97 and 198 share a bucket of the set, where the one added last comes first. In the map of 101
    // buckets they share one too, the newer in front.
    StringHashMap map;
    map.put(u"a", make<Object>());
    map.put(u"\x00C6", make<Object>());
    EXPECT_EQ(keysOf(map), (std::vector<std::u16string>{u"a", u"\x00C6"}));
    // In a map of 200 buckets 97 stands before 198 and is added first.
    StringHashMap wide(200, 1.0f);
    wide.put(u"\x00C6", make<Object>());
    wide.put(u"a", make<Object>());
    EXPECT_EQ(keysOf(wide), (std::vector<std::u16string>{u"\x00C6", u"a"}));
}

TEST(StringHashMapTest, GrowsAtTheThreshold) {
    // 97 and 198 share a bucket of 101, with the newer in front; in 203 they stand apart, the lower
    // first. The set has 101 buckets and shows the one added last first.
    const auto lowFirst = [](int count) {
        StringHashMap map(101, 0.1f); // the eleventh key grows it
        map.put(u"a", make<Object>());
        map.put(u"\x00C6", make<Object>());
        for (int i = 0; i < count - 2; ++i) {
            map.put(keyText(i), make<Object>());
        }
        const auto keys = keysOf(map);
        return std::find(keys.begin(), keys.end(), u"a") <
               std::find(keys.begin(), keys.end(), u"\x00C6");
    };
    EXPECT_TRUE(lowFirst(10));
    EXPECT_FALSE(lowFirst(11));
}

TEST(StringHashMapTest, HoldsManyKeys) {
    StringHashMap map;
    const auto value = make<Object>();
    for (int i = 0; i < 5000; ++i) {
        EXPECT_EQ(map.put(keyText(i), value).get(), nullptr);
    }
    EXPECT_EQ(map.getSize(), 5000);
    for (int i = 0; i < 5000; ++i) {
        ASSERT_TRUE(map.containsKey(keyText(i)));
    }
    EXPECT_EQ(map.createKeySet()->getSize(), 5000);
    for (int i = 0; i < 5000; ++i) {
        ASSERT_NE(map.remove(keyText(i)).get(), nullptr);
    }
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(value->GetRefCount(), 1u);
}

TEST(StringHashMapTest, LongKeysAreSampledAndToldApart) {
    std::u16string text(64, u'a');
    StringHashMap map;
    const auto one = make<Object>();
    const auto two = make<Object>();
    map.put(String(text.c_str()), one);
    text[1] = u'b';
    EXPECT_FALSE(map.containsKey(text.c_str(), -1));
    map.put(String(text.c_str()), two);
    EXPECT_EQ(map.getSize(), 2);
    EXPECT_EQ(map.get(text.c_str(), -1).get(), two.get());
    text[1] = u'a';
    EXPECT_EQ(map.get(text.c_str(), 64).get(), one.get());
    EXPECT_EQ(String(std::u16string(64, u'a').c_str()).hashCode(),
              String((u"ab" + std::u16string(62, u'a')).c_str()).hashCode());
}

TEST(StringHashMapTest, NegativeCapacityIsNoMemory) {
    EXPECT_THROW(StringHashMap(-1, 0.75f), std::bad_alloc);
}

TEST(StringHashMapTest, ObjectThatEndsFindsTheMapInOrder) {
    struct AtEnd : Object {
        AtEnd(StringHashMap& map, int& seen) : map_(map), seen_(seen) {}
        ~AtEnd() override { seen_ = map_.createKeySet()->getSize(); }
        StringHashMap& map_;
        int& seen_;
    };
    StringHashMap map;
    int seen = -1;
    map.put(u"a", make<AtEnd>(map, seen));
    map.put(u"b", nullptr);
    map.remove(u"a");
    EXPECT_EQ(seen, 1);
    map.put(u"a", make<AtEnd>(map, seen));
    map.put(u"a", nullptr);
    EXPECT_EQ(seen, 2);
    map.put(u"a", make<AtEnd>(map, seen));
    map.clear();
    EXPECT_EQ(seen, 0);
}

} // namespace
