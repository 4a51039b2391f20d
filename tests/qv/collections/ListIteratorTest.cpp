#include "tests/qv/collections/CollectionElements.h"

#include <random>
#include <utility>

using namespace elements;

namespace {

template <class List>
class ListIteratorTest : public testing::Test {};
using Lists = testing::Types<ArrayList, LinkedList, Counting<LinkedList>, SmallList>;
TYPED_TEST_SUITE(ListIteratorTest, Lists);

TYPED_TEST(ListIteratorTest, WalksForwardAndBackward) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    const auto walk = list->createListIterator(0);
    EXPECT_FALSE(walk->hasPrevious());
    EXPECT_EQ(walk->nextIndex(), 0);
    EXPECT_EQ(walk->previousIndex(), -1);
    EXPECT_EQ(show(walk->next()), u"a");
    EXPECT_EQ(show(walk->next()), u"b");
    EXPECT_EQ(walk->nextIndex(), 2);
    EXPECT_EQ(walk->previousIndex(), 1);
    EXPECT_EQ(show(walk->previous()), u"b");
    EXPECT_EQ(show(walk->next()), u"b");
    EXPECT_EQ(show(walk->next()), u"c");
    EXPECT_FALSE(walk->hasNext());
    EXPECT_TRUE(walk->hasPrevious());
    EXPECT_EQ(show(walk->previous()), u"c");
    EXPECT_EQ(show(walk->previous()), u"b");
    EXPECT_EQ(show(walk->previous()), u"a");
    EXPECT_FALSE(walk->hasPrevious());
}

TYPED_TEST(ListIteratorTest, StartsAtAnyPlace) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    EXPECT_EQ(show(*list->createListIterator(1)), u"b c");
    EXPECT_EQ(show(*std::as_const(*list).createConstListIterator(2)), u"c");
    EXPECT_EQ(show(*list->createListIterator(3)), u"");
    EXPECT_EQ(show(list->createListIterator(3)->previous()), u"c");
    EXPECT_EQ(show(*make<TypeParam>()->createListIterator(0)), u"");
}

TYPED_TEST(ListIteratorTest, EndsAreTheListsOwnRangeErrors) {
    const auto list = filled<TypeParam>({u"a"});
    const auto walk = list->createListIterator(0);
    EXPECT_THROW(walk->previous(), RangeErrorException);
    walk->next();
    EXPECT_THROW(walk->next(), RangeErrorException);
    EXPECT_EQ(walk->nextIndex(), 1);
    EXPECT_EQ(show(walk->previous()), u"a");
}

TYPED_TEST(ListIteratorTest, RemovesWhatItPassed) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c", u"d"});
    const auto walk = list->createListIterator(0);
    walk->next();
    walk->next();
    walk->remove();
    EXPECT_EQ(show(*list), u"a c d");
    EXPECT_EQ(walk->nextIndex(), 1);
    EXPECT_EQ(show(walk->next()), u"c");
    EXPECT_EQ(show(walk->previous()), u"c");
    walk->remove();
    EXPECT_EQ(show(*list), u"a d");
    EXPECT_EQ(walk->nextIndex(), 1);
    EXPECT_EQ(show(walk->previous()), u"a");
    walk->remove();
    EXPECT_EQ(show(walk->next()), u"d");
    walk->remove();
    EXPECT_TRUE(list->isEmpty());
    EXPECT_FALSE(walk->hasNext());
    EXPECT_FALSE(walk->hasPrevious());
}

TYPED_TEST(ListIteratorTest, NothingToRemoveOrSetIsAnIllegalState) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    const auto walk = list->createListIterator(0);
    EXPECT_THROW(walk->remove(), IllegalStateException);
    EXPECT_THROW(walk->set(nullptr), IllegalStateException);
    walk->next();
    walk->remove();
    EXPECT_THROW(walk->remove(), IllegalStateException);
    EXPECT_THROW(walk->set(nullptr), IllegalStateException);
    walk->next();
    walk->add(Text(u"x"));
    EXPECT_THROW(walk->remove(), IllegalStateException);
    EXPECT_THROW(walk->set(nullptr), IllegalStateException);
    EXPECT_EQ(show(*list), u"b x");
}

TYPED_TEST(ListIteratorTest, SetReplacesAgainAndAgain) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    const auto walk = list->createListIterator(0);
    walk->next();
    walk->set(Text(u"x"));
    walk->set(Text(u"y"));
    EXPECT_EQ(show(*list), u"y b");
    EXPECT_EQ(show(walk->next()), u"b");
    EXPECT_EQ(show(walk->previous()), u"b");
    walk->set(Text(u"z"));
    EXPECT_EQ(show(*list), u"y z");
    walk->remove();
    EXPECT_EQ(show(*list), u"y");
}

