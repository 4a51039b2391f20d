#include "qv/Double.h"

#include "qv/Exceptions.h"
#include "qv/Integers.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <limits>

using namespace qv;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr auto leastInt64 = std::numeric_limits<std::int64_t>::min();

TEST(DoubleTest, ValueGoesInAndOut) {
    Double number(1.5);
    EXPECT_EQ(number, 1.5);
    number = 2.5;
    EXPECT_EQ(number, 2.5);
    const Double copy(number);
    number = Double(-1);
    EXPECT_EQ(copy, 2.5);
    EXPECT_EQ(number, -1);
    EXPECT_EQ(Double(String(u"2.5x")), 2.5);
    EXPECT_EQ(Float(String(u"0.1")), 0.1f);
    Float narrow(0.5f);
    narrow = 0.25f;
    EXPECT_EQ(narrow, 0.25f);
}

TEST(DoubleTest, WholeValueIsCutTowardZero) {
    EXPECT_EQ(Double(1.5).toInt32(), 1);
    EXPECT_EQ(Double(-1.5).toInt32(), -1);
    EXPECT_EQ(Float(-1.5f).toInt64(), -1);
    EXPECT_EQ(Double(-0x1p63).toInt64(), leastInt64);
    EXPECT_EQ(Double(0x1p62).toInt64(), std::int64_t{1} << 62);
}

TEST(DoubleTest, WhatNoIntegerHoldsIsTheSmallest) {
    EXPECT_EQ(Double(0x1p63).toInt64(), leastInt64);
    EXPECT_EQ(Double(-1e300).toInt64(), leastInt64);
    EXPECT_EQ(Double(infinity).toInt64(), leastInt64);
    EXPECT_EQ(Double(noNumber).toInt64(), leastInt64);
    EXPECT_EQ(Double(1e300).toInt32(), 0);
}

TEST(DoubleTest, ComparisonIsASign) {
    EXPECT_EQ(Double(1.5).compareTo(Double(1.5)), 0);
    EXPECT_EQ(Double(1.5).compareTo(Integer32(2)), -1);
    EXPECT_EQ(Double(2.5).compareTo(Integer32(2)), 1);
    EXPECT_EQ(Double(0.0).compareTo(Double(-0.0)), 0);
    EXPECT_EQ(Float(0.5f).compareTo(Double(0.5)), 0);
    EXPECT_EQ(Float(-infinity).compareTo(Float(0)), -1);
}

TEST(DoubleTest, FloatIsComparedAsADouble) {
    EXPECT_EQ(Float(0.1f).compareTo(Double(0.1)), 1);
    EXPECT_EQ(Double(0.1).compareTo(Float(0.1f)), -1);
}

TEST(DoubleTest, KeptANotANumberComparesAsGreaterOnEitherSide) {
    EXPECT_EQ(Double(noNumber).compareTo(Double(1)), 1);
    EXPECT_EQ(Double(1).compareTo(Double(noNumber)), 1);
    EXPECT_EQ(Double(noNumber).compareTo(Double(noNumber)), 1);
    const Double same(noNumber);
    EXPECT_EQ(same.compareTo(same), 0);
    EXPECT_TRUE(same.equals(same));
}

TEST(DoubleTest, AnObjectThatIsNoNumberFailsTheCast) {
    EXPECT_THROW(static_cast<void>(Double(1).compareTo(static_cast<const Object&>(String(u"1")))),
                 CastFailedException);
    EXPECT_EQ(Double(1).compareTo(static_cast<const Object&>(Integer32(1))), 0);
    const Float number(1);
    EXPECT_EQ(number.compareTo(static_cast<const Object&>(number)), 0);
}

TEST(DoubleTest, TextHasSixDigits) {
    EXPECT_EQ(Double(0.5).toString(), u"0.5");
    EXPECT_EQ(Double(1234567.0).toString(), u"1.23457e+06");
    EXPECT_EQ(Float(0.1f).toString(), u"0.1");
    EXPECT_EQ(Double(-0.0).toString(), u"-0");
}

TEST(DoubleTest, ConversionsFollowTheChain) {
    EXPECT_EQ(Double(0.1).toFloat(), 0.1f);
    EXPECT_EQ(Float(0.1f).toDouble(), static_cast<double>(0.1f));
    EXPECT_EQ(Double(1e300).toFloat(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(Double(-1.9).hashCode(), 0xFFFFFFFFu);
    EXPECT_EQ(Double(-1.9).toBigInteger().toString(), u"-1");
    EXPECT_EQ(Double(1.25).toBigDecimal().toString(), u"1.25");
    EXPECT_EQ(Double(1e20).toBigDecimal().toString(), u"100000000000000000000");
}

} // namespace
