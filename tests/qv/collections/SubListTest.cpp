#include "qv/collections/qvcom/AbstractListSubList.h"
#include "tests/qv/collections/CollectionElements.h"

#include <functional>
#include <utility>

using namespace elements;

namespace {

template <class Made>
class SubListTest : public testing::Test {
protected:
    Reference<Made> list = filled<Made>({u"a", u"b", u"c", u"d", u"e"});
    Reference<List> view = list->createSubList(1, 4);
};
using Lists = testing::Types<ArrayList, LinkedList, SmallList>;
TYPED_TEST_SUITE(SubListTest, Lists);

TYPED_TEST(SubListTest, ShowsARange) {
    EXPECT_EQ(show(*this->view), u"b c d");
    EXPECT_EQ(this->view->getSize(), 3);
    EXPECT_EQ(show(this->view->get(2)), u"d");
    EXPECT_EQ(show(*std::as_const(*this->list).createSubList(0, 2)), u"a b");
    EXPECT_EQ(show(*this->list->createSubList(0, 5)), u"a b c d e");
}

TYPED_TEST(SubListTest, EmptyRangeIsLegalEverywhere) {
    for (const int place : {0, 3, 5}) {
        const auto empty = this->list->createSubList(place, place);
        EXPECT_EQ(empty->getSize(), 0);
        EXPECT_TRUE(empty->isEmpty());
        EXPECT_THROW(empty->get(0), RangeErrorException);
    }
}

TYPED_TEST(SubListTest, RangeOutsideIsARangeError) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int greatest = std::numeric_limits<int>::max();
    const int ranges[][2] = {{-1, 2}, {2, 1},        {0, 6},        {6, 6},
                             {5, 4},  {least, 2},    {0, greatest}, {greatest, least},
                             {3, -1}, {least, least}};
    for (const auto& range : ranges) {
        EXPECT_THROW(this->list->createSubList(range[0], range[1]), RangeErrorException)
            << range[0] << " " << range[1];
    }
}

TYPED_TEST(SubListTest, ChangesGoThrough) {
    EXPECT_TRUE(this->view->add(0, Text(u"1")));
    EXPECT_TRUE(this->view->add(4, Text(u"2")));
    EXPECT_EQ(show(*this->view), u"1 b c d 2");
    EXPECT_EQ(show(this->view->remove(2)), u"c");
    EXPECT_EQ(show(this->view->set(0, Text(u"x"))), u"1");
    EXPECT_EQ(show(*this->view), u"x b d 2");
    EXPECT_EQ(show(*this->list), u"a x b d 2 e");
    EXPECT_EQ(this->view->getSize(), 4);
}

TEST(SubListOfOthersTest, ARefusedElementIsNotCounted) {
    const auto list = filled<SmallList>({u"a", u"b"});
    const auto view = list->createSubList(0, 2);
    list->refuses = true;
    EXPECT_FALSE(view->add(0, Text(u"x")));
    EXPECT_EQ(view->getSize(), 2);
    EXPECT_EQ(show(view->get(1)), u"b");
}

TEST(SubListOfOthersTest, KeptAWalkCountsARefusedElementToo) {
    const auto list = filled<SmallList>({u"a", u"b"});
    const auto view = list->createSubList(0, 2);
    list->refuses = true;
    EXPECT_FALSE(view->createListIterator(0)->add(Text(u"x")));
    EXPECT_EQ(view->getSize(), 3);
}

