#include "qv/Object.h"

#include "qv/Class.h"
#include "qv/CopyObject.h"
#include "qv/Exceptions.h"
#include "qv/String.h"
#include "qv/qvcom/Module.h"
#include "tests/support/CountedObject.h"
#include "tests/support/Printing.h"
#include "tests/support/Table.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

class ZeroHash : public qv::Object {
public:
    std::uint32_t hashCode() const override { return 0; }
    const qv::Class* getClass() const override { return qv::Class::forName(u"CQVObject"); }
};

class HighHash : public qv::Object {
public:
    std::uint32_t hashCode() const override { return 0xF0000001u; }
    const qv::Class* getClass() const override { return qv::Class::forName(u"CQVObject"); }
};

class Failing : public qv::Object {
public:
    explicit Failing(int how) : how_(how) {}
    int compareTo(const qv::Object&) const override { fail(); }
    std::uint32_t hashCode() const override { fail(); }

private:
    [[noreturn]] void fail() const {
        switch (how_) {
        case 0:
            throw qv::ResultException(qv::QV_E_INVALIDARG);
        case 1:
            throw std::bad_alloc();
        case 2:
            throw qv::OutOfMemoryException();
        default:
            throw 42;
        }
    }
    int how_;
};

class Value : public qv::CopyObject {
public:
    explicit Value(int given) : number(given) {}
    int number;
};

TEST(ObjectTest, HoldsTwoTablesTheCountAndTheModule) {
    EXPECT_EQ(sizeof(qv::Object), 4 * sizeof(void*));
}

TEST(ObjectTest, CloneIsUnsupported) {
    EXPECT_EQ(support::thrownText<qv::Exception>([] { qv::Object().clone(); }), "");
}

TEST(ObjectTest, ComparesAddresses) {
    qv::Object objects[2];
    EXPECT_EQ(objects[1].compareTo(objects[0]), 1);
    EXPECT_EQ(objects[0].compareTo(objects[1]), -1);
    EXPECT_EQ(objects[0].compareTo(objects[0]), 0);
    EXPECT_TRUE(objects[0].equals(objects[0]));
    EXPECT_FALSE(objects[0].equals(objects[1]));
}

TEST(ObjectTest, HashIsTheLowHalfOfTheAddress) {
    const qv::Object object;
    EXPECT_EQ(object.hashCode(),
              static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(&object)));
}

TEST(ObjectTest, TextIsClassNameAndHashInLowerCaseHexadecimal) {
    const qv::Object object;
    char expected[32];
    std::snprintf(expected, sizeof expected, "CQVObject@%x", object.hashCode());
    EXPECT_STREQ(object.toString().getBytes(u"UTF-8"), expected);
    EXPECT_STREQ(ZeroHash().toString().getBytes(u"UTF-8"), "CQVObject@0");
}

TEST(ObjectTest, HashIsWrittenAsAnUnsignedNumber) {
    EXPECT_STREQ(HighHash().toString().getBytes(u"UTF-8"), "CQVObject@f0000001");
}

TEST(ObjectTest, TextOfAnUnregisteredClassThrows) {
    const qv::ResultException exception;
    EXPECT_EQ(support::thrownText<qv::ClassNotFoundException>([&] { exception.toString(); }),
              "qv::ResultException");
}

TEST(ObjectTest, QueryGivesOnePointerForAnInterfaceWhicheverWayItIsAsked) {
    qv::Object object;
    object.AddRef();
    void* comparable = nullptr;
    void* unknown = nullptr;
    ASSERT_EQ(object.QueryInterface(IID_IQVComparable, &comparable), 0);
    ASSERT_EQ(static_cast<IQVComparable*>(comparable)->QueryInterface(IID_IQVUnknown, &unknown), 0);
    EXPECT_EQ(unknown, static_cast<qv::ComObject*>(&object));
    void* again = nullptr;
    ASSERT_EQ(static_cast<IQVUnknown*>(unknown)->QueryInterface(IID_IQVComparable, &again), 0);
    EXPECT_EQ(again, comparable);
    EXPECT_EQ(object.GetRefCount(), 4u);
    EXPECT_EQ(static_cast<IQVComparable*>(comparable)->Release(), 3u);
    EXPECT_EQ(static_cast<IQVComparable*>(comparable)->AddRef(), 4u);
}

TEST(ObjectTest, QueryForAForeignIdStoresNull) {
    qv::Object object;
    void* out = &object;
    EXPECT_EQ(object.QueryInterface(IID_IQVByteBuffer, &out), qv::QV_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object.QueryInterface(IID_IQVByteBuffer, nullptr), qv::QV_E_POINTER);
}

