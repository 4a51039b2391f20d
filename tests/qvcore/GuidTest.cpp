#include "qvcore/Guid.h"

#include <gtest/gtest.h>

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