TYPED_TEST(ListIteratorTest, AddPassesWhatItAdds) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    const auto walk = list->createListIterator(1);
    EXPECT_TRUE(walk->add(Text(u"x")));
    EXPECT_TRUE(walk->add(Text(u"y")));
    EXPECT_EQ(walk->nextIndex(), 3);
    EXPECT_EQ(show(*list), u"a x y b");
    EXPECT_EQ(show(walk->previous()), u"y");
    EXPECT_EQ(show(walk->next()), u"y");
    EXPECT_EQ(show(walk->next()), u"b");
    EXPECT_TRUE(walk->add(Text(u"z")));
    EXPECT_EQ(show(*list), u"a x y b z");
    const auto start = list->createListIterator(0);
    start->add(Text(u"0"));
    EXPECT_EQ(show(*list), u"0 a x y b z");
    EXPECT_EQ(show(start->next()), u"a");
}

TYPED_TEST(ListIteratorTest, ChangeByAnotherEndsEveryStep) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    const auto walk = list->createListIterator(0);
    const auto other = list->createListIterator(0);
    walk->next();
    other->next();
    other->remove();
    expectModified([&] { walk->next(); });
    expectModified([&] { walk->previous(); });
    expectModified([&] { walk->remove(); });
    expectModified([&] { walk->set(nullptr); });
    expectModified([&] { walk->add(nullptr); });
    EXPECT_TRUE(walk->hasNext());
    EXPECT_TRUE(walk->hasPrevious());
    EXPECT_EQ(walk->nextIndex(), 1);
    EXPECT_EQ(walk->previousIndex(), 0);
    EXPECT_EQ(show(*list), u"b c");
    EXPECT_EQ(show(other->next()), u"b");
}

TYPED_TEST(ListIteratorTest, ChangeIsLookedAtBeforeTheState) {
    const auto list = filled<TypeParam>({u"a"});
    const auto walk = list->createListIterator(0);
    list->set(0, nullptr);
    expectModified([&] { walk->remove(); });
    expectModified([&] { walk->set(nullptr); });
    expectModified([&] { walk->previous(); });
}

TYPED_TEST(ListIteratorTest, KeepsItsListAlive) {
    int alive = 0;
    auto list = make<TypeParam>();
    list->add(raw(make<CountedObject>(alive)));
    auto walk = list->createIterator();
    EXPECT_EQ(list->GetRefCount(), 2u);
    list = nullptr;
    EXPECT_EQ(alive, 1);
    EXPECT_NE(walk->next().get(), nullptr);
    walk = nullptr;
    EXPECT_EQ(alive, 0);
}

TYPED_TEST(ListIteratorTest, IsAllKindsOfWalkInOne) {
    const auto list = filled<TypeParam>({u"a"});
    const Reference<ListIterator> walk = list->createListIterator(0);
    const Reference<Iterator> iterator(walk.get());
    const Reference<ConstListIterator> constList(walk.get());
    const Reference<ConstIterator> one(iterator.get());
    EXPECT_EQ(one.get(), static_cast<ConstIterator*>(constList.get()));
    one->next();
    EXPECT_EQ(constList->nextIndex(), 1);
    iterator->remove();
    EXPECT_TRUE(list->isEmpty());
    void* unknown = nullptr;
    EXPECT_EQ(walk->QueryInterface(IID_IQVUnknown, &unknown), 0);
    EXPECT_EQ(static_cast<IQVUnknown*>(unknown)->Release(), 4u);
    EXPECT_EQ(walk->QueryInterface(IID_IQVComparable, &unknown), QV_E_NOINTERFACE);
}

TYPED_TEST(ListIteratorTest, HoldsEachElementOnlyWhileItIsHandedOut) {
    const auto list = make<TypeParam>();
    const Text element(u"a");
    list->add(element);
    const auto walk = list->createListIterator(0);
    walk->next();
    EXPECT_EQ(element.string->GetRefCount(), 2u);
    walk->set(element);
    EXPECT_EQ(element.string->GetRefCount(), 2u);
    walk->add(element);
    EXPECT_EQ(element.string->GetRefCount(), 3u);
    walk->previous();
    walk->remove();
    EXPECT_EQ(element.string->GetRefCount(), 2u);
    EXPECT_THROW(walk->remove(), IllegalStateException);
    EXPECT_EQ(element.string->GetRefCount(), 2u);
}

