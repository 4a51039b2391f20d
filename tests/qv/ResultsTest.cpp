#include "qv/Results.h"

#include <gtest/gtest.h>

using namespace qv;

namespace {

/// A result as other modules see it: a number.
struct Row {
    std::int32_t result;
    std::uint32_t bits;
};

const Row rows[] = {
    {QV_S_OK, 0x00000000},
    {QV_E_NOTIMPL, 0x80004001},
    {QV_E_NOINTERFACE, 0x80004002},
    {QV_E_POINTER, 0x80004003},
    {QV_E_FAIL, 0x80004005},
    {QV_E_UNAVAILABLE, 0x80004007},
    {QV_E_BUFFERTOOSMALL, 0x80004009},
    {QV_E_NOAGGREGATION, 0x80040110},
    {QV_E_CLASSNOTAVAILABLE, 0x80040111},
    {QV_E_FILENOTFOUND, 0x80070002},
    {QV_E_OUTOFMEMORY, 0x8007000E},
    {QV_E_ENDOFFILE, 0x80070026},
    {QV_E_INVALIDARG, 0x80070057},
    {QV_E_ALREADYEXISTS, 0x800700B7},
    {QV_E_TIMEOUT, 0x800705B4},
    {QV_E_INVALIDCHARACTER, 0x8BB34101},
    {QV_E_UNMAPPABLECHARACTER, 0x8BB34102},
    {QV_E_UNKNOWNENCODING, 0x8BB34103},
};

TEST(ResultsTest, ValuesAreFixed) {
    for (const Row& row : rows) {
        EXPECT_EQ(static_cast<std::uint32_t>(row.result), row.bits);
    }
}

TEST(ResultsTest, FailuresAreNegative) {
    for (const Row& row : rows) {
        EXPECT_EQ(row.result < 0, row.bits != 0) << row.bits;
    }
}

} // namespace
