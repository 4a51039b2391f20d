#include "qv/qvcom/InterfaceMap.h"

#include "qv/Object.h"
#include "qv/Results.h"
#include "qv/String.h"
#include "qv/util/RWBuffer.h"

#include <gtest/gtest.h>

using namespace qv::qvcom;

namespace {

constexpr GUID idA{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr GUID idB{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 12}};

int calls = 0;
std::uint32_t lastData = 0;

template <std::int32_t result>
std::int32_t answer(qv::ComObject*, const GUID&, void** out, std::uint32_t data) {
    ++calls;
    lastData = data;
    *out = &calls;
    return result;
}

InterfaceData functionRow(const GUID* iid, InterfaceFunction function, std::uint32_t data = 0) {
    return {iid, {.function = function}, data};
}

class InterfaceMapTest : public testing::Test {
protected:
    void SetUp() override {
        calls = 0;
        object.AddRef();
    }
    qv::String object; // any object
    void* out = nullptr;
};

TEST_F(InterfaceMapTest, NullOutputIsRefused) {
    const InterfaceData map[] = {endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, IID_IQVUnknown, nullptr), qv::QV_E_POINTER);
}

TEST_F(InterfaceMapTest, UnknownComesBeforeTheTable) {
    const InterfaceData map[] = {functionRow(&IID_IQVUnknown, &answer<-5>), endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, IID_IQVUnknown, &out), 0);
    EXPECT_EQ(out, &object);
    EXPECT_EQ(object.GetRefCount(), 2u);
    EXPECT_EQ(calls, 0);
}

TEST_F(InterfaceMapTest, UnknownOfNoObjectIsNullAndSucceeds) {
    const InterfaceData map[] = {endRow()};
    out = &object;
    EXPECT_EQ(QueryInterfaceMap(map, nullptr, IID_IQVUnknown, &out), 0);
    EXPECT_EQ(out, nullptr);
}

TEST_F(InterfaceMapTest, EmptyTableFindsNothingAndStoresNull) {
    const InterfaceData map[] = {endRow()};
    out = &object;
    EXPECT_EQ(QueryInterfaceMap(map, &object, idA, &out), qv::QV_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object.GetRefCount(), 1u);
}

TEST_F(InterfaceMapTest, FunctionGetsTheRowsData) {
    const InterfaceData map[] = {functionRow(&idB, &answer<0>, 1),
                                 functionRow(&idA, &answer<0>, 77), endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, idA, &out), 0);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(lastData, 77u);
}

TEST_F(InterfaceMapTest, FailureOfARowWithAnIdEndsTheSearch) {
    const InterfaceData map[] = {functionRow(&idA, &answer<-5>), functionRow(&idA, &answer<0>),
                                 endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, idA, &out), -5);
    EXPECT_EQ(calls, 1);
}

TEST_F(InterfaceMapTest, PositiveResultOfARowWithAnIdGoesOn) {
    const InterfaceData map[] = {functionRow(&idA, &answer<1>), functionRow(&idA, &answer<0>),
                                 endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, idA, &out), 0);
    EXPECT_EQ(calls, 2);
}

TEST_F(InterfaceMapTest, FailureOfAChainRowGoesOn) {
    const InterfaceData map[] = {chainRow(&answer<-5>), chainRow(&answer<3>),
                                 functionRow(&idA, &answer<0>), endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, idA, &out), 0);
    EXPECT_EQ(calls, 3);
}

TEST_F(InterfaceMapTest, ChainRowThatFailsLastLeavesNull) {
    const InterfaceData map[] = {chainRow(&answer<-5>), endRow()};
    EXPECT_EQ(QueryInterfaceMap(map, &object, idA, &out), qv::QV_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST_F(InterfaceMapTest, OffsetRowCountsThroughTheInterface) {
    qv::Object whole;
    whole.AddRef();
    EXPECT_EQ(QueryInterfaceMap(qv::Object::GetComIntfMap(), &whole, IID_IQVComparable, &out), 0);
    EXPECT_EQ(out, static_cast<IQVComparable*>(&whole));
    EXPECT_EQ(whole.GetRefCount(), 2u);
}

/// A row as its table holds it: the id, 1 for an offset row or 0 for a chain, and the offset.
struct MapRow {
    const GUID* iid;
    std::uintptr_t word;
    std::size_t offset;
};

void expectRows(const InterfaceData* map, const std::vector<MapRow>& rows) {
    for (const MapRow& row : rows) {
        ASSERT_NE(map->entry.word, 0u);
        if (row.iid == nullptr) {
            EXPECT_EQ(map->iid, nullptr);
            EXPECT_EQ(map->entry.function, &chainToObject);
        } else {
            ASSERT_NE(map->iid, nullptr);
            EXPECT_TRUE(qv::equalGuids(*map->iid, *row.iid));
            EXPECT_EQ(map->entry.word, row.word);
            EXPECT_EQ(map->data, row.offset);
        }
        ++map;
    }
    EXPECT_EQ(map->entry.word, 0u);
}

/// How far behind the start of an object one of its interfaces stands.
template <class Interface, class Class>
std::size_t offsetOf(Class& object) {
    return static_cast<std::size_t>(reinterpret_cast<char*>(static_cast<Interface*>(&object)) -
                                    reinterpret_cast<char*>(&object));
}

TEST_F(InterfaceMapTest, ClassesHaveTheirRows) {
    qv::Object whole;
    qv::util::RWByteBuffer bytes;
    expectRows(qv::ComObject::GetComIntfMap(), {{&IID_IQVUnknown, 1, 0}});
    expectRows(qv::Object::GetComIntfMap(),
               {{&IID_IQVComparable, 1, offsetOf<IQVComparable>(whole)}});
    expectRows(qv::util::AbstractByteBuffer::GetComIntfMap(),
               {{&IID_IQVByteBuffer, 1, offsetOf<IQVByteBuffer>(bytes)}, {nullptr, 0, 0}});
    expectRows(qv::util::AbstractCharBuffer::GetComIntfMap(),
               {{&IID_IQVCharBuffer, 1, offsetOf<IQVCharBuffer>(object)}, {nullptr, 0, 0}});
}

TEST_F(InterfaceMapTest, RowsAreThreeWords) { EXPECT_EQ(sizeof(InterfaceData), 24u); }

TEST(InterfaceIdTest, GuidsAreEqualWhenAllBytesAre) {
    EXPECT_TRUE(qv::equalGuids(idA, GUID(idA)));
    EXPECT_FALSE(qv::equalGuids(idA, idB));
    EXPECT_EQ(sizeof(GUID), 16u);
}

/// The bytes of an id in memory, as text.
std::string layout(const GUID& id) {
    std::string text;
    for (std::size_t i = 0; i < sizeof id; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X",
                      static_cast<unsigned>(reinterpret_cast<const unsigned char*>(&id)[i]));
        text += digits;
    }
    return text;
}

TEST(InterfaceIdTest, IdsAreThePublishedOnes) {
    EXPECT_EQ(layout(IID_IQVUnknown), "0000000000000000C000000000000046");
    EXPECT_EQ(layout(IID_IQVComparable), "2980037265FA5542A9161C5680ACFEBF");
    EXPECT_EQ(layout(IID_IQVByteBuffer), "EB4B45BD47D8F340AABF3083AC2AC54B");
    EXPECT_EQ(layout(IID_IQVCharBuffer), "A239261FBC1E204E85600AA59F8ACB39");
}

} // namespace