TEST(ObjectTest, NonDelegatingQueryAsksTheVirtualOne) {
    qv::String text;
    text.AddRef();
    void* out = nullptr;
    EXPECT_EQ(text.NonDelegatingQueryInterface(IID_IQVCharBuffer, &out), 0);
    EXPECT_EQ(out, static_cast<IQVCharBuffer*>(&text));
    EXPECT_EQ(text.GetRefCount(), 2u);
    EXPECT_EQ(text.NonDelegatingQueryInterface(IID_IQVByteBuffer, &out), qv::QV_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST(ObjectTest, TableIsThatOfAComponent) {
    // The first three words of an object's table are the three operations of the unknown interface.
    struct Table {
        std::int32_t (*queryInterface)(void*, const GUID&, void**);
        std::uint32_t (*addRef)(const void*);
        std::uint32_t (*release)(const void*);
    };
    qv::Object object;
    const auto* const table = support::tableOf<Table>(&object);
    EXPECT_EQ(table->addRef(&object), 1u);
    EXPECT_EQ(table->addRef(&object), 2u);
    void* out = nullptr;
    EXPECT_EQ(table->queryInterface(&object, IID_IQVUnknown, &out), 0);
    EXPECT_EQ(out, &object);
    EXPECT_EQ(table->release(&object), 2u);
}

TEST(ObjectTest, ComparableTableHoldsItsOperationsInOrder) {
    struct Table {
        void* unknown[3];
        std::int32_t (*compareTo)(const void*, const IQVUnknown*, int*);
        std::int32_t (*hashCode)(const void*, std::uint32_t*);
    };
    qv::Object object;
    IQVComparable* const comparable = &object;
    const auto* const table = support::tableOf<Table>(comparable);
    int order = 7;
    EXPECT_EQ(table->compareTo(comparable, static_cast<qv::ComObject*>(&object), &order), 0);
    EXPECT_EQ(order, 0);
    std::uint32_t hash = 0;
    EXPECT_EQ(table->hashCode(comparable, &hash), 0);
    EXPECT_EQ(hash, object.hashCode());
}

TEST(ObjectComponentTest, CompareToCallsTheNativeTwin) {
    qv::Object objects[2];
    int order = 9;
    EXPECT_EQ(objects[1].CompareTo(static_cast<qv::ComObject*>(&objects[0]), &order), 0);
    EXPECT_EQ(order, 1);
    EXPECT_EQ(objects[0].CompareTo(static_cast<qv::ComObject*>(&objects[1]), &order), 0);
    EXPECT_EQ(order, -1);
    EXPECT_EQ(objects[0].CompareTo(static_cast<IQVComparable*>(&objects[0]), &order), 0);
    EXPECT_EQ(order, 0);
}

TEST(ObjectComponentTest, ComparingWithAForeignComponentHasTheOppositeSign) {
    struct Pair {
        qv::Object object;
        support::ForeignComponent behind;
    } pair;
    int order = 9;
    EXPECT_EQ(pair.object.CompareTo(&pair.behind, &order), 0);
    EXPECT_EQ(order, 1);
    struct Reverse {
        support::ForeignComponent before;
        qv::Object object;
    } reverse;
    EXPECT_EQ(reverse.object.CompareTo(&reverse.before, &order), 0);
    EXPECT_EQ(order, -1);
    EXPECT_EQ(pair.object.CompareTo(nullptr, &order), 0);
    EXPECT_EQ(order, -1);
}

TEST(ObjectComponentTest, FailuresBecomeResultsAndOutputsAreZeroed) {
    const std::int32_t expected[] = {qv::QV_E_INVALIDARG, qv::QV_E_OUTOFMEMORY,
                                     qv::QV_E_OUTOFMEMORY, qv::QV_E_FAIL};
    for (int how = 0; how < 4; ++how) {
        const Failing failing(how);
        int order = 5;
        EXPECT_EQ(failing.CompareTo(static_cast<const qv::ComObject*>(&failing), &order),
                  expected[how]);
        EXPECT_EQ(order, 0);
        std::uint32_t hash = 5;
        EXPECT_EQ(failing.HashCode(&hash), expected[how]);
        EXPECT_EQ(hash, 0u);
    }
}

static_assert(!std::is_default_constructible_v<qv::CopyObject>);

TEST(CopyObjectTest, CountAndModuleNeverTravelWithTheValue) {
    qv::qvcom::Module module;
    Value value(3);
    value.SetComModule(&module);
    value.AddRef();
    Value copy(value);
    EXPECT_EQ(copy.number, 3);
    EXPECT_EQ(copy.GetRefCount(), 0u);
    copy.AddRef();
    copy.AddRef();
    copy = value;
    EXPECT_EQ(copy.GetRefCount(), 2u);
    EXPECT_EQ(module.GetRefCount(), 1u) << "of the first value alone";
}

} // namespace
