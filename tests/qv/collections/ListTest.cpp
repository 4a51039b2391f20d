// What every list does, and what the two of the library do in their own ways.

#include "tests/qv/collections/CollectionElements.h"

#include <functional>
#include <utility>

using namespace elements;

namespace {

constexpr int least = std::numeric_limits<int>::min();
constexpr int greatest = std::numeric_limits<int>::max();

template <class List>
class ListTest : public testing::Test {};
using Lists = testing::Types<ArrayList, LinkedList, Counting<LinkedList>, SmallList>;
TYPED_TEST_SUITE(ListTest, Lists);

template <class List>
class CountingListTest : public testing::Test {};
using CountingLists = testing::Types<Counting<ArrayList>, Counting<LinkedList>>;
TYPED_TEST_SUITE(CountingListTest, CountingLists);

TYPED_TEST(ListTest, BeginsEmpty) {
    const auto list = make<TypeParam>();
    EXPECT_EQ(list->getSize(), 0);
    EXPECT_TRUE(list->isEmpty());
    EXPECT_EQ(show(*list), u"");
}

TYPED_TEST(ListTest, AppendsInOrder) {
    const auto list = make<TypeParam>();
    EXPECT_TRUE(list->add(Text(u"a")));
    EXPECT_TRUE(list->add(Text(u"b")));
    EXPECT_EQ(show(*list), u"a b");
    EXPECT_EQ(list->getSize(), 2);
    EXPECT_FALSE(list->isEmpty());
}

TYPED_TEST(ListTest, AddsInFrontOfAnIndex) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_TRUE(list->add(0, Text(u"0")));
    EXPECT_TRUE(list->add(2, Text(u"1")));
    EXPECT_TRUE(list->add(4, Text(u"2")));
    EXPECT_EQ(show(*list), u"0 a 1 b 2");
}

TYPED_TEST(ListTest, IndexOutsideIsARangeError) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    for (const int index : {-1, 3, least, greatest}) {
        EXPECT_THROW(list->add(index, Text(u"x")), RangeErrorException) << index;
        EXPECT_THROW(list->addAll(index, *filled<ArrayList>({u"x"})), RangeErrorException) << index;
        EXPECT_THROW(list->createListIterator(index), RangeErrorException) << index;
        EXPECT_THROW(std::as_const(*list).createConstListIterator(index), RangeErrorException);
    }
    for (const int index : {-1, 2, least, greatest}) {
        EXPECT_THROW(list->get(index), RangeErrorException) << index;
        EXPECT_THROW(list->remove(index), RangeErrorException) << index;
        EXPECT_THROW(list->set(index, Text(u"x")), RangeErrorException) << index;
    }
    EXPECT_EQ(show(*list), u"a b");
    EXPECT_THROW(make<TypeParam>()->get(0), RangeErrorException);
}

TYPED_TEST(ListTest, RangeErrorHasNoText) {
    const auto list = make<TypeParam>();
    try {
        list->get(0);
        FAIL();
    } catch (const RangeErrorException& exception) {
        EXPECT_TRUE(exception.getDescription().isEmpty());
    }
}

TYPED_TEST(ListTest, RemoveGivesTheElement) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    EXPECT_EQ(show(list->remove(1)), u"b");
    EXPECT_EQ(show(list->remove(1)), u"c");
    EXPECT_EQ(show(*list), u"a");
}

TYPED_TEST(ListTest, SetGivesTheOldElement) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_EQ(show(list->set(1, Text(u"x"))), u"b");
    EXPECT_EQ(show(*list), u"a x");
}

TYPED_TEST(ListTest, HoldsEachElementOnce) {
    int alive = 0;
    const auto object = make<CountedObject>(alive);
    {
        const auto list = make<TypeParam>();
        list->add(raw(object));
        EXPECT_EQ(object->GetRefCount(), 2u);
        list->add(0, raw(object));
        EXPECT_EQ(object->GetRefCount(), 3u);
        {
            const Element held = list->get(0);
            EXPECT_EQ(held.get(), raw(object));
            EXPECT_EQ(object->GetRefCount(), 4u);
        }
        EXPECT_EQ(object->GetRefCount(), 3u);
        list->set(0, raw(object));
        EXPECT_EQ(object->GetRefCount(), 3u);
        list->remove(0);
        EXPECT_EQ(object->GetRefCount(), 2u);
        EXPECT_THROW(list->remove(1), RangeErrorException);
        EXPECT_THROW(list->add(5, raw(object)), RangeErrorException);
        EXPECT_EQ(object->GetRefCount(), 2u);
        list->add(raw(make<CountedObject>(alive)));
        EXPECT_EQ(alive, 2);
    }
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(object->GetRefCount(), 1u);
}

