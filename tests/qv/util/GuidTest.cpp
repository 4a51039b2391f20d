#include "qv/util/Guid.h"

#include "qv/Exceptions.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

namespace {

using namespace qv;
using util::Guid;

constexpr GUID record = {
    0x72038029, 0xFA65, 0x4255, {0xA9, 0x16, 0x1C, 0x56, 0x80, 0xAC, 0xFE, 0xBF}};
constexpr const char16_t* text = u"{72038029-FA65-4255-A916-1C5680ACFEBF}";

TEST(UtilGuidTest, IsThePlainRecord) {
    EXPECT_EQ(sizeof(Guid), 16u);
    EXPECT_FALSE(std::is_polymorphic_v<Guid>);
}

TEST(UtilGuidTest, StartsAllZero) {
    EXPECT_EQ(Guid().toString(), u"{00000000-0000-0000-0000-000000000000}");
}

TEST(UtilGuidTest, ReadsAndWritesItsText) {
    const Guid guid(text);
    EXPECT_TRUE(guid == record);
    EXPECT_EQ(guid.toString(), text);
    EXPECT_EQ(guid.toString().getLength(), 38);
}

TEST(UtilGuidTest, ReadsEitherCase) {
    EXPECT_EQ(Guid(u"{72038029-fa65-4255-a916-1c5680ACFEBF}").toString(), text);
}

TEST(UtilGuidTest, RefusesOtherTexts) {
    for (const char16_t* const bad :
         {static_cast<const char16_t*>(nullptr), u"", u"72038029-FA65-4255-A916-1C5680ACFEBF",
          u"{72038029-FA65-4255-A916-1C5680ACFEBF} ", u"{72038029-FA65-4255-A916-1C5680ACFEB}",
          u"{72038029-FA65-4255-A916-1C5680ACFEBG}"}) {
        EXPECT_EQ(support::thrownText<Exception>([&] { Guid guid(bad); }), "invalid GUID string");
    }
}

TEST(UtilGuidTest, ConvertsToAndFromTheRecord) {
    Guid guid = record;
    const GUID& same = guid;
    EXPECT_TRUE(equalGuids(same, record));
    const Guid copy(guid);
    EXPECT_TRUE(copy == guid);
    guid = GUID{};
    EXPECT_TRUE(guid == Guid());
    guid = copy;
    EXPECT_TRUE(guid == record);
}

TEST(UtilGuidTest, ComparesWithItsOwnKindAndWithRecords) {
    const Guid small(record);
    GUID larger = record;
    larger.Data1 = 0xF2038029;
    const Guid large(larger);
    EXPECT_TRUE(small == record && !(small == large) && !(small == larger));
    EXPECT_TRUE(small != large && small != larger && !(small != record));
    EXPECT_TRUE(small < large && small < larger && !(large < small) && !(small < record));
    EXPECT_TRUE(small <= large && small <= larger && small <= record && !(large <= small));
    EXPECT_TRUE(large > small && large > record && !(small > large) && !(small > record));
    EXPECT_TRUE(large >= small && large >= record && small >= record && !(small >= larger));
    EXPECT_TRUE(record < large && record == small) << "the record may stand in front";
    EXPECT_LT(Guid::compare(small, large), 0);
    EXPECT_GT(Guid::compare(larger, record), 0);
    EXPECT_EQ(Guid::compare(small, small), 0);
}

TEST(UtilGuidTest, GeneratesFreshOnes) {
    const std::unique_ptr<Guid> first(Guid::Generate());
    const std::unique_ptr<Guid> second(Guid::Generate());
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(*first != *second);
    EXPECT_EQ(first->toString()[15], u'4') << "the version";
}

} // namespace
