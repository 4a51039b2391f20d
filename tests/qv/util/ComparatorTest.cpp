#include "qv/util/Comparator.h"

#include "qv/Exceptions.h"
#include "qv/Reference.h"
#include "qv/String.h"
#include "tests/support/CountedObject.h"
#include "tests/support/Slots.h"
#include "tests/support/Table.h"

#include <gtest/gtest.h>

using namespace qv;
using support::ForeignComponent;
using util::Comparator;

namespace {

const IQVUnknown* raw(const Object& object) { return static_cast<const ComObject*>(&object); }

/// An object with an order, a hash and, perhaps, a failure.
struct Weighed : Object {
    explicit Weighed(int weight) : weight_(weight) {}
    int compareTo(const Object& other) const override {
        const auto* const weighed = dynamic_cast<const Weighed*>(&other);
        if (weighed == nullptr) {
            throw CastFailedException();
        }
        return weight_ - weighed->weight_;
    }
    std::uint32_t hashCode() const override {
        if (weight_ < 0) {
            throw ResultException(QV_E_INVALIDARG);
        }
        return static_cast<std::uint32_t>(weight_);
    }
    int weight_;
};

/// An object that does not answer the interface of ordered ones.
struct Plain : Object {
    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override {
        return qvcom::QueryInterfaceMap(ComObject::GetComIntfMap(), this, iid, out);
    }
};

TEST(ComparatorTest, NativeFaceAsksTheObjects) {
    Comparator comparator;
    const Weighed light(3);
    const Weighed heavy(7);
    EXPECT_EQ(comparator.compare(light, heavy), -4);
    EXPECT_EQ(comparator.compare(heavy, light), 4);
    EXPECT_EQ(comparator.hash(heavy), 7u);
    EXPECT_THROW(comparator.compare(light, String(u"a")), CastFailedException);
    EXPECT_THROW(comparator.hash(Weighed(-1)), ResultException);
}

TEST(ComparatorTest, ComponentFaceAsksTheObjects) {
    Comparator comparator;
    const auto light = make<Weighed>(3);
    const auto heavy = make<Weighed>(7);
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(raw(*light), raw(*heavy), &order), 0);
    EXPECT_EQ(order, -4);
    std::uint32_t hash = 99;
    EXPECT_EQ(comparator.Hash(raw(*heavy), &hash), 0);
    EXPECT_EQ(hash, 7u);
    EXPECT_EQ(light->GetRefCount(), 1u) << "the interface is given back";
}

TEST(ComparatorTest, ObjectsOwnFailureIsTheResult) {
    Comparator comparator;
    const auto object = make<Weighed>(-1);
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(raw(*object), raw(*make<String>(u"a")), &order), QV_E_FAIL);
    EXPECT_EQ(order, 0);
    std::uint32_t hash = 99;
    EXPECT_EQ(comparator.Hash(raw(*object), &hash), QV_E_INVALIDARG);
    EXPECT_EQ(hash, 0u);
}

TEST(ComparatorTest, StringsCompareByTheirTexts) {
    Comparator comparator;
    const auto a = make<String>(u"a");
    const auto b = make<String>(u"b");
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(raw(*a), raw(*b), &order), 0);
    EXPECT_LT(order, 0);
    EXPECT_EQ(comparator.Compare(raw(*b), raw(*a), &order), 0);
    EXPECT_GT(order, 0);
    EXPECT_EQ(comparator.Compare(raw(*a), raw(*a), &order), 0);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(comparator.Compare(raw(*a), raw(*make<String>(u"a")), &order), 0);
    EXPECT_EQ(order, 0);
    std::uint32_t hash = 0;
    EXPECT_EQ(comparator.Hash(raw(*a), &hash), 0);
    EXPECT_EQ(hash, a->hashCode());
}

TEST(ComparatorTest, StringAndAnotherClassDoNotCompare) {
    Comparator comparator;
    const auto text = make<String>(u"a");
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(raw(*text), raw(*make<Object>()), &order), QV_E_FAIL);
    EXPECT_EQ(order, 0);
}

TEST(ComparatorTest, ClassDerivedFromStringAnswersForItself) {
    struct Longest : String {
        using String::String;
        int compareTo(const Object&) const override { return 42; }
        std::uint32_t hashCode() const override { return 43; }
    };
    Comparator comparator;
    const auto text = make<Longest>(u"a");
    std::int32_t order = 0;
    EXPECT_EQ(comparator.Compare(raw(*text), raw(*make<String>(u"a")), &order), 0);
    EXPECT_EQ(order, 42);
    std::uint32_t hash = 0;
    EXPECT_EQ(comparator.Hash(raw(*text), &hash), 0);
    EXPECT_EQ(hash, 43u);
}