TYPED_TEST(ListTest, ClearReleasesAll) {
    int alive = 0;
    const auto list = make<TypeParam>();
    for (int i = 0; i < 5; ++i) {
        list->add(raw(make<CountedObject>(alive)));
    }
    EXPECT_EQ(alive, 5);
    list->clear();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(list->isEmpty());
    list->clear();
    list->add(Text(u"a"));
    EXPECT_EQ(show(*list), u"a");
}

TYPED_TEST(ListTest, NullIsAnElement) {
    const auto list = make<TypeParam>();
    EXPECT_TRUE(list->add(nullptr));
    list->add(0, Text(u"a"));
    list->add(1, nullptr);
    EXPECT_EQ(show(*list), u"a null null");
    EXPECT_EQ(list->get(1).get(), nullptr);
    EXPECT_EQ(list->remove(2).get(), nullptr);
    EXPECT_EQ(list->set(1, Text(u"b")).get(), nullptr);
    EXPECT_EQ(show(list->set(0, nullptr)), u"a");
    EXPECT_EQ(list->indexOf(nullptr), 0);
    EXPECT_TRUE(list->contains(nullptr));
    EXPECT_TRUE(list->remove(static_cast<const IQVUnknown*>(nullptr)));
    EXPECT_EQ(show(*list), u"b");
}

TYPED_TEST(ListTest, FindsByTheComparatorTheStoredElementFirst) {
    const auto comparator = make<InitialComparator>();
    const auto list = make<TypeParam>(comparator.get());
    fill(*list, {u"apple", u"berry", u"avocado"});
    EXPECT_EQ(list->indexOf(Text(u"b")), 1);
    EXPECT_EQ(comparator->asked, (std::vector<std::u16string>{u"apple,b", u"berry,b"}));
    comparator->asked.clear();
    EXPECT_EQ(list->lastIndexOf(Text(u"b")), 1);
    EXPECT_EQ(comparator->asked, (std::vector<std::u16string>{u"avocado,b", u"berry,b"}));
    comparator->asked.clear();
    EXPECT_TRUE(list->contains(Text(u"av")));
    EXPECT_EQ(comparator->asked, (std::vector<std::u16string>{u"apple,av"}));
    comparator->asked.clear();
    EXPECT_TRUE(list->remove(Text(u"a")));
    EXPECT_EQ(comparator->asked, (std::vector<std::u16string>{u"apple,a"}));
    EXPECT_EQ(show(*list), u"berry avocado");
    EXPECT_EQ(comparator->GetRefCount(), 2u);
}

TYPED_TEST(ListTest, FindsTheFirstAndTheLast) {
    const auto list = filled<TypeParam>({u"a", u"b", u"a", u"c"});
    EXPECT_EQ(list->indexOf(Text(u"a")), 0);
    EXPECT_EQ(list->lastIndexOf(Text(u"a")), 2);
    EXPECT_EQ(list->lastIndexOf(Text(u"c")), 3);
    EXPECT_EQ(list->indexOf(Text(u"x")), -1);
    EXPECT_EQ(list->lastIndexOf(Text(u"x")), -1);
    EXPECT_FALSE(list->contains(Text(u"x")));
    const auto empty = make<TypeParam>();
    EXPECT_EQ(empty->indexOf(Text(u"a")), -1);
    EXPECT_EQ(empty->lastIndexOf(Text(u"a")), -1);
}

TYPED_TEST(ListTest, RemovesTheFirstEqualElement) {
    const auto list = filled<TypeParam>({u"a", u"b", u"a"});
    EXPECT_TRUE(list->remove(Text(u"a")));
    EXPECT_EQ(show(*list), u"b a");
    EXPECT_FALSE(list->remove(Text(u"x")));
    EXPECT_EQ(show(*list), u"b a");
}

TYPED_TEST(ListTest, RemovesAnElementThatOnlyItHeld) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    const IQVUnknown* const own = list->get(0).get();
    EXPECT_TRUE(list->remove(own));
    EXPECT_EQ(show(*list), u"b");
}

