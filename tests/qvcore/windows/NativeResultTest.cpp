#include "qvcore/NativeResult.h"

#include "tests/qvcore/Results.h"

#include <gtest/gtest.h>

using namespace support;

namespace {

struct Row {
    std::uint32_t error;
    std::uint32_t result;
};

} // namespace

class WindowsNativeResultTest : public testing::TestWithParam<Row> {};

TEST_P(WindowsNativeResultTest, HasOneValueOnEverySystem) {
    EXPECT_EQ(QVResultFromNative(GetParam().error), bits(GetParam().result));
}

INSTANTIATE_TEST_SUITE_P(
    Errors, WindowsNativeResultTest,
    testing::Values(Row{0, 0}, Row{2, 0x80070002}, Row{3, 0x80070003}, Row{4, 0x80070004},
                    Row{5, 0x80070005}, Row{6, 0x80070006}, Row{8, 0x8007000E}, Row{14, 0x8007000E},
                    Row{38, 0x80070026}, Row{39, 0x80070070}, Row{80, 0x800700B7},
                    Row{87, 0x80070057}, Row{109, 0x8007006D}, Row{112, 0x80070070},
                    Row{123, 0x8007007B}, Row{161, 0x8007007B}, Row{170, 0x800700AA},
                    Row{183, 0x800700B7}, Row{232, 0x8007006D}, Row{258, 0x800705B4},
                    Row{1460, 0x800705B4}, Row{9999, 0x8007270F}));
