// The native operation tables, whose order other modules are built on.

#include "qv/Class.h"
#include "qv/Exceptions.h"
#include "qv/Str1HashMap.h"
#include "qv/String.h"
#include "qv/util/AbstractBuffer.h"
#include "tests/support/Slots.h"

using namespace qv;
using support::expectConsecutive;
using support::slotOf;

namespace {

/// A virtual destructor takes two entries of a table.
constexpr std::ptrdiff_t destructorEntries = 2;

TEST(SlotOrderTest, ObjectsBeginWithTheUnknownInterface) {
    EXPECT_EQ(slotOf(&Object::QueryInterface), 0);
    EXPECT_EQ(slotOf(&Object::AddRef), 1);
    EXPECT_EQ(slotOf(&Object::Release), 2);
}

TEST(SlotOrderTest, ObjectMethodsFollowTheDestructor) {
    EXPECT_EQ(slotOf(&Object::clone), slotOf(&Object::Release) + destructorEntries + 1);
    expectConsecutive({slotOf(&Object::clone), slotOf(&Object::compareTo), slotOf(&Object::equals),
                       slotOf(&Object::getClass), slotOf(&Object::hashCode),
                       slotOf(&Object::toString)});
}

TEST(SlotOrderTest, ExceptionAddsItsTwo) {
    EXPECT_EQ(slotOf(&Exception::toString), slotOf(&Object::toString));
    expectConsecutive({slotOf(&Object::toString), slotOf(&Exception::getDescription),
                       slotOf(&Exception::getResult)});
    EXPECT_EQ(slotOf(&ResultException::getResult), slotOf(&Exception::getResult));
    EXPECT_EQ(slotOf(&OutOfMemoryException::getResult), slotOf(&Exception::getResult));
}

TEST(SlotOrderTest, ClassAddsItsThree) {
    expectConsecutive({slotOf(&Object::toString), slotOf(&Class::getName),
                       slotOf(&Class::isInstance), slotOf(&Class::createInstance)});
}

template <class Unit>
class BufferSlotOrderTest : public testing::Test {};
using Units = testing::Types<signed char, char16_t>;
TYPED_TEST_SUITE(BufferSlotOrderTest, Units);

TYPED_TEST(BufferSlotOrderTest, NineNativeOperationsFollowThoseOfObjects) {
    using Buffer = util::AbstractBuffer<TypeParam>;
    expectConsecutive({slotOf(&Object::toString), slotOf(&Buffer::getLength),
                       slotOf(&Buffer::getData), slotOf(&Buffer::getReadLock),
                       slotOf(&Buffer::releaseReadLock), slotOf(&Buffer::isWritable),
                       slotOf(&Buffer::getWriteLock), slotOf(&Buffer::ensureCapacity),
                       slotOf(&Buffer::releaseWriteLock), slotOf(&Buffer::freeExtra)});
}

TEST(SlotOrderTest, StoreHasItsFourBehindTheDestructor) {
    EXPECT_EQ(slotOf(&StrBuf1::AddRef), destructorEntries);
    expectConsecutive({slotOf(&StrBuf1::AddRef), slotOf(&StrBuf1::Release),
                       slotOf(&StrBuf1::isPrivatelyHeld), slotOf(&StrBuf1::getBufCapacity)});
}

/// Shows the operations that only subclasses see.
struct OpenString : Str1 {
    static auto allocation() { return &OpenString::fastAllocBuffer; }
};

template <class V>
struct OpenMap : Str1HashMap<V> {
    static auto normalization() { return &OpenMap::normalizeKey; }
};

TEST(SlotOrderTest, LightStringHasOneBehindTheDestructor) {
    EXPECT_EQ(slotOf(OpenString::allocation()), destructorEntries);
}

template <class Value>
class MapSlotOrderTest : public testing::Test {};
using Values = testing::Types<Str1, void*, CopyReference<ComObject>>;
TYPED_TEST_SUITE(MapSlotOrderTest, Values);

TYPED_TEST(MapSlotOrderTest, OperationsStandBehindTheDestructorInOrder) {
    using Map = Str1HashMap<TypeParam>;
    EXPECT_EQ(slotOf(&Map::clear), destructorEntries);
    expectConsecutive({slotOf(&Map::clear), slotOf(&Map::containsKey), slotOf(&Map::get),
                       slotOf(&Map::getSize), slotOf(&Map::put), slotOf(&Map::remove),
                       slotOf(&Map::iteratorInit), slotOf(&Map::iteratorHasNext),
                       slotOf(&Map::iteratorNext), slotOf(OpenMap<TypeParam>::normalization())});
}

} // namespace