TYPED_TEST(ListTest, AddAllAppends) {
    const auto list = filled<TypeParam>({u"a"});
    EXPECT_TRUE(list->addAll(*filled<ArrayList>({u"b", u"c"})));
    EXPECT_EQ(show(*list), u"a b c");
    EXPECT_FALSE(list->addAll(*make<LinkedList>()));
    EXPECT_EQ(show(*list), u"a b c");
}

TYPED_TEST(ListTest, AddAllAtAnIndexKeepsTheOrder) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_TRUE(list->addAll(1, *filled<LinkedList>({u"1", u"2"})));
    EXPECT_EQ(show(*list), u"a 1 2 b");
    EXPECT_TRUE(list->addAll(4, *filled<LinkedList>({u"3"})));
    EXPECT_TRUE(list->addAll(0, *filled<LinkedList>({u"0"})));
    EXPECT_EQ(show(*list), u"0 a 1 2 b 3");
    EXPECT_FALSE(list->addAll(0, *make<ArrayList>()));
}

TYPED_TEST(ListTest, AddAllOfItselfAtAnIndexFailsBehindTheFirst) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    expectModified([&] { list->addAll(0, *list); });
    EXPECT_EQ(show(*list), u"a a b");
    EXPECT_FALSE(make<TypeParam>()->addAll(0, *make<TypeParam>()));
}

TYPED_TEST(ListTest, RemoveAllRemovesOneForEach) {
    const auto list = filled<TypeParam>({u"a", u"b", u"a", u"a"});
    EXPECT_TRUE(list->removeAll(*filled<ArrayList>({u"a", u"a", u"x"})));
    EXPECT_EQ(show(*list), u"b a");
    EXPECT_FALSE(list->removeAll(*filled<ArrayList>({u"x"})));
    EXPECT_FALSE(list->removeAll(*make<ArrayList>()));
}

TYPED_TEST(ListTest, RemoveAllOfItselfFailsBehindTheFirst) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    expectModified([&] { list->removeAll(*list); });
    EXPECT_EQ(show(*list), u"b c");
    const auto one = filled<TypeParam>({u"a"});
    EXPECT_TRUE(one->removeAll(*one));
    EXPECT_TRUE(one->isEmpty());
}

TYPED_TEST(ListTest, RetainAllWithNothingToDropChangesNothing) {
    const auto list = filled<TypeParam>({u"a", u"b", u"a"});
    EXPECT_FALSE(list->retainAll(*filled<ArrayList>({u"b", u"a"})));
    EXPECT_FALSE(list->retainAll(*list));
    EXPECT_EQ(show(*list), u"a b a");
}

TYPED_TEST(ListTest, RetainAllFailsBehindItsOwnRemovalAsKept) {
    const auto list = filled<TypeParam>({u"a", u"x", u"b", u"y", u"c"});
    expectModified([&] { list->retainAll(*filled<ArrayList>({u"a", u"b", u"c"})); });
    EXPECT_EQ(show(*list), u"a b y c");
}

TYPED_TEST(ListTest, RetainAllDropsTheLastElementUnharmed) {
    const auto list = filled<TypeParam>({u"a", u"b", u"x"});
    EXPECT_TRUE(list->retainAll(*filled<ArrayList>({u"a", u"b"})));
    EXPECT_EQ(show(*list), u"a b");
}

TYPED_TEST(ListTest, ContainsAllAsksForEach) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_TRUE(list->containsAll(*filled<ArrayList>({u"b", u"a", u"b"})));
    EXPECT_FALSE(list->containsAll(*filled<ArrayList>({u"b", u"x"})));
    EXPECT_TRUE(list->containsAll(*make<ArrayList>()));
    EXPECT_TRUE(list->containsAll(*list));
}

