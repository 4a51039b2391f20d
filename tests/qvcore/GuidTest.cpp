#include "qvcore/Guid.h"

#include "qv/Results.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace {

constexpr GUID base = {
    0x72038029, 0xFA65, 0x4255, {0xA9, 0x16, 0x1C, 0x56, 0x80, 0xAC, 0xFE, 0xBF}};

} // namespace

TEST(GuidTest, HasSixteenBytes) { EXPECT_EQ(sizeof(GUID), 16u); }

TEST(GuidTest, IsEqualToItsCopy) {
    const GUID copy = base;
    EXPECT_EQ(QVComCompareGUID(&base, &copy), 0);
    EXPECT_EQ(QVComCompareGUID(&base, &base), 0);
}

TEST(GuidTest, IsOrderedByEveryField) {
    GUID larger = base;
    const auto expectLarger = [&larger] {
        EXPECT_GT(QVComCompareGUID(&larger, &base), 0);
        EXPECT_LT(QVComCompareGUID(&base, &larger), 0);
        larger = base;
    };
    larger.Data1 = 0xF2038029;
    expectLarger();
    larger.Data2 = 0xFA66;
    expectLarger();
    larger.Data3 = 0xC255;
    expectLarger();
    for (std::uint8_t& byte : larger.Data4) {
        ++byte;
        expectLarger();
    }
}

TEST(GuidTest, IsOrderedByTheFirstFieldThatDiffers) {
    GUID other = base;
    other.Data1 += 1;
    other.Data2 = 0;
    EXPECT_GT(QVComCompareGUID(&other, &base), 0);
}

namespace {

constexpr const char16_t* baseText = u"{72038029-FA65-4255-A916-1C5680ACFEBF}";

std::u16string textOf(const GUID& guid) {
    char16_t text[39];
    EXPECT_EQ(QVComStringFromGUID(&guid, text, 39), qv::QV_S_OK);
    return text;
}

} // namespace

TEST(GuidTest, TextIsUpperCaseInBraces) { EXPECT_EQ(textOf(base), baseText); }

TEST(GuidTest, TextReadsBackInEitherCase) {
    for (const char16_t* const text : {baseText, u"{72038029-fa65-4255-a916-1c5680acfebf}"}) {
        GUID read = {};
        EXPECT_EQ(QVComGUIDFromString(text, &read), qv::QV_S_OK);
        EXPECT_EQ(QVComCompareGUID(&read, &base), 0);
    }
}

TEST(GuidTest, TextOfOtherFormIsRefusedAndTouchesNothing) {
    GUID guid = base;
    const std::u16string good(baseText);
    EXPECT_EQ(QVComGUIDFromString(nullptr, &guid), qv::QV_E_INVALIDARG);
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_EQ(QVComGUIDFromString(good.substr(0, length).c_str(), &guid), qv::QV_E_INVALIDARG);
    }
    EXPECT_EQ(QVComGUIDFromString((good + u"x").c_str(), &guid), qv::QV_E_INVALIDARG);
    for (std::size_t place = 0; place < good.size(); ++place) {
        for (const char16_t unit : u"xGg@`/: \uFF10") {
            std::u16string bad = good;
            bad[place] = unit;
            EXPECT_EQ(QVComGUIDFromString(bad.c_str(), &guid), qv::QV_E_INVALIDARG) << place;
        }
    }
    EXPECT_EQ(QVComCompareGUID(&guid, &base), 0);
}

TEST(GuidTest, TextNeedsRoomForItsTerminator) {
    char16_t text[39] = {u'?'};
    EXPECT_EQ(QVComStringFromGUID(&base, text, 38), qv::QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(QVComStringFromGUID(&base, text, 0), qv::QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(QVComStringFromGUID(&base, text, -1), qv::QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(text[0], u'?');
}

TEST(GuidTest, FreshOnesAreOfVersion4AndDiffer) {
    std::set<std::u16string> seen;
    for (int i = 0; i < 1000; ++i) {
        GUID guid = {};
        ASSERT_EQ(QVComGenerateGUID(&guid), qv::QV_S_OK);
        EXPECT_EQ(guid.Data3 >> 12, 4);
        EXPECT_EQ(guid.Data4[0] >> 6, 2);
        seen.insert(textOf(guid));
    }
    EXPECT_EQ(seen.size(), 1000u);
}
