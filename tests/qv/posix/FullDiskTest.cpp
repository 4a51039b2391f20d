// A disk that is full, a reader that goes early, and no handle left open by either.

#include "qv/Exceptions.h"
#include "qv/io/BufferedOutputStream.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"
#include "qv/io/OutputStreamWriter.h"
#include "qv/io/PrintWriter.h"
#include "qv/io/StdioOutputStream.h"
#include "qvcore/File.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Throws.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace qv;
using namespace qv::io;

namespace {

std::ptrdiff_t openHandles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

TEST(FullDiskTest, WriteThrowsItsResult) {
    const auto before = openHandles();
    {
        FileOutputStream out(u"/dev/full", 0u);
        EXPECT_EQ(support::thrownResult([&] { out.write("abc", 3); }), QV_E_DISKFULL);
        EXPECT_EQ(out.is_open(), 1);
    }
    EXPECT_EQ(openHandles(), before);
}

TEST(FullDiskTest, KeptClosedStreamClosesAndGivesItsLocksBack) {
    const auto before = openHandles();
    FileOutputStream out(u"/dev/full", FileOutputStream::KEEPCLOSED);
    EXPECT_EQ(support::thrownResult([&] { out.write("abc", 3); }), QV_E_DISKFULL);
    EXPECT_EQ(out.is_open(), 0);
    EXPECT_EQ(openHandles(), before);
    EXPECT_EQ(support::thrownResult([&] { out.write("abc", 3); }), QV_E_DISKFULL);
}

TEST(FullDiskTest, FailureComesThroughTheChain) {
    const auto file = make<FileOutputStream>(u"/dev/full", 0u);
    const auto writer = make<PrintWriter>(
        make<OutputStreamWriter>(make<BufferedOutputStream>(file, 100), u"UTF-8"));
    writer->println(u"text");
    EXPECT_EQ(support::thrownResult([&] { writer->flush(); }), QV_E_DISKFULL);
}

TEST(FullDiskTest, RuntimeStreamThrowsItsText) {
    std::FILE* const full = std::fopen("/dev/full", "wb");
    StdioFileOutputStream out(full, true);
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write("abc", 3); }), "stream write error");
    out.write(static_cast<signed char>('x')); // into the buffer
    EXPECT_EQ(support::thrownText<IoException>([&] { out.flush(); }), "stream flush error");
}

/// That reading a stream for writing sets its error flag is known of this system only.
TEST(RuntimeStreamTest, AnEarlierErrorFailsABlock) {
    const support::TestFolder folder;
    std::FILE* const file = std::fopen((folder.path() / "file").c_str(), "wb");
    ASSERT_NE(file, nullptr);
    StdioFileOutputStream out(file, true);
    ASSERT_EQ(std::fgetc(file), EOF);
    ASSERT_NE(std::ferror(file), 0);
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write("abc", 3); }), "stream write error");
    std::clearerr(file);
    EXPECT_NO_THROW(out.write("def", 3));
}

TEST(FilePermissionTest, NewFilesAreTheirOwnersAlone) {
    const support::TestFolder folder;
    const std::filesystem::path path = folder.path() / "file";
    { FileOutputStream out(String(path.u16string().c_str()), false); }
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_all);
}

TEST(BrokenPipeTest, WriteThrowsItsResultAndRaisesNoSignal) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    FileOutputStream out(static_cast<std::uint64_t>(ends[1]), true);
    EXPECT_EQ(support::thrownResult([&] { out.write("abc", 3); }), QV_E_BROKENPIPE);
}

TEST(NoEndTest, AppendWritesNothingWhereThereIsNoEndToGoTo) {
    const support::TestFolder folder;
    const std::filesystem::path path = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_NE(reader, -1);
    FileOutputStream out(String(path.u16string().c_str()), FileOutputStream::APPEND);
    std::int64_t position = 0;
    const std::int32_t refusal = QVFileSeek64(out.getHandle(), 0, 2, &position);
    EXPECT_LT(refusal, 0);
    EXPECT_EQ(support::thrownResult([&] { out.write("abc", 3); }), refusal);
    char byte = 0;
    EXPECT_EQ(::read(reader, &byte, 1), -1) << "something was written";
    EXPECT_EQ(errno, EAGAIN);
    ::close(reader);
}

TEST(OpenHandleTest, RefusedFilesLeaveNone) {
    const auto before = openHandles();
    for (int i = 0; i < 10; ++i) {
        EXPECT_THROW(FileInputStream in(u"/no/such/file"), ResultException);
        EXPECT_THROW(FileInputStream in(u"/tmp"), ResultException);
        EXPECT_THROW(FileOutputStream out(u"/tmp", FileOutputStream::LOCK), ResultException);
        EXPECT_THROW(FileOutputStream out(u"/no/such/file", FileOutputStream::APPEND),
                     ResultException);
    }
    EXPECT_EQ(openHandles(), before);
}

} // namespace
