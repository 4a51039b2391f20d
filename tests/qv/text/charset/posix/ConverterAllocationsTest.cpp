#include "tests/support/Allocations.h"
#include "tests/support/Conversions.h"

#include <gtest/gtest.h>

namespace {

class ConverterAllocationsTest : public testing::TestWithParam<reference::Form> {};

TEST_P(ConverterAllocationsTest, ConversionAllocatesNothing) {
    const support::Decoder decoder = support::newDecoder(GetParam());
    const support::Encoder encoder = support::newEncoder(GetParam());
    const std::u16string text = u"plain & \u00E9\u4E2D\U0001F600 and more than one vector long";
    signed char bytes[512];
    char16_t units[512];
    std::int32_t from = 0;
    std::int32_t byteCount = 0;
    std::int32_t unitCount = 0;
    const support::Allocations allocations;
    encoder->convert(text.data(), &from, static_cast<std::int32_t>(text.size()), bytes, &byteCount,
                     512);
    from = 0;
    decoder->convert(bytes, &from, byteCount, units, &unitCount, 512);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_GT(unitCount, 40);
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, ConverterAllocationsTest,
                         testing::ValuesIn(reference::allForms));

} // namespace