TYPED_TEST(ListTest, ComparatorsFailureIsThrown) {
    const auto comparator = make<FailingComparator>();
    const auto list = make<TypeParam>(comparator.get());
    fill(*list, {u"a", u"b"});
    comparator->failure = QV_E_INVALIDARG;
    const auto result = [](auto work) {
        try {
            work();
        } catch (const ResultException& exception) {
            return exception.getResult();
        }
        return 0;
    };
    const Text a(u"a");
    EXPECT_EQ(result([&] { list->contains(a); }), QV_E_INVALIDARG);
    EXPECT_EQ(result([&] { list->indexOf(a); }), QV_E_INVALIDARG);
    EXPECT_EQ(result([&] { list->lastIndexOf(a); }), QV_E_INVALIDARG);
    EXPECT_EQ(result([&] { list->remove(a); }), QV_E_INVALIDARG);
    EXPECT_EQ(result([&] { list->removeAll(*filled<ArrayList>({u"a"})); }), QV_E_INVALIDARG);
    EXPECT_EQ(result([&] { list->equals(*filled<ArrayList>({u"a", u"b"})); }), QV_E_INVALIDARG);
    comparator->hashFailure = QV_E_OUTOFMEMORY;
    EXPECT_EQ(result([&] { list->hashCode(); }), QV_E_OUTOFMEMORY);
    EXPECT_EQ(show(*list), u"a b");
    EXPECT_EQ(a.string->GetRefCount(), 1u);
}

TYPED_TEST(ListTest, PositiveResultOfAComparatorIsNoFailure) {
    const auto comparator = make<FailingComparator>();
    const auto list = make<TypeParam>(comparator.get());
    EXPECT_EQ(list->indexOf(Text(u"a")), -1);
    fill(*list, {u"a"});
    struct Positive : util::Comparator {
        std::int32_t Compare(const IQVUnknown*, const IQVUnknown*,
                             std::int32_t* result) noexcept override {
            *result = 0;
            return 1;
        }
    };
    const auto other = make<TypeParam>(make<Positive>().get());
    fill(*other, {u"a"});
    EXPECT_TRUE(other->contains(Text(u"b")));
}

TYPED_TEST(ListTest, ListWithoutAComparatorHoldsElements) {
    const auto list = make<TypeParam>(static_cast<const IQVComparator*>(nullptr));
    EXPECT_EQ(list->indexOf(Text(u"a")), -1);
    EXPECT_EQ(list->hashCode(), 1u);
    fill(*list, {u"a", u"b"});
    list->remove(0);
    EXPECT_EQ(show(*list), u"b");
    EXPECT_EQ(show(*make<TypeParam>(*list)), show(*make<TypeParam>(*list)));
}

TYPED_TEST(ListTest, HashMultipliesByThirtyEight) {
    EXPECT_EQ(make<TypeParam>()->hashCode(), 1u);
    EXPECT_EQ(filled<TypeParam>({u"a"})->hashCode(), 38u + u'a');
    EXPECT_EQ(filled<TypeParam>({u"a", u"b"})->hashCode(), (38u + u'a') * 38u + u'b');
    const auto withNull = make<TypeParam>();
    withNull->add(nullptr);
    EXPECT_EQ(withNull->hashCode(), 38u);
    std::uint32_t expected = 1;
    const auto list = make<TypeParam>();
    for (int i = 0; i < 20; ++i) {
        list->add(Text(u"\xFFFF"));
        expected = expected * 38u + 0xFFFFu;
    }
    EXPECT_EQ(list->hashCode(), expected);
}

TYPED_TEST(ListTest, ComparesElementsThenLength) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_EQ(list->compareTo(*list), 0);
    EXPECT_EQ(list->compareTo(*filled<ArrayList>({u"a", u"b"})), 0);
    EXPECT_EQ(list->compareTo(*filled<LinkedList>({u"a"})), 1);
    EXPECT_EQ(list->compareTo(*filled<ArrayList>({u"a", u"b", u"c"})), -1);
    EXPECT_EQ(list->compareTo(*make<ArrayList>()), 1);
    EXPECT_LT(list->compareTo(*filled<ArrayList>({u"a", u"c"})), 0);
    EXPECT_GT(list->compareTo(*filled<ArrayList>({u"a", u"a", u"x"})), 0);
    EXPECT_THROW(list->compareTo(Object()), CastFailedException);
    EXPECT_THROW(list->compareTo(*newText(u"a")), CastFailedException);
}

TYPED_TEST(ListTest, FirstDifferenceIsTheResult) {
    struct Sevens : util::Comparator {
        std::int32_t Compare(const IQVUnknown*, const IQVUnknown*,
                             std::int32_t* result) noexcept override {
            *result = -7;
            return 0;
        }
    };
    const auto list = make<TypeParam>(make<Sevens>().get());
    fill(*list, {u"a"});
    EXPECT_EQ(list->compareTo(*filled<ArrayList>({u"a"})), -7);
}