TYPED_TEST(SubListTest, IndexOutsideIsARangeErrorBeforeAnythingElse) {
    this->list->add(0, Text(u"x"));
    for (const int index :
         {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_THROW(this->view->get(index), RangeErrorException);
        EXPECT_THROW(this->view->remove(index), RangeErrorException);
        EXPECT_THROW(this->view->set(index, nullptr), RangeErrorException);
    }
    EXPECT_THROW(this->view->add(4, nullptr), RangeErrorException);
    EXPECT_THROW(this->view->add(-1, nullptr), RangeErrorException);
    EXPECT_THROW(this->view->createListIterator(4), RangeErrorException);
    EXPECT_THROW(this->view->createListIterator(-1), RangeErrorException);
}

TYPED_TEST(SubListTest, ChangeOfTheListEndsTheView) {
    this->list->set(0, Text(u"x"));
    expectModified([&] { this->view->get(0); });
    expectModified([&] { this->view->remove(0); });
    expectModified([&] { this->view->set(0, nullptr); });
    expectModified([&] { this->view->add(0, nullptr); });
    EXPECT_EQ(this->view->getSize(), 3);
    EXPECT_EQ(show(*this->list), u"x b c d e");
}

TYPED_TEST(SubListTest, FindsAndComparesLikeAnyList) {
    EXPECT_EQ(this->view->indexOf(Text(u"b")), 0);
    EXPECT_EQ(this->view->lastIndexOf(Text(u"d")), 2);
    EXPECT_EQ(this->view->indexOf(Text(u"a")), -1);
    EXPECT_EQ(this->view->lastIndexOf(Text(u"e")), -1);
    EXPECT_TRUE(this->view->contains(Text(u"c")));
    const auto same = filled<ArrayList>({u"b", u"c", u"d"});
    EXPECT_TRUE(this->view->equals(*same));
    EXPECT_TRUE(same->equals(dynamic_cast<const Object&>(*this->view)));
    EXPECT_EQ(this->view->hashCode(), same->hashCode());
    EXPECT_EQ(this->view->compareTo(*filled<ArrayList>({u"b"})), 1);
}

TYPED_TEST(SubListTest, AppendsInsideTheList) {
    EXPECT_TRUE(this->view->add(Text(u"x")));
    EXPECT_TRUE(this->view->addAll(*filled<ArrayList>({u"y", u"z"})));
    EXPECT_TRUE(this->view->addAll(0, *filled<ArrayList>({u"0"})));
    EXPECT_EQ(show(*this->view), u"0 b c d x y z");
    EXPECT_EQ(show(*this->list), u"a 0 b c d x y z e");
}

TYPED_TEST(SubListTest, ListIteratorStaysInsideTheRange) {
    const auto walk = this->view->createListIterator(0);
    EXPECT_FALSE(walk->hasPrevious());
    expectModified([&] { walk->previous(); });
    EXPECT_EQ(walk->nextIndex(), 0);
    EXPECT_EQ(walk->previousIndex(), -1);
    EXPECT_EQ(show(*walk), u"b c d");
    EXPECT_FALSE(walk->hasNext());
    expectModified([&] { walk->next(); });
    EXPECT_EQ(walk->nextIndex(), 3);
    EXPECT_EQ(show(walk->previous()), u"d");
    EXPECT_EQ(show(*this->view->createListIterator(2)), u"d");
    EXPECT_EQ(show(*std::as_const(*this->view).createConstListIterator(1)), u"c d");
    EXPECT_EQ(show(*this->view->createListIterator(3)), u"");
}

TYPED_TEST(SubListTest, ListIteratorAddsAndRemoves) {
    const auto walk = this->view->createListIterator(0);
    walk->next();
    walk->remove();
    EXPECT_THROW(walk->remove(), IllegalStateException);
    EXPECT_TRUE(walk->add(Text(u"x")));
    walk->next();
    walk->next();
    walk->remove();
    EXPECT_TRUE(walk->add(Text(u"y")));
    EXPECT_FALSE(walk->hasNext());
    EXPECT_EQ(this->view->getSize(), 3);
    EXPECT_EQ(show(*this->view), u"x c y");
    EXPECT_EQ(show(*this->list), u"a x c y e");
}

TYPED_TEST(SubListTest, FailedRemovalOfAWalkLeavesTheViewAsItWas) {
    const auto walk = this->view->createListIterator(0);
    EXPECT_THROW(walk->remove(), IllegalStateException);
    EXPECT_EQ(this->view->getSize(), 3);
    EXPECT_EQ(show(*this->view), u"b c d");
}

TYPED_TEST(SubListTest, SetOfItsListIteratorEndsTheViewAsKept) {
    const auto walk = this->view->createListIterator(0);
    walk->next();
    walk->set(Text(u"x"));
    EXPECT_EQ(show(walk->next()), u"c") << "the walk goes on";
    expectModified([&] { this->view->get(0); });
    EXPECT_EQ(show(*this->list), u"a x c d e");
}

TYPED_TEST(SubListTest, PlainIteratorFailsBehindItsOwnRemovalAsKept) {
    const auto walk = this->view->createIterator();
    EXPECT_EQ(show(walk->next()), u"b");
    walk->remove();
    EXPECT_EQ(show(*this->view), u"c d");
    expectModified([&] { walk->next(); });
    EXPECT_EQ(show(*this->list), u"a c d e");
}

TYPED_TEST(SubListTest, ClearFailsAtTheSecondElementAsKept) {
    expectModified([&] { this->view->clear(); });
    EXPECT_EQ(show(*this->list), u"a c d e");
    const auto one = this->list->createSubList(1, 2);
    one->clear();
    EXPECT_EQ(show(*this->list), u"a d e");
    EXPECT_TRUE(one->isEmpty());
    this->list->createSubList(0, 0)->clear();
}

TYPED_TEST(SubListTest, PlainIteratorDoesNotNoticeItsOwnListsChanges) {
    const auto walk = this->view->createIterator();
    this->view->add(0, Text(u"x"));
    EXPECT_EQ(show(*walk), u"x b c d") << "the view's own counter stands still";
}

TYPED_TEST(SubListTest, RemoveByElement) {
    EXPECT_TRUE(this->view->remove(Text(u"c")));
    EXPECT_FALSE(this->view->remove(Text(u"e")));
    EXPECT_EQ(show(*this->view), u"b d");
    EXPECT_EQ(show(*this->list), u"a b d e");
}

TYPED_TEST(SubListTest, ViewsOfViews) {
    const auto inner = this->view->createSubList(1, 3);
    EXPECT_EQ(show(*inner), u"c d");
    EXPECT_EQ(inner->indexOf(Text(u"d")), 1);
    EXPECT_EQ(show(*inner->createSubList(1, 2)->createSubList(0, 1)), u"d");
    EXPECT_THROW(inner->createSubList(0, 3), RangeErrorException);
    EXPECT_TRUE(inner->add(0, Text(u"x")));
    EXPECT_EQ(inner->getSize(), 3);
    EXPECT_EQ(show(*this->view), u"b x c d");
    EXPECT_EQ(show(*this->list), u"a b x c d e");
    this->list->add(0, nullptr);
    expectModified([&] { this->view->createSubList(0, 1)->get(0); });
}

TYPED_TEST(SubListTest, ViewOfAViewEndsBehindItsOwnFirstChangeAsKept) {
    const std::function<void(List&)> changes[] = {
        [](List& inner) { inner.add(0, nullptr); }, [](List& inner) { inner.remove(0); },
        [](List& inner) { inner.set(0, nullptr); }, [](List& inner) { inner.add(nullptr); }};
    for (const auto& change : changes) {
        const auto inner = this->list->createSubList(1, 4)->createSubList(0, 2);
        change(*inner);
        expectModified([&] { inner->get(0); });
        expectModified([&] { inner->remove(0); });
    }
}

TYPED_TEST(SubListTest, ListWalkOfAViewOfAViewGoesOn) {
    const auto inner = this->view->createSubList(1, 3);
    const auto walk = inner->createListIterator(0);
    EXPECT_EQ(show(walk->next()), u"c");
    walk->remove();
    walk->add(Text(u"x"));
    walk->add(Text(u"y"));
    EXPECT_EQ(show(walk->next()), u"d");
    EXPECT_FALSE(walk->hasNext());
    EXPECT_EQ(inner->getSize(), 3);
    EXPECT_EQ(show(*this->view), u"b x y d");
    EXPECT_EQ(show(*this->list), u"a b x y d e");
}

TYPED_TEST(SubListTest, ChangeOfTheOuterViewIsNotNoticedByTheInnerAsKept) {
    const auto inner = this->view->createSubList(1, 3);
    this->view->add(0, Text(u"x"));
    EXPECT_EQ(show(inner->get(0)), u"b") << "the outer view's own counter stands still";
}

TYPED_TEST(SubListTest, AddAllOfItselfOrOfWhatHoldsItEnds) {
    EXPECT_TRUE(this->view->addAll(*this->view));
    EXPECT_EQ(show(*this->view), u"b c d b c d");
    const auto inner = this->view->createSubList(0, 1);
    EXPECT_TRUE(inner->addAll(*this->view));
    EXPECT_EQ(inner->getSize(), 7);
    EXPECT_EQ(this->view->getSize(), 12);
    EXPECT_EQ(this->list->getSize(), 14);
    EXPECT_TRUE(this->view->addAll(0, *this->view));
    EXPECT_EQ(this->view->getSize(), 24);
}

TYPED_TEST(SubListTest, AddAllOfItsListFailsBehindTheFirst) {
    expectModified([&] { this->view->addAll(*this->list); });
    EXPECT_EQ(show(*this->list), u"a b c d a e");
}

TYPED_TEST(SubListTest, TakesTheListsComparator) {
    const auto comparator = make<InitialComparator>();
    const auto fruits = make<TypeParam>(comparator.get());
    fill(*fruits, {u"apple", u"berry", u"cherry"});
    const auto part = fruits->createSubList(1, 3);
    EXPECT_EQ(part->indexOf(Text(u"c")), 1);
    EXPECT_EQ(comparator->GetRefCount(), 3u);
}

TYPED_TEST(SubListTest, KeepsItsListAlive) {
    EXPECT_EQ(this->list->GetRefCount(), 2u);
    this->list = nullptr;
    EXPECT_EQ(show(*this->view), u"b c d");
    auto walk = this->view->createListIterator(0);
    this->view = nullptr;
    EXPECT_EQ(show(*walk), u"b c d");
}

TYPED_TEST(SubListTest, WalkReleasesItsListsBothWays) {
    {
        const auto walk = this->view->createListIterator(1);
        EXPECT_EQ(this->list->GetRefCount(), 3u);
    }
    EXPECT_EQ(this->list->GetRefCount(), 2u);
    EXPECT_THROW(this->view->createListIterator(9), RangeErrorException);
    EXPECT_EQ(this->list->GetRefCount(), 2u);
}

TYPED_TEST(SubListTest, ElementThatEndsFindsTheViewInOrder) {
    struct AtEnd : Object {
        explicit AtEnd(std::function<void()> work) : work_(std::move(work)) {}
        ~AtEnd() override { work_(); }
        std::function<void()> work_;
    };
    std::vector<std::u16string> seen;
    const auto note = [&] { seen.push_back(show(*this->view)); };
    this->view->set(0, raw(make<AtEnd>(note)));
    this->view->remove(0);
    this->view->set(0, raw(make<AtEnd>(note)));
    const auto walk = this->view->createListIterator(0);
    walk->next();
    walk->remove();
    EXPECT_EQ(seen, (std::vector<std::u16string>{u"c d", u"d"}));
}

} // namespace
