#include "qvcore/NativeResult.h"

#include "tests/qvcore/Results.h"

#include <cerrno>
#include <gtest/gtest.h>

using namespace support;

namespace {

struct Row {
    int error;
    std::uint32_t result;
};

} // namespace

class PosixNativeResultTest : public testing::TestWithParam<Row> {};

TEST_P(PosixNativeResultTest, HasOneValueOnEverySystem) {
    EXPECT_EQ(QVResultFromNative(static_cast<std::uint32_t>(GetParam().error)),
              bits(GetParam().result));
}

INSTANTIATE_TEST_SUITE_P(
    Errors, PosixNativeResultTest,
    testing::Values(Row{0, 0}, Row{ENOENT, 0x80070002}, Row{ENOTDIR, 0x80070003},
                    Row{EMFILE, 0x80070004}, Row{ENFILE, 0x80070004}, Row{EACCES, 0x80070005},
                    Row{EPERM, 0x80070005}, Row{EISDIR, 0x80070005}, Row{EBADF, 0x80070006},
                    Row{ENOMEM, 0x8007000E}, Row{EXDEV, 0x80070011}, Row{EROFS, 0x80070013},
                    Row{ENOTSUP, 0x80070032}, Row{ENOSYS, 0x80070032}, Row{EINVAL, 0x80070057},
                    Row{EPIPE, 0x8007006D}, Row{ENOSPC, 0x80070070}, Row{EDQUOT, 0x80070070},
                    Row{ESPIPE, 0x80070084}, Row{ENOTEMPTY, 0x80070091}, Row{EBUSY, 0x800700AA},
                    Row{ETXTBSY, 0x800700AA}, Row{EEXIST, 0x800700B7},
                    Row{ENAMETOOLONG, 0x800700CE}, Row{EFBIG, 0x800700DF}, Row{EIO, 0x8007045D},
                    Row{EDEADLK, 0x8007046B}, Row{ETIMEDOUT, 0x800705B4}, Row{ELOOP, 0x80070781},
                    Row{ECHILD, 0x8BE1000A}, Row{9999, 0x8BE1270F}));
