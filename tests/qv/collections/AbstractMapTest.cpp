// Maps and collections with nothing of their own but what they must have.

#include "qv/collections/qvcom/AbstractMap.h"

#include "qv/collections/DefaultComparator.h"
#include "qv/collections/qvcom/AbstractSet.h"
#include "qv/collections/qvcom/HashMap.h"
#include "tests/qv/collections/CollectionElements.h"

using namespace elements;

namespace {

/// A collection over a list that another holds.
class Window : public AbstractSet {
public:
    explicit Window(Reference<SmallList> list) : list_(std::move(list)) {}
    explicit Window(const IQVComparator* comparator)
        : AbstractSet(comparator), list_(make<SmallList>()) {}
    Window(const Window& other) : AbstractSet(other), list_(make<SmallList>()) {}
    Reference<Iterator> createIterator() override { return list_->createIterator(); }
    Reference<ConstIterator> createConstIterator() const override {
        return std::as_const(*list_).createConstIterator();
    }
    int getSize() const override { return list_->getSize(); }
    IQVComparator* comparator() const { return comparator_; }

private:
    Reference<SmallList> list_;
};

struct Pair : collections::qvcom::detail::Implements<ComObject, MapEntry> {
    Pair(const char16_t* newKey, const char16_t* newValue)
        : key(newText(newKey)),
          value(newValue == nullptr ? Reference<String>() : newText(newValue)) {}
    int compareTo(const Object&) const override { return 0; }
    bool equals(const Object&) const override { return false; }
    Element getKey() const override { return raw(key); }
    Element getValue() const override {
        return value.get() != nullptr ? Element(raw(value)) : Element();
    }
    std::uint32_t hashCode() const override { return 0x80000001u; }
    Element setValue(IQVUnknown*) override { throw UnsupportedOperationException(); }
    Reference<String> key;
    Reference<String> value;
};

/// A map over a list of pairs, which may hold a key twice.
class PairMap : public AbstractMap {
public:
    PairMap() = default;
    PairMap(const IQVComparator* keys, const IQVComparator* values) : AbstractMap(keys, values) {}
    PairMap(const PairMap& other) : AbstractMap(other) {}
    Reference<const Set> createEntrySet() const override { return make<Window>(pairs); }
    Reference<Set> createEntrySet() override { return make<Window>(pairs); }
    void pair(const char16_t* key, const char16_t* value) {
        pairs->add(static_cast<ComObject*>(make<Pair>(key, value).get()));
    }
    IQVComparator* keys() const { return keyComparator_; }
    IQVComparator* values() const { return valueComparator_; }
    Reference<SmallList> pairs = make<SmallList>();
};

Reference<PairMap> pairMap() {
    auto map = make<PairMap>();
    map->pair(u"a", u"1");
    map->pair(u"b", u"2");
    map->pair(u"a", u"3");
    return map;
}

TEST(AbstractCollectionTest, CannotAdd) {
    const auto window = make<Window>(filled<SmallList>({u"a"}));
    EXPECT_THROW(window->add(Text(u"b")), UnsupportedOperationException);
    EXPECT_THROW(window->addAll(*filled<ArrayList>({u"b"})), UnsupportedOperationException);
    EXPECT_FALSE(window->addAll(*make<ArrayList>()));
}

TEST(AbstractCollectionTest, WorksByWalking) {
    const auto list = filled<SmallList>({u"a", u"b", u"a"});
    const auto window = make<Window>(list);
    EXPECT_TRUE(window->contains(Text(u"b")));
    EXPECT_TRUE(window->containsAll(*filled<ArrayList>({u"a", u"b"})));
    EXPECT_TRUE(window->remove(Text(u"a")));
    EXPECT_FALSE(window->remove(Text(u"x")));
    EXPECT_EQ(show(*window), u"b a");
    EXPECT_TRUE(window->removeAll(*filled<ArrayList>({u"a", u"a"})));
    window->clear();
    EXPECT_TRUE(list->isEmpty());
    EXPECT_TRUE(window->isEmpty());
}

TEST(AbstractCollectionTest, AddAllNeverStopsEarly) {
    struct Picky : Window {
        using Window::Window;
        bool add(IQVUnknown* element) override {
            seen += show(element);
            return show(element) == u"b";
        }
        std::u16string seen;
    };
    const auto picky = make<Picky>(make<SmallList>());
    EXPECT_TRUE(picky->addAll(*filled<ArrayList>({u"a", u"b", u"c"})));
    EXPECT_EQ(picky->seen, u"abc");
    EXPECT_FALSE(picky->addAll(*filled<ArrayList>({u"d"})));
}

TEST(AbstractCollectionTest, IsEqualToItselfOnly) {
    const auto list = filled<SmallList>({u"a"});
    const auto one = make<Window>(list);
    const auto other = make<Window>(list);
    EXPECT_TRUE(one->equals(*one));
    EXPECT_FALSE(one->equals(*other));
    EXPECT_EQ(one->compareTo(*one), 0);
    EXPECT_EQ(one->compareTo(*other), -other->compareTo(*one));
    EXPECT_NE(one->compareTo(*other), 0);
    EXPECT_NE(one->hashCode(), 0u);
}

TEST(AbstractCollectionTest, TakesTheDefaultComparatorAGivenOneOrNone) {
    EXPECT_EQ(make<Window>(make<SmallList>())->comparator(),
              collections::GetDefaultComparator().get());
    const auto comparator = make<InitialComparator>();
    const auto window = make<Window>(comparator.get());
    EXPECT_EQ(window->comparator(), comparator.get());
    const auto copy = make<Window>(*window);
    EXPECT_EQ(copy->comparator(), comparator.get());
    EXPECT_EQ(comparator->GetRefCount(), 3u);
    EXPECT_EQ(make<Window>(static_cast<const IQVComparator*>(nullptr))->comparator(), nullptr);
}

TEST(AbstractMapTest, FindsTheFirstEntry) {
    const auto map = pairMap();
    EXPECT_EQ(map->getSize(), 3);
    EXPECT_EQ(show(map->get(Text(u"a"))), u"1");
    EXPECT_EQ(map->get(Text(u"x")).get(), nullptr);
    EXPECT_TRUE(map->containsKey(Text(u"b")));
    EXPECT_FALSE(map->containsKey(Text(u"x")));
    EXPECT_TRUE(map->containsValue(Text(u"3")));
    EXPECT_FALSE(map->containsValue(Text(u"4")));
}

TEST(AbstractMapTest, CannotPut) {
    const auto map = make<PairMap>();
    EXPECT_THROW(map->put(Text(u"a"), Text(u"1")), UnsupportedOperationException);
    EXPECT_THROW(map->putAll(*pairMap()), UnsupportedOperationException);
    map->putAll(*make<HashMap>());
}

TEST(AbstractMapTest, RemovesEveryEntryOfAKeyAndGivesTheLastValue) {
    const auto map = pairMap();
    EXPECT_EQ(show(map->remove(Text(u"a"))), u"3");
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(map->remove(Text(u"a")).get(), nullptr);
    EXPECT_EQ(show(*map->createKeySet()), u"b");
}

TEST(AbstractMapTest, RemovesByItsOwnKey) {
    const auto map = pairMap();
    const IQVUnknown* const own = map->createKeySet()->createIterator()->next().get();
    EXPECT_EQ(show(map->remove(own)), u"3");
}

TEST(AbstractMapTest, ClearEmptiesTheEntrySet) {
    const auto map = pairMap();
    map->clear();
    EXPECT_TRUE(map->isEmpty());
    EXPECT_TRUE(map->pairs->isEmpty());
}

TEST(AbstractMapTest, HashIsTheSumOfTheEntries) {
    EXPECT_EQ(make<PairMap>()->hashCode(), 0u);
    EXPECT_EQ(pairMap()->hashCode(), 0x80000003u);
}

TEST(AbstractMapTest, ComparesWithAnyMap) {
    const auto map = make<PairMap>();
    map->pair(u"a", u"1");
    map->pair(u"b", nullptr);
    const auto hashed = make<HashMap>();
    hashed->put(Text(u"b"), nullptr);
    hashed->put(Text(u"a"), Text(u"1"));
    EXPECT_TRUE(map->equals(*hashed));
    EXPECT_TRUE(hashed->equals(*map));
    EXPECT_EQ(map->compareTo(*hashed), 0);
    hashed->remove(Text(u"b"));
    EXPECT_FALSE(map->equals(*hashed));
    EXPECT_EQ(map->compareTo(*hashed), 1);
    EXPECT_FALSE(map->equals(Object()));
    EXPECT_THROW(map->compareTo(*filled<ArrayList>({u"a"})), CastFailedException);
}

TEST(AbstractMapTest, EntrySetOfSomethingElseIsACastFailure) {
    const auto map = make<PairMap>();
    map->pairs->add(Text(u"no pair"));
    EXPECT_THROW(map->get(Text(u"a")), CastFailedException);
    EXPECT_THROW(map->containsKey(Text(u"a")), CastFailedException);
    EXPECT_THROW(map->containsValue(Text(u"a")), CastFailedException);
    EXPECT_THROW(map->hashCode(), CastFailedException);
    EXPECT_THROW(map->createKeySet()->createIterator()->next(), CastFailedException);
    map->pairs->clear();
    map->pairs->add(nullptr);
    EXPECT_THROW(map->remove(Text(u"a")), CastFailedException);
    EXPECT_THROW(map->createValueCollection()->createIterator()->next(), CastFailedException);
}

TEST(AbstractMapTest, TakesComparators) {
    const auto map = make<PairMap>();
    EXPECT_EQ(map->keys(), collections::GetDefaultComparator().get());
    EXPECT_EQ(map->values(), map->keys());
    const auto comparator = make<InitialComparator>();
    const auto own = make<PairMap>(comparator.get(), nullptr);
    EXPECT_EQ(own->keys(), comparator.get());
    EXPECT_EQ(own->values(), nullptr);
    const auto copy = make<PairMap>(*own);
    EXPECT_EQ(copy->keys(), comparator.get());
    EXPECT_EQ(comparator->GetRefCount(), 3u);
}

TEST(AbstractMapTest, AsksTheComparatorOfEachSideTheStoredOneFirst) {
    using Asked = std::vector<std::u16string>;
    const auto keys = make<InitialComparator>();
    const auto values = make<InitialComparator>();
    const auto map = make<PairMap>(keys.get(), values.get());
    map->pair(u"apple", u"one");
    EXPECT_TRUE(map->containsKey(Text(u"a")));
    EXPECT_EQ(show(map->get(Text(u"av"))), u"one");
    EXPECT_EQ(keys->asked, (Asked{u"apple,a", u"apple,av"}));
    EXPECT_EQ(values->asked, Asked());
    EXPECT_TRUE(map->containsValue(Text(u"o")));
    EXPECT_EQ(values->asked, (Asked{u"one,o"}));
    keys->asked.clear();
    EXPECT_EQ(show(map->remove(Text(u"as"))), u"one");
    EXPECT_EQ(keys->asked, (Asked{u"apple,as"}));
    EXPECT_EQ(values->asked, (Asked{u"one,o"}));
}

TEST(AbstractMapTest, ViewsWalkTheEntries) {
    const auto map = pairMap();
    EXPECT_EQ(show(*map->createKeySet()), u"a b a");
    EXPECT_EQ(show(*map->createValueCollection()), u"1 2 3");
    const auto walk = map->createValueCollection()->createIterator();
    walk->next();
    walk->next();
    walk->remove();
    EXPECT_EQ(show(*map->createKeySet()), u"a a");
    EXPECT_EQ(show(walk->next()), u"3");
    EXPECT_THROW(map->createKeySet()->createIterator()->remove(), IllegalStateException);
}

} // namespace