/// Whatever is done in whatever order, a walk and a plain vector agree.
TYPED_TEST(ListIteratorTest, AgreesWithAnObviousModel) {
    std::mt19937 random(7);
    const auto list = make<TypeParam>();
    std::vector<std::u16string> model;
    const auto walk = list->createListIterator(0);
    std::size_t cursor = 0;
    int last = -1;
    for (int step = 0; step < 5000; ++step) {
        const std::u16string name(1, static_cast<char16_t>(u'a' + random() % 26));
        switch (random() % 6) {
        case 0:
        case 1:
            walk->add(Text(name.c_str()));
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(cursor++), name);
            last = -1;
            break;
        case 2:
            if (walk->hasNext()) {
                ASSERT_EQ(show(walk->next()), model.at(cursor));
                last = static_cast<int>(cursor++);
            }
            break;
        case 3:
            if (walk->hasPrevious()) {
                ASSERT_EQ(show(walk->previous()), model.at(--cursor));
                last = static_cast<int>(cursor);
            }
            break;
        case 4:
            if (last >= 0) {
                walk->remove();
                model.erase(model.begin() + last);
                cursor -= cursor > static_cast<std::size_t>(last) ? 1 : 0;
                last = -1;
            }
            break;
        default:
            if (last >= 0) {
                walk->set(Text(name.c_str()));
                model.at(static_cast<std::size_t>(last)) = name;
            }
        }
        ASSERT_EQ(walk->nextIndex(), static_cast<int>(cursor));
        ASSERT_EQ(list->getSize(), static_cast<int>(model.size()));
    }
    for (std::size_t i = 0; i < model.size(); ++i) {
        ASSERT_EQ(show(list->get(static_cast<int>(i))), model[i]);
    }
}

// --- The library's own lists, which append without counting ---

template <class List>
class OwnListIteratorTest : public testing::Test {};
using OwnLists = testing::Types<ArrayList, LinkedList, Counting<LinkedList>>;
TYPED_TEST_SUITE(OwnListIteratorTest, OwnLists);

TYPED_TEST(OwnListIteratorTest, AppendingLeavesTheWalkInItsPlace) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    const auto walk = list->createListIterator(2);
    list->add(Text(u"c"));
    EXPECT_EQ(show(walk->next()), u"c");
    list->add(Text(u"d"));
    EXPECT_EQ(show(walk->previous()), u"c");
    walk->add(Text(u"x"));
    EXPECT_EQ(show(*list), u"a b x c d");
    EXPECT_EQ(show(*walk), u"c d");
}

// --- What follows from counting changes by ones ---

TEST(AbstractListIteratorTest, RefusedElementIsNotPassed) {
    const auto list = filled<SmallList>({u"a"});
    const auto walk = list->createListIterator(0);
    walk->next();
    list->refuses = true;
    EXPECT_FALSE(walk->add(Text(u"x")));
    EXPECT_EQ(walk->nextIndex(), 1);
    walk->set(Text(u"y"));
    EXPECT_EQ(show(*list), u"y") << "what was passed last is still known";
}

TEST(AbstractListIteratorTest, AppendIsAlwaysTrueEvenWhereTheListRefuses) {
    const auto list = make<SmallList>();
    list->refuses = true;
    EXPECT_TRUE(list->add(Text(u"x")));
    EXPECT_TRUE(list->isEmpty());
}

TEST(AbstractListIteratorTest, ListThatCountsTwiceBreaksItsOwnWalks) {
    struct Twice : SmallList {
        using SmallList::remove;
        Element remove(int index) override {
            ++modCount_;
            return SmallList::remove(index);
        }
    };
    const auto list = filled<Twice>({u"a", u"b"});
    const auto walk = list->createIterator();
    walk->next();
    walk->remove();
    expectModified([&] { walk->next(); });
}

TEST(AbstractListIteratorTest, ListThatCountsNothingIsNotNoticed) {
    struct Silent : SmallList {
        using SmallList::remove;
        Element remove(int index) override {
            --modCount_;
            return SmallList::remove(index);
        }
    };
    const auto list = filled<Silent>({u"a", u"b", u"c"});
    const auto walk = list->createIterator();
    walk->next();
    list->remove(0);
    EXPECT_EQ(show(walk->next()), u"c");
}

TEST(LinkedListTest, ClassDerivedFromItAnswersForItsElements) {
    struct Reversed : LinkedList {
        using LinkedList::get;
        Element get(int index) const override { return LinkedList::get(getSize() - 1 - index); }
    };
    EXPECT_EQ(show(*filled<Reversed>({u"a", u"b", u"c"})), u"c b a");
}

} // namespace
