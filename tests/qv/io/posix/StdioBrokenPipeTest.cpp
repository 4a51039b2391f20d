// A pipe that nobody reads any more is an error for a stream over the runtime library, and no
// signal for the process.

#include "qv/Exceptions.h"
#include "qv/io/StdioOutputStream.h"
#include "tests/support/Throws.h"

#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace qv;
using namespace qv::io;

namespace {

class StdioBrokenPipeTest : public testing::Test {
protected:
    ~StdioBrokenPipeTest() override { std::signal(SIGPIPE, before_); }

    /// A runtime stream on a pipe without a reader.
    static std::FILE* broken() {
        int ends[2] = {};
        EXPECT_EQ(pipe(ends), 0);
        close(ends[0]);
        return fdopen(ends[1], "wb");
    }

    template <class Work>
    static std::string thrown(Work work) {
        return support::thrownText<IoException>(work);
    }

private:
    void (*before_)(int) = std::signal(SIGPIPE, SIG_DFL); // whatever the tests were started with
};

TEST_F(StdioBrokenPipeTest, ABlockCannotBeWritten) {
    StdioFileOutputStream out(broken(), true);
    EXPECT_EQ(thrown([&] { out.write("block", 5); }), "stream write error");
}

TEST_F(StdioBrokenPipeTest, ABufferedByteCannotBeFlushed) {
    StdioFileOutputStream out(broken(), true);
    out.write(static_cast<signed char>('x'));
    EXPECT_EQ(thrown([&] { out.flush(); }), "stream flush error");
}

TEST_F(StdioBrokenPipeTest, AByteThatFillsTheBufferCannotBeWritten) {
    StdioFileOutputStream out(broken(), true);
    EXPECT_EQ(thrown([&] {
                  for (int i = 0; i < 1'000'000; ++i) {
                      out.write(static_cast<signed char>('x'));
                  }
              }),
              "stream write error");
}

TEST_F(StdioBrokenPipeTest, ALineEndThatBringsTheBufferOutCannotBeWritten) {
    std::FILE* const file = broken();
    std::setvbuf(file, nullptr, _IOLBF, 100);
    StdioFileOutputStream out(file, true);
    out.write(static_cast<signed char>('x'));
    EXPECT_EQ(thrown([&] { out.write(static_cast<signed char>('\n')); }), "stream write error");
}

TEST_F(StdioBrokenPipeTest, AnUnbufferedByteCannotBeWritten) {
    std::FILE* const file = broken();
    std::setvbuf(file, nullptr, _IONBF, 0);
    StdioFileOutputStream out(file, true);
    EXPECT_EQ(thrown([&] { out.write(static_cast<signed char>('x')); }), "stream write error");
}

TEST_F(StdioBrokenPipeTest, AByteOfAStreamThatIsAlsoReadCannotBeWritten) {
    int ends[2] = {};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    ASSERT_EQ(write(ends[0], "0123456789", 10), 10);
    std::FILE* const file = fdopen(ends[1], "r+b");
    char read[10];
    ASSERT_EQ(std::fread(read, 1, sizeof read, file), sizeof read);
    close(ends[0]);
    StdioFileOutputStream out(file, true);
    EXPECT_EQ(thrown([&] {
                  for (int i = 0; i < 1'000'000; ++i) {
                      out.write(static_cast<signed char>('x'));
                  }
              }),
              "stream write error");
}

TEST_F(StdioBrokenPipeTest, TheCloseSaysNothing) {
    StdioFileOutputStream out(broken(), true);
    out.write(static_cast<signed char>('x'));
    out.close();
    StdioFileOutputStream dropped(broken(), true);
    dropped.write(static_cast<signed char>('x'));
}

} // namespace