TYPED_TEST(ListTest, EqualsNeverThrowsForAnotherKind) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_TRUE(list->equals(*list));
    EXPECT_TRUE(list->equals(*filled<LinkedList>({u"a", u"b"})));
    EXPECT_FALSE(list->equals(*filled<LinkedList>({u"a"})));
    EXPECT_FALSE(list->equals(*filled<LinkedList>({u"a", u"c"})));
    EXPECT_FALSE(list->equals(Object()));
    EXPECT_TRUE(make<TypeParam>()->equals(*make<ArrayList>()));
}

TYPED_TEST(ListTest, ComponentFaceComparesToo) {
    const auto list = filled<TypeParam>({u"a"});
    void* face = nullptr;
    ASSERT_EQ(list->QueryInterface(IID_IQVComparable, &face), 0);
    const auto comparable = Reference<IQVComparable>::adopt(static_cast<IQVComparable*>(face));
    std::int32_t order = 99;
    EXPECT_EQ(comparable->CompareTo(raw(filled<ArrayList>({u"a"})), &order), 0);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(comparable->CompareTo(raw(newText(u"a")), &order), QV_E_FAIL);
    EXPECT_EQ(order, 0);
    std::uint32_t hash = 0;
    EXPECT_EQ(comparable->HashCode(&hash), 0);
    EXPECT_EQ(hash, 38u + u'a');
}

TYPED_TEST(ListTest, InterfaceAndObjectAreOneCountedThing) {
    const auto list = make<TypeParam>();
    Reference<List> face(list.get());
    Reference<Collection> collection(face.get());
    EXPECT_EQ(list->GetRefCount(), 3u);
    void* unknown = nullptr;
    ASSERT_EQ(collection->QueryInterface(IID_IQVUnknown, &unknown), 0);
    EXPECT_EQ(unknown, raw(list));
    list->Release();
    collection->add(Text(u"a"));
    EXPECT_EQ(face->getSize(), 1);
    EXPECT_FALSE(collection->isEmpty());
}

TYPED_TEST(ListTest, CanBeAnElementOfItself) {
    const auto list = make<TypeParam>();
    list->add(raw(list));
    EXPECT_EQ(list->GetRefCount(), 2u);
    EXPECT_EQ(list->get(0).get(), raw(list));
    list->clear();
    EXPECT_EQ(list->GetRefCount(), 1u);
}

TYPED_TEST(ListTest, ElementsMayBeForeignComponents) {
    support::ForeignComponent component;
    {
        const auto list = make<TypeParam>();
        list->add(&component);
        EXPECT_EQ(component.count(), 2u);
        EXPECT_EQ(list->indexOf(&component), 0);
        EXPECT_EQ(list->indexOf(Text(u"a")), -1);
    }
    EXPECT_EQ(component.count(), 1u);
}

/// An object that does something when it ends.
struct AtEnd : Object {
    explicit AtEnd(std::function<void()> work) : work_(std::move(work)) {}
    ~AtEnd() override { work_(); }
    std::function<void()> work_;
};

TYPED_TEST(ListTest, ElementThatEndsFindsTheListInOrder) {
    const auto list = make<TypeParam>();
    std::vector<int> sizes;
    const auto note = [&] { sizes.push_back(list->getSize()); };
    for (int i = 0; i < 4; ++i) {
        list->add(raw(make<AtEnd>(note)));
    }
    list->remove(0);
    list->set(0, nullptr);
    const auto walk = list->createListIterator(1);
    walk->next();
    walk->remove();
    walk->next();
    walk->set(nullptr);
    EXPECT_EQ(sizes, (std::vector<int>{3, 3, 2, 2}));
}

// --- The library's own lists ---

template <class List>
class OwnListTest : public testing::Test {};
using OwnLists = testing::Types<ArrayList, LinkedList>;
TYPED_TEST_SUITE(OwnListTest, OwnLists);

TYPED_TEST(OwnListTest, AddAllOfItselfAppendsWhatItWas) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    EXPECT_TRUE(list->addAll(*list));
    EXPECT_EQ(show(*list), u"a b a b");
    EXPECT_FALSE(make<TypeParam>()->addAll(*make<TypeParam>()));
}

