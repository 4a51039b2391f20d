#include "qv/collections/qvcom/HashSet.h"

#include "tests/qv/collections/CollectionElements.h"

using namespace elements;

namespace {

TEST(HashSetTest, HoldsEachElementOnce) {
    const auto set = make<HashSet>();
    const Text first(u"a");
    const Text again(u"a");
    EXPECT_TRUE(set->isEmpty());
    EXPECT_TRUE(set->add(first));
    EXPECT_FALSE(set->add(again));
    EXPECT_EQ(set->getSize(), 1);
    EXPECT_EQ(set->createIterator()->next().get(), first) << "the first stays";
    EXPECT_EQ(again.string->GetRefCount(), 1u);
    EXPECT_TRUE(set->contains(again));
    EXPECT_FALSE(set->contains(Text(u"b")));
}

TEST(HashSetTest, RemovesByEquality) {
    const auto set = filled<HashSet>({u"a", u"b"});
    EXPECT_TRUE(set->remove(Text(u"a")));
    EXPECT_FALSE(set->remove(Text(u"a")));
    EXPECT_EQ(show(*set), u"b");
}

TEST(HashSetTest, NullIsAnElement) {
    const auto set = make<HashSet>();
    EXPECT_TRUE(set->add(nullptr));
    EXPECT_FALSE(set->add(nullptr));
    EXPECT_TRUE(set->contains(nullptr));
    EXPECT_EQ(show(*set), u"null");
    EXPECT_TRUE(set->remove(nullptr));
    EXPECT_TRUE(set->isEmpty());
}

TEST(HashSetTest, OrderIsThatOfTheTable) {
    // One-unit texts hash to their unit: 97, 98 and 99 in 101 buckets, 101 in the first.
    EXPECT_EQ(show(*filled<HashSet>({u"a", u"c", u"e", u"b"})), u"c b a e");
}

TEST(HashSetTest, WalkRemovesWhatItPassed) {
    const auto set = filled<HashSet>({u"a", u"b", u"c"});
    const auto walk = set->createIterator();
    walk->next();
    walk->next();
    walk->remove();
    EXPECT_EQ(show(*set), u"c a");
    set->add(Text(u"x"));
    expectModified([&] { walk->next(); });
}

TEST(HashSetTest, AddingAKnownElementDoesNotDisturbAWalk) {
    const auto set = filled<HashSet>({u"a", u"b"});
    const auto walk = set->createIterator();
    walk->next();
    set->add(Text(u"a"));
    EXPECT_EQ(show(walk->next()), u"a");
}

TEST(HashSetTest, ClearKeepsTheStaleSize) {
    const auto set = filled<HashSet>({u"a", u"b"});
    set->clear();
    EXPECT_EQ(set->getSize(), 2);
    EXPECT_FALSE(set->contains(Text(u"a")));
    EXPECT_EQ(show(*set), u"");
    EXPECT_TRUE(set->add(Text(u"a")));
    EXPECT_EQ(set->getSize(), 3);
}

TEST(HashSetTest, SetsOfEqualElementsAreEqual) {
    const auto set = filled<HashSet>({u"a", u"b", u"c"});
    EXPECT_TRUE(set->equals(*set));
    EXPECT_TRUE(set->equals(*filled<HashSet>({u"c", u"b", u"a"})));
    EXPECT_FALSE(set->equals(*filled<HashSet>({u"a", u"b"})));
    EXPECT_FALSE(set->equals(*filled<HashSet>({u"a", u"b", u"x"})));
    EXPECT_EQ(filled<HashSet>({u"a"})->compareTo(*set), -2);
    EXPECT_EQ(set->compareTo(*set), 0);
}

TEST(HashSetTest, EqualsOfAnotherKindThrowsAsKept) {
    const auto set = filled<HashSet>({u"a"});
    EXPECT_THROW(set->equals(*filled<ArrayList>({u"a"})), CastFailedException);
    EXPECT_THROW(set->equals(Object()), CastFailedException);
    EXPECT_THROW(set->compareTo(*make<HashMap>()), CastFailedException);
}

TEST(HashSetTest, HashIsAlwaysZeroAsKept) {
    EXPECT_EQ(filled<HashSet>({u"a", u"b"})->hashCode(), 0u);
    EXPECT_EQ(make<HashSet>()->hashCode(), 0u);
}

TEST(HashSetTest, CollectsTheElementsOfAnother) {
    const auto source = filled<ArrayList>({u"a", u"b", u"a"});
    const auto set = make<HashSet>(static_cast<const Collection&>(*source));
    EXPECT_EQ(set->getSize(), 2);
    EXPECT_EQ(source->get(0)->AddRef(), 4u);
    source->get(0)->Release();
    const auto comparator = make<InitialComparator>();
    const auto byInitial = make<HashSet>(
        static_cast<const Collection&>(*filled<ArrayList>({u"aa", u"ab", u"b"})), comparator.get());
    EXPECT_EQ(show(*byInitial), u"b aa");
}

TEST(HashSetTest, CopySharesElementsAndComparator) {
    const auto comparator = make<InitialComparator>();
    const auto set = make<HashSet>(comparator.get());
    fill(*set, {u"apple", u"berry"});
    const auto copy = make<HashSet>(*set);
    EXPECT_EQ(show(*copy), u"berry apple");
    EXPECT_TRUE(copy->contains(Text(u"avocado")));
    copy->remove(Text(u"b"));
    EXPECT_EQ(set->getSize(), 2);
    EXPECT_EQ(comparator->GetRefCount(), 5u) << "each set and each map";
}

TEST(HashSetTest, ElementsAreReleased) {
    int alive = 0;
    {
        const auto set = make<HashSet>();
        for (int i = 0; i < 300; ++i) {
            EXPECT_TRUE(set->add(raw(make<CountedObject>(alive))));
        }
        EXPECT_EQ(alive, 300);
        EXPECT_FALSE(set->addAll(*set));
    }
    EXPECT_EQ(alive, 0);
}

TEST(HashSetTest, ComparatorsFailureIsThrown) {
    const auto comparator = make<FailingComparator>();
    const auto set = make<HashSet>(comparator.get());
    set->add(Text(u"a"));
    comparator->hashFailure = QV_E_INVALIDARG;
    EXPECT_THROW(set->add(Text(u"b")), ResultException);
    EXPECT_THROW(set->contains(Text(u"b")), ResultException);
    EXPECT_THROW(set->remove(Text(u"b")), ResultException);
    EXPECT_EQ(set->getSize(), 1);
}

TEST(HashSetTest, BulkOperations) {
    const auto set = filled<HashSet>({u"a", u"b", u"c"});
    EXPECT_TRUE(set->containsAll(*filled<ArrayList>({u"a", u"a"})));
    EXPECT_TRUE(set->removeAll(*filled<ArrayList>({u"a", u"x"})));
    EXPECT_EQ(show(*set), u"c b");
    EXPECT_FALSE(set->retainAll(*filled<ArrayList>({u"b", u"c"})));
    EXPECT_TRUE(set->retainAll(*filled<ArrayList>({u"c"}))) << "only the last one goes";
    EXPECT_EQ(show(*set), u"c");
}

} // namespace