TEST(ComparatorTest, WhatAnswersNoOrderComparesByAddress) {
    Comparator comparator;
    ForeignComponent components[2];
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(&components[0], &components[1], &order), 0);
    EXPECT_EQ(order, -1);
    EXPECT_EQ(comparator.Compare(&components[1], &components[0], &order), 0);
    EXPECT_EQ(order, 1);
    EXPECT_EQ(comparator.Compare(&components[0], &components[0], &order), 0);
    EXPECT_EQ(order, 0);
    std::uint32_t hash = 0;
    EXPECT_EQ(comparator.Hash(&components[0], &hash), 0);
    EXPECT_EQ(hash, static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(
                        static_cast<IQVUnknown*>(&components[0]))));
    EXPECT_EQ(components[0].count(), 1u);
}

TEST(ComparatorTest, ObjectThatHidesItsOrderComparesByAddress) {
    Comparator comparator;
    const Plain objects[2];
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(raw(objects[0]), raw(objects[1]), &order), 0);
    EXPECT_EQ(order, -1);
}

TEST(ComparatorTest, NullStandsBeforeEverything) {
    Comparator comparator;
    const auto object = make<Weighed>(3);
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(nullptr, raw(*object), &order), 0);
    EXPECT_EQ(order, -1);
    EXPECT_EQ(comparator.Compare(nullptr, nullptr, &order), 0);
    EXPECT_EQ(order, 0);
    std::uint32_t hash = 99;
    EXPECT_EQ(comparator.Hash(nullptr, &hash), 0);
    EXPECT_EQ(hash, 0u);
}

TEST(ComparatorTest, ObjectBesideNullIsOrderedAsBesideAForeignComponent) {
    Comparator comparator;
    const auto object = make<Weighed>(3);
    std::int32_t order = 99;
    EXPECT_EQ(comparator.Compare(raw(*object), nullptr, &order), 0);
    EXPECT_EQ(order, -1) << "the object's own answer has the opposite sign";
    EXPECT_EQ(comparator.Compare(raw(*make<String>(u"a")), nullptr, &order), 0);
    EXPECT_EQ(order, -1);
}

TEST(ComparatorTest, ComparatorsOfOneClassAreEqual) {
    struct Other : Comparator {};
    const Comparator one;
    const Comparator two;
    const Other other;
    EXPECT_TRUE(one.equals(two));
    EXPECT_EQ(one.compareTo(two), 0);
    EXPECT_FALSE(one.equals(other));
    EXPECT_FALSE(other.equals(one));
    EXPECT_THROW(one.compareTo(other), CastFailedException);
    EXPECT_THROW(one.compareTo(Object()), CastFailedException);
}

TEST(ComparatorTest, AnswersItsInterface) {
    const auto comparator = make<Comparator>();
    void* face = nullptr;
    ASSERT_EQ(comparator->QueryInterface(IID_IQVComparator, &face), 0);
    const auto held = Reference<IQVComparator>::adopt(static_cast<IQVComparator*>(face));
    EXPECT_EQ(held.get(), static_cast<IQVComparator*>(comparator.get()));
    EXPECT_EQ(comparator->GetRefCount(), 2u);
    ASSERT_EQ(comparator->QueryInterface(IID_IQVComparable, &face), 0);
    Reference<IQVComparable>::adopt(static_cast<IQVComparable*>(face));
    ASSERT_EQ(held->QueryInterface(IID_IQVUnknown, &face), 0);
    EXPECT_EQ(face, static_cast<ComObject*>(comparator.get()));
    comparator->Release();
}

TEST(ComparatorTest, SlotsAreInOrder) {
    support::expectConsecutive({support::slotOf(&Object::toString),
                                support::slotOf(&Comparator::compare),
                                support::slotOf(&Comparator::hash)});
    support::expectConsecutive(
        {support::slotOf(&IQVComparator::QueryInterface), support::slotOf(&IQVComparator::AddRef),
         support::slotOf(&IQVComparator::Release), support::slotOf(&IQVComparator::Compare),
         support::slotOf(&IQVComparator::Hash)});
    EXPECT_EQ(support::slotOf(&IQVComparator::QueryInterface), 0);
}

} // namespace