TYPED_TEST(OwnListTest, AddAllOfAViewOfItselfEnds) {
    const auto list = filled<TypeParam>({u"a", u"b", u"c"});
    EXPECT_TRUE(list->addAll(*list->createSubList(1, 3)));
    EXPECT_EQ(show(*list), u"a b c b c");
}

TYPED_TEST(OwnListTest, ElementThatEndsInAClearMayAppend) {
    const auto list = make<TypeParam>();
    list->add(nullptr);
    list->add(raw(make<AtEnd>([&] { list->add(Text(u"last words")); })));
    list->clear();
    EXPECT_EQ(show(*list), u"last words");
}

TYPED_TEST(OwnListTest, ElementThatEndsInAClearMayTakeOthersOut) {
    const auto list = make<TypeParam>();
    list->add(nullptr);
    list->add(raw(make<AtEnd>([&] {
        if (!list->isEmpty()) {
            list->remove(0);
        }
    })));
    list->add(nullptr);
    list->clear();
    EXPECT_TRUE(list->isEmpty());
}

TYPED_TEST(OwnListTest, CollectsTheElementsOfAnother) {
    const auto source = filled<ArrayList>({u"a", u"b"});
    const auto list = make<TypeParam>(static_cast<const Collection&>(*source));
    EXPECT_EQ(show(*list), u"a b");
    EXPECT_EQ(list->get(0).get(), source->get(0).get());
    EXPECT_TRUE(list->contains(Text(u"a")));
}

TYPED_TEST(OwnListTest, CollectsWithAComparator) {
    const auto comparator = make<InitialComparator>();
    const auto source = filled<ArrayList>({u"apple", u"berry"});
    const auto list = make<TypeParam>(static_cast<const Collection&>(*source), comparator.get());
    EXPECT_EQ(show(*list), u"apple berry");
    EXPECT_EQ(list->indexOf(Text(u"b")), 1);
    EXPECT_EQ(source->indexOf(Text(u"b")), -1);
}

TYPED_TEST(OwnListTest, CopySharesElementsAndComparator) {
    const auto comparator = make<InitialComparator>();
    const auto source = make<TypeParam>(comparator.get());
    fill(*source, {u"apple", u"berry"});
    const auto copy = make<TypeParam>(*source);
    EXPECT_EQ(comparator->GetRefCount(), 3u);
    EXPECT_EQ(copy->GetRefCount(), 1u);
    EXPECT_EQ(copy->get(1).get(), source->get(1).get());
    EXPECT_EQ(copy->indexOf(Text(u"b")), 1);
    copy->remove(0);
    EXPECT_EQ(show(*copy), u"berry");
    EXPECT_EQ(show(*source), u"apple berry");
}

TYPED_TEST(OwnListTest, AppendingDuringAWalkIsKeptUncounted) {
    const auto list = filled<TypeParam>({u"a"});
    const auto walk = list->createIterator();
    EXPECT_EQ(show(walk->next()), u"a");
    EXPECT_FALSE(walk->hasNext());
    list->add(Text(u"b"));
    EXPECT_TRUE(walk->hasNext());
    EXPECT_EQ(show(walk->next()), u"b");
    walk->remove();
    EXPECT_EQ(show(*list), u"a");
}

TYPED_TEST(OwnListTest, EveryOtherChangeEndsAWalk) {
    const auto ends = [](auto change) {
        const auto list = filled<TypeParam>({u"a", u"b", u"c"});
        const auto walk = list->createIterator();
        walk->next();
        change(*list);
        EXPECT_TRUE(walk->hasNext() || list->getSize() < 2);
        expectModified([&] { walk->next(); });
        expectModified([&] { walk->remove(); });
    };
    ends([](TypeParam& list) { list.add(0, Text(u"x")); });
    ends([](TypeParam& list) { list.add(3, Text(u"x")); });
    ends([](TypeParam& list) { list.remove(2); });
    ends([](TypeParam& list) { list.set(0, Text(u"x")); });
    ends([](TypeParam& list) { list.clear(); });
    ends([](TypeParam& list) { list.addAll(0, *filled<ArrayList>({u"x"})); });
    ends([](TypeParam& list) { list.createIterator()->next(), list.remove(Text(u"a")); });
}

TYPED_TEST(OwnListTest, LongListsAreHeldAndReleased) {
    int alive = 0;
    {
        const auto list = make<TypeParam>();
        for (int i = 0; i < 100000; ++i) {
            list->add(raw(make<CountedObject>(alive)));
        }
        EXPECT_EQ(list->getSize(), 100000);
        EXPECT_EQ(alive, 100000);
        int walked = 0;
        for (const auto walk = list->createIterator(); walk->hasNext(); walk->next()) {
            ++walked;
        }
        EXPECT_EQ(walked, 100000);
    }
    EXPECT_EQ(alive, 0);
}

TYPED_TEST(CountingListTest, AppendIsKeptUncounted) {
    const auto list = make<TypeParam>();
    EXPECT_EQ(list->changes(), 0);
    list->add(Text(u"a"));
    list->addAll(*filled<ArrayList>({u"b", u"c"}));
    EXPECT_EQ(list->changes(), 0);
}

TYPED_TEST(CountingListTest, EachOtherChangeCountsOne) {
    const auto list = make<TypeParam>();
    list->add(0, Text(u"a"));
    EXPECT_EQ(list->changes(), 1);
    list->add(1, Text(u"b"));
    EXPECT_EQ(list->changes(), 2);
    list->set(0, nullptr);
    EXPECT_EQ(list->changes(), 3);
    list->remove(1);
    EXPECT_EQ(list->changes(), 4);
    list->get(0);
    EXPECT_EQ(list->changes(), 4);
    list->addAll(0, *filled<ArrayList>({u"x", u"y"}));
    EXPECT_EQ(list->changes(), 6);
    EXPECT_THROW(list->set(9, nullptr), RangeErrorException);
    EXPECT_THROW(list->add(9, nullptr), RangeErrorException);
    EXPECT_THROW(list->remove(9), RangeErrorException);
    EXPECT_EQ(list->changes(), 6);
}

TYPED_TEST(CountingListTest, CountGoesRoundAtItsEnd) {
    const auto list = filled<TypeParam>({u"a", u"b"});
    list->setChanges(std::numeric_limits<int>::max());
    const auto walk = list->createListIterator(0);
    walk->next();
    walk->remove();
    EXPECT_EQ(list->changes(), std::numeric_limits<int>::min());
    EXPECT_EQ(show(walk->next()), u"b");
}

TYPED_TEST(CountingListTest, CopyCountsFromZero) {
    const auto list = make<TypeParam>();
    list->add(0, Text(u"a"));
    EXPECT_EQ(make<TypeParam>(*list)->changes(), 0);
}

TEST(ArrayListTest, ClearCountsOneMoreThanItsElements) {
    const auto list = filled<Counting<ArrayList>>({u"a", u"b", u"c"});
    list->clear();
    EXPECT_EQ(list->changes(), 4);
    list->clear();
    EXPECT_EQ(list->changes(), 5);
}

TEST(ArrayListTest, ClearReleasesFromTheLast) {
    const auto list = make<ArrayList>();
    std::vector<int> ended;
    for (int i = 0; i < 3; ++i) {
        list->add(raw(make<AtEnd>([&ended, i] { ended.push_back(i); })));
    }
    list->clear();
    EXPECT_EQ(ended, (std::vector<int>{2, 1, 0}));
}

TEST(ArrayListTest, GrowingLeavesTheCountsAlone) {
    const auto list = make<ArrayList>();
    const Text element(u"a");
    list->add(element);
    for (int i = 0; i < 1000; ++i) {
        list->add(nullptr);
        ASSERT_EQ(element.string->GetRefCount(), 2u);
    }
}

TEST(LinkedListTest, ClearCountsOne) {
    const auto list = filled<Counting<LinkedList>>({u"a", u"b", u"c"});
    list->clear();
    EXPECT_EQ(list->changes(), 1);
    list->clear();
    EXPECT_EQ(list->changes(), 2);
}

TEST(LinkedListTest, ServesAsAQueue) {
    const auto queue = make<LinkedList>();
    for (int round = 0; round < 3; ++round) {
        fill(*queue, {u"a", u"b"});
        EXPECT_EQ(show(queue->remove(0)), u"a");
        EXPECT_EQ(show(queue->remove(0)), u"b");
        EXPECT_TRUE(queue->isEmpty());
    }
}

} // namespace
