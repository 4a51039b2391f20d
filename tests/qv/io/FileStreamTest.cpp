#include "qv/Exceptions.h"
#include "qv/Results.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"
#include "qv/ipc/Semaphore.h"
#include "qvcore/Encoding.h"
#include "qvcore/File.h"
#include "tests/support/ChildRole.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/StartedThread.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestProcess.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <thread>

using namespace qv;
using namespace qv::io;

namespace {

class FileStreamTest : public testing::Test {
protected:
    FileStreamTest() = default;
    explicit FileStreamTest(const std::filesystem::path& parent) : folder(parent) {}

    String path(const char16_t* name = u"file") const {
        return String(folder.path().u16string().c_str()).append(u"/").append(name);
    }
    std::string content(const char16_t* name = u"file") const {
        FileInputStream in(path(name));
        std::string bytes;
        char chunk[1000];
        for (std::int32_t n = in.read(chunk, sizeof chunk); n > 0;
             n = in.read(chunk, sizeof chunk)) {
            bytes.append(chunk, static_cast<std::size_t>(n));
        }
        return bytes;
    }
    void make(const char* bytes, const char16_t* name = u"file") const {
        FileOutputStream out(path(name), false);
        write(out, bytes);
    }
    static void write(OutputStream& out, const std::string& bytes) {
        out.write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    }

    support::TestFolder folder;
};

using FileStreamThreadsTest = FileStreamTest;

// --- Reading ---

TEST_F(FileStreamTest, ReadsToTheEnd) {
    make("0123456789");
    FileInputStream in(path());
    char bytes[8];
    EXPECT_EQ(in.read(bytes, 8), 8);
    EXPECT_EQ(std::string(bytes, 8), "01234567");
    EXPECT_EQ(in.read(), '8');
    EXPECT_EQ(in.read(bytes, 8), 1);
    EXPECT_EQ(in.read(bytes, 8), -1);
    EXPECT_EQ(in.read(), -1);
}

TEST_F(FileStreamTest, ReadOfNothingLooksLikeTheEnd) {
    make("abc");
    FileInputStream in(path());
    signed char byte = 0;
    EXPECT_EQ(in.read(&byte, 0), -1);
    EXPECT_EQ(in.read(&byte, 1), 1);
}

TEST_F(FileStreamTest, ReadingStreamHasTheDefaultsOfItsContract) {
    make("0123456789");
    FileInputStream in{util::FilePath(path())};
    EXPECT_EQ(in.available(), 0);
    EXPECT_FALSE(in.markSupported());
    EXPECT_EQ(in.skip(4), 4);
    EXPECT_EQ(in.read(), '4');
    EXPECT_EQ(in.skip(100), 5);
    EXPECT_THROW(in.reset(), IoException);
}

TEST_F(FileStreamTest, MissingFileThrowsItsResult) {
    EXPECT_EQ(support::thrownResult([&] { FileInputStream in(path(u"missing")); }),
              QV_E_FILENOTFOUND);
}

TEST_F(FileStreamTest, DirectoryIsRefused) {
    EXPECT_EQ(support::thrownResult([&] { FileInputStream in(path(u".")); }), QV_E_ACCESSDENIED);
    EXPECT_EQ(support::thrownResult([&] { FileOutputStream out(path(u"."), false); }),
              QV_E_ACCESSDENIED);
}

TEST_F(FileStreamTest, PathWithNulIsRefused) {
    make("abc", u"file");
    String bad = path(u"file");
    bad.append(u'\0').append(u"rest");
    EXPECT_EQ(support::thrownResult([&] { FileInputStream in(bad); }), QV_E_INVALIDNAME);
    EXPECT_EQ(support::thrownResult([&] { FileOutputStream out(bad, false); }), QV_E_INVALIDNAME);
    EXPECT_EQ(content(), "abc");
}

TEST_F(FileStreamTest, LongPathIsReadAndRefusedForWriting) {
    const String longName(u'x', 300);
    EXPECT_EQ(support::thrownResult([&] { FileOutputStream out(path(longName.getData()), false); }),
              QV_E_PATHTOOLONG);
    EXPECT_THROW(FileInputStream in(path(longName.getData())), ResultException);
}

TEST_F(FileStreamTest, NamesAreOfAnyScript) {
    make("abc", u"\u0424\u0430\u0439\u043B \u4E2D\u6587 \u00E9\U0001F600");
    EXPECT_EQ(content(u"\u0424\u0430\u0439\u043B \u4E2D\u6587 \u00E9\U0001F600"), "abc");
}

TEST_F(FileStreamTest, CloseEndsTheHandle) {
    make("abc");
    FileInputStream in(path());
    EXPECT_NE(in.getHandle(), QV_FILE_NONE);
    in.close();
    EXPECT_EQ(in.getHandle(), QV_FILE_NONE);
    EXPECT_NO_THROW(in.close());
    EXPECT_EQ(support::thrownResult([&] { in.read(); }), QV_E_INVALIDHANDLE);
}

TEST_F(FileStreamTest, ReadOfAHandleForWritingThrowsItsResult) {
    make("abc");
    std::uint64_t handle = 0;
    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_WRITE, 0, &handle), 0);
    FileInputStream in(handle, true);
    char byte = 0;
    std::uint32_t count = 0;
    const std::int32_t refusal = QVFileRead(handle, &byte, 1, &count);
    EXPECT_LT(refusal, 0);
    EXPECT_EQ(support::thrownResult([&] { in.read(); }), refusal);
}

TEST_F(FileStreamTest, WrappedHandleIsClosedOnlyWhereOwned) {
    make("abc");
    FileInputStream owner(path());
    {
        FileInputStream borrower(owner.getHandle(), false);
        EXPECT_EQ(borrower.read(), 'a');
        borrower.close();
        EXPECT_EQ(borrower.read(), 'b') << "not owned: not closed";
    }
    EXPECT_EQ(owner.read(), 'c');
    std::uint64_t handle = 0;
    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_READ, 0, &handle), 0);
    FileInputStream owning(handle, true);
    owning.close();
    EXPECT_LT(QVFileClose(handle), 0) << "closed already";
}

// --- Writing ---

TEST_F(FileStreamTest, BoolSaysWhetherToGoOn) {
    {
        FileOutputStream out(path(), false);
        EXPECT_EQ(out.getMode(), FileOutputStream::TRUNC);
        write(out, "first");
    }
    {
        FileOutputStream out(util::FilePath(path()), true);
        EXPECT_EQ(out.getMode(), FileOutputStream::ATEND);
        write(out, "second");
    }
    EXPECT_EQ(content(), "firstsecond");
    { FileOutputStream out(util::FilePath(path()), false); }
    EXPECT_EQ(content(), "");
}

TEST_F(FileStreamTest, ModeValuesAreFixed) {
    EXPECT_EQ(FileOutputStream::ATEND, 0x1u);
    EXPECT_EQ(FileOutputStream::APPEND, 0x2u);
    EXPECT_EQ(FileOutputStream::TRUNC, 0x4u);
    EXPECT_EQ(FileOutputStream::KEEPCLOSED, 0x8u);
    EXPECT_EQ(FileOutputStream::LOCK, 0x10u);
}

TEST_F(FileStreamTest, NoModeWritesOverTheStart) {
    make("abcdef");
    {
        FileOutputStream out(path(), 0u);
        write(out, "XY");
        out.write(static_cast<signed char>('Z'));
    }
    EXPECT_EQ(content(), "XYZdef");
}

TEST_F(FileStreamTest, WritesOfEveryByteKindAndOfNothing) {
    FileOutputStream out(path(), false);
    out.write("ab", 2);
    const unsigned char more[] = {0xFF, 0};
    out.write(more, 2);
    out.write(reinterpret_cast<const signed char*>("c"), 1);
    out.write("x", 0);
    out.write("x", -1);
    out.flush();
    EXPECT_EQ(content(), std::string("ab\xFF\0c", 5));
    EXPECT_EQ(out.getSize(), 5);
}

TEST_F(FileStreamTest, EmptyPathIsNoPath) {
    EXPECT_THROW(FileOutputStream out(String(), false), InvalidPathException);
    EXPECT_THROW(FileOutputStream out(util::FilePath(u""), FileOutputStream::LOCK),
                 InvalidPathException);
}

TEST_F(FileStreamTest, ClosedStreamRefusesWritesUntilItIsOpened) {
    FileOutputStream out(path(), FileOutputStream::TRUNC);
    write(out, "abc");
    EXPECT_EQ(out.is_open(), 1);
    out.close();
    EXPECT_EQ(out.is_open(), 0);
    EXPECT_THROW(write(out, "x"), ResultException);
    EXPECT_THROW(out.getSize(), ResultException);
    EXPECT_NO_THROW(out.flush());
    EXPECT_NO_THROW(out.close());
    out.open();
    EXPECT_EQ(out.is_open(), 1);
    const std::uint64_t handle = out.getHandle();
    out.open();
    EXPECT_EQ(out.getHandle(), handle) << "an open stream stays as it is";
    EXPECT_EQ(out.getSize(), 3) << "opening again does not empty the file";
    write(out, "X");
    EXPECT_EQ(content(), "Xbc") << "nor does it go to the end";
}

TEST_F(FileStreamTest, StreamOverAHandleHasNoPathAndNoLocks) {
    FileOutputStream owner(path(), false);
    FileOutputStream out(owner.getHandle(), false);
    EXPECT_EQ(out.getMode(), 0u);
    write(out, "abc");
    out.wait();
    out.signal();
    EXPECT_EQ(out.getSize(), 3);
    out.close();
    EXPECT_EQ(out.is_open(), 1) << "not owned: not closed";
    EXPECT_THROW(out.open(), InvalidPathException);
}

TEST_F(FileStreamTest, KeptClosedStreamEmptiesOnceAndAddsByReopening) {
    make("old");
    FileOutputStream out(path(), FileOutputStream::TRUNC | FileOutputStream::KEEPCLOSED |
                                     FileOutputStream::APPEND);
    EXPECT_EQ(out.is_open(), 0);
    EXPECT_EQ(content(), "");
    write(out, "one");
    EXPECT_EQ(out.is_open(), 0);
    write(out, "two");
    EXPECT_EQ(content(), "onetwo");
    EXPECT_EQ(out.getSize(), 6);
    EXPECT_EQ(out.is_open(), 0);
    EXPECT_NO_THROW(out.flush());
    out.open();
    EXPECT_EQ(out.is_open(), 1);
    out.flush();
    EXPECT_EQ(out.is_open(), 0) << "a flush closes it";
}

TEST_F(FileStreamTest, KeptClosedStreamThatWasEmptiedAddsWithoutAppend) {
    make("old");
    FileOutputStream out(path(), FileOutputStream::TRUNC | FileOutputStream::KEEPCLOSED);
    write(out, "one");
    write(out, "XY");
    EXPECT_EQ(content(), "oneXY");
}

TEST_F(FileStreamTest, KeptClosedStreamReopensAtTheEndWhereItBeganThere) {
    make("old");
    FileOutputStream out(path(), FileOutputStream::ATEND | FileOutputStream::KEEPCLOSED);
    write(out, "one");
    write(out, "two");
    EXPECT_EQ(content(), "oldonetwo");
}

TEST_F(FileStreamTest, KeptClosedStreamOfNoOtherModeStartsAnewWithEachWrite) {
    make("old text");
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED);
    write(out, "one");
    write(out, "XY");
    EXPECT_EQ(content(), "XYe text");
}

/// The name of a file's lock: its canonical path with `/` between the parts.
std::string lockNameOf(const String& path) {
    String canonical = util::FilePath(path).getCanonicalPath();
    canonical.translate(u'\\', u'/');
    char name[4000];
    EXPECT_GT(QVUnicodeToAnsi(name, canonical.getData(), sizeof name), 0);
    return name;
}

TEST_F(FileStreamTest, LockHasTheNameOfTheCanonicalPath) {
    for (const unsigned int mode : {FileOutputStream::APPEND, FileOutputStream::LOCK}) {
        std::filesystem::create_directories(folder.path() / "sub");
        FileOutputStream out(path(u"sub/../fi\u00E9le"), mode);
        ipc::Semaphore lock(lockNameOf(path(u"fi\u00E9le")).c_str(), 7);
        EXPECT_EQ(lock.getValue(), 1);
        out.wait();
        EXPECT_EQ(lock.getValue(), 0);
        out.signal();
        EXPECT_EQ(lock.getValue(), 1);
    }
}

TEST_F(FileStreamThreadsTest, LockThatCannotBeGivenBackIsStillHeld) {
    ipc::Semaphore lock(lockNameOf(path()).c_str(), 0x7FFFFFFF);
    FileOutputStream out(path(), FileOutputStream::APPEND);
    out.wait();
    lock.signal();
    EXPECT_EQ(support::thrownResult([&] { out.signal(); }), QV_E_TOOMANYPOSTS);
    std::thread other([&] { write(out, "other"); });
    write(out, "first ");
    lock.wait();
    out.signal();
    other.join();
    EXPECT_EQ(content(), "first other");
    EXPECT_EQ(lock.getValue(), 0x7FFFFFFF);
}

TEST_F(FileStreamTest, LongNamesOfAnyScriptHaveLocksOfTheirOwn) {
    const String common(u'\u4E2D', 60);
    FileOutputStream first(path((common + String(u"1")).getData()), FileOutputStream::LOCK);
    FileOutputStream second(path((common + String(u"2")).getData()), FileOutputStream::LOCK);
    first.wait();
    std::thread([&] { write(second, "free"); }).join();
    first.signal();
    EXPECT_EQ(content((common + String(u"2")).getData()), "free");
}

TEST_F(FileStreamTest, AddedOperationsStandBehindThoseOfTheContract) {
    support::expectConsecutive(
        {support::slotOf(&OutputStream::close), support::slotOf(&FileOutputStream::is_open),
         support::slotOf(&FileOutputStream::open), support::slotOf(&FileOutputStream::getSize)});
}

TEST_F(FileStreamTest, DestructorClosesWhatIsOwned) {
    make("abc");
    std::uint64_t handle = 0;
    {
        FileInputStream in(path());
        handle = in.getHandle();
    }
    EXPECT_LT(QVFileClose(handle), 0);
    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_WRITE, 0, &handle), 0);
    { FileOutputStream out(handle, true); }
    EXPECT_LT(QVFileClose(handle), 0);
}

TEST_F(FileStreamTest, FailureToCloseIsThrownByReadersAndSwallowedByWriters) {
    make("abc");
    std::uint64_t handle = 0;
    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_READ, 0, &handle), 0);
    FileInputStream in(handle, true);
    ASSERT_EQ(QVFileClose(handle), 0);
    EXPECT_EQ(support::thrownResult([&] { in.close(); }), QV_E_INVALIDHANDLE);
    EXPECT_EQ(in.getHandle(), handle) << "not closed: still its handle";

    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_WRITE, 0, &handle), 0);
    FileOutputStream out(handle, true);
    ASSERT_EQ(QVFileClose(handle), 0);
    EXPECT_NO_THROW(out.close());
    EXPECT_EQ(out.is_open(), 1) << "not closed: still its handle";
}

TEST_F(FileStreamTest, DestructorOfAReaderLetsNoFailureOut) {
    make("abc");
    std::uint64_t handle = 0;
    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_READ, 0, &handle), 0);
    auto in = std::make_unique<FileInputStream>(handle, true);
    ASSERT_EQ(QVFileClose(handle), 0);
    EXPECT_NO_THROW(in.reset());
}

TEST_F(FileStreamTest, FailureToFlushIsThrown) {
    std::uint64_t handle = 0;
    make("abc");
    ASSERT_EQ(QVFileOpen(path().getData(), QV_FILE_WRITE, 0, &handle), 0);
    FileOutputStream wrapper(handle, false);
    EXPECT_NO_THROW(wrapper.flush());
    ASSERT_EQ(QVFileClose(handle), 0);
    EXPECT_EQ(support::thrownResult([&] { wrapper.flush(); }), QV_E_INVALIDHANDLE);

    FileOutputStream keptClosed(path(), FileOutputStream::KEEPCLOSED);
    keptClosed.open();
    ASSERT_EQ(QVFileClose(keptClosed.getHandle()), 0);
    EXPECT_EQ(support::thrownResult([&] { keptClosed.flush(); }), QV_E_INVALIDHANDLE);
}

/// Counts its flushes.
class FlushedStream : public FileOutputStream {
public:
    using FileOutputStream::FileOutputStream;
    void flush() override {
        ++flushes;
        FileOutputStream::flush();
    }
    int flushes = 0;
};

TEST_F(FileStreamTest, EveryWriteOfAKeptClosedStreamEndsWithAFlush) {
    FlushedStream kept(path(), FileOutputStream::KEEPCLOSED | FileOutputStream::APPEND);
    write(kept, "one");
    write(kept, "two");
    EXPECT_EQ(kept.flushes, 2);
    FlushedStream open(path(), FileOutputStream::LOCK | FileOutputStream::APPEND);
    write(open, "three");
    EXPECT_EQ(open.flushes, 0);
    EXPECT_EQ(content(), "onetwothree");
}

TEST_F(FileStreamTest, KeptClosedStreamThatIsOpenWritesWhereItStands) {
    make("old text");
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED);
    out.open();
    std::int64_t position = 0;
    ASSERT_EQ(QVFileSeek64(out.getHandle(), 4, 0, &position), 0);
    write(out, "X");
    EXPECT_EQ(out.is_open(), 0);
    EXPECT_EQ(content(), "old Xext");
}

TEST_F(FileStreamTest, EndIsAPlaceAtTheOpenAndTheLockMovesNothing) {
    for (const unsigned int mode : {FileOutputStream::ATEND, FileOutputStream::LOCK}) {
        make("");
        FileOutputStream first(path(), mode);
        FileOutputStream second(path(), mode);
        write(first, "first");
        write(second, "2");
        EXPECT_EQ(content(), "2irst");
    }
}

TEST_F(FileStreamTest, StreamWithoutALockWaitsForNothing) {
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED);
    out.wait();
    std::thread([&] { write(out, "other thread"); }).join();
    out.signal();
    EXPECT_EQ(content(), "other thread");
}

TEST_F(FileStreamTest, KeptClosedStreamFollowsItsName) {
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED | FileOutputStream::APPEND);
    write(out, "one");
    std::filesystem::rename(folder.path() / "file", folder.path() / "moved");
    write(out, "two");
    EXPECT_EQ(content(u"moved"), "one");
    EXPECT_EQ(content(), "two");
}

TEST_F(FileStreamTest, AppendGoesToTheEndThatOthersMoved) {
    FileOutputStream first(path(), FileOutputStream::APPEND);
    FileOutputStream second(path(), FileOutputStream::APPEND);
    write(first, "1");
    write(second, "2");
    write(first, "3");
    EXPECT_EQ(content(), "123");
}

TEST_F(FileStreamTest, LockIsTakenForSeveralWritesByItsHolder) {
    FileOutputStream out(path(), FileOutputStream::APPEND);
    out.wait();
    out.wait();
    write(out, "abc");
    out.signal();
    out.signal();
    out.signal(); // once too often: nothing is held
    write(out, "d");
    EXPECT_EQ(content(), "abcd");
}

TEST_F(FileStreamTest, DroppedStreamGivesTheLockOfItsHolderBack) {
    for (const unsigned int mode : {FileOutputStream::APPEND, FileOutputStream::LOCK,
                                    FileOutputStream::LOCK | FileOutputStream::KEEPCLOSED}) {
        ipc::Semaphore lock(lockNameOf(path()).c_str(), 1);
        {
            FileOutputStream out(path(), mode);
            out.wait();
            out.wait();
            EXPECT_EQ(lock.getValue(), 0);
        }
        EXPECT_EQ(lock.getValue(), 1) << mode;
    }
}

TEST_F(FileStreamTest, DroppedStreamThatHoldsNoLockLeavesItAlone) {
    ipc::Semaphore lock(lockNameOf(path()).c_str(), 1);
    lock.wait();
    { FileOutputStream out(path(), FileOutputStream::APPEND); }
    EXPECT_EQ(lock.getValue(), 0);
    lock.signal();
}

TEST_F(FileStreamTest, DroppedStreamEndsAlsoWhereTheLockTakesNoMore) {
    ipc::Semaphore lock(lockNameOf(path()).c_str(), 0x7FFFFFFF);
    {
        FileOutputStream out(path(), FileOutputStream::APPEND);
        out.wait();
        lock.signal();
    }
    EXPECT_EQ(lock.getValue(), 0x7FFFFFFF);
}

TEST_F(FileStreamTest, FailedWriteGivesItsLocksBack) {
    FileOutputStream out(path(), FileOutputStream::LOCK);
    out.close();
    EXPECT_THROW(write(out, "x"), ResultException);
    FileOutputStream other(path(), FileOutputStream::LOCK);
    write(other, "free");
    EXPECT_EQ(content(), "free");
}

TEST_F(FileStreamTest, FailedReopenGivesItsLocksBack) {
    FileOutputStream out(path(u"sub"), FileOutputStream::KEEPCLOSED | FileOutputStream::LOCK);
    std::filesystem::remove(folder.path() / "sub");
    std::filesystem::create_directory(folder.path() / "sub");
    EXPECT_EQ(support::thrownResult([&] { write(out, "x"); }), QV_E_ACCESSDENIED);
    std::filesystem::remove(folder.path() / "sub");
    write(out, "x");
    EXPECT_EQ(content(u"sub"), "x");
}

TEST_F(FileStreamThreadsTest, FailedReopenForTheSizeLeavesTheMutexFree) {
    FileOutputStream out(path(u"sub"), FileOutputStream::KEEPCLOSED);
    std::filesystem::remove(folder.path() / "sub");
    std::filesystem::create_directory(folder.path() / "sub");
    EXPECT_EQ(support::thrownResult([&] { out.getSize(); }), QV_E_ACCESSDENIED);
    std::filesystem::remove(folder.path() / "sub");
    std::thread([&] { write(out, "x"); }).join();
    EXPECT_EQ(content(u"sub"), "x");
}

TEST_F(FileStreamThreadsTest, WriteWaitsForTheLockOfTheProcesses) {
    for (const unsigned int mode :
         {FileOutputStream::LOCK, FileOutputStream::LOCK | FileOutputStream::KEEPCLOSED}) {
        make("");
        FileOutputStream out(path(), mode);
        ipc::Semaphore lock(lockNameOf(path()).c_str(), 1);
        lock.wait();
        std::thread writer = support::startedThread([&] { write(out, "text"); });
        EXPECT_EQ(content(), "") << mode;
        lock.signal();
        writer.join();
        EXPECT_EQ(content(), "text") << mode;
    }
}

TEST_F(FileStreamThreadsTest, BlocksOfOneStreamAreWhole) {
    for (const unsigned int mode :
         {FileOutputStream::APPEND, FileOutputStream::APPEND | FileOutputStream::LOCK,
          FileOutputStream::LOCK, FileOutputStream::KEEPCLOSED,
          FileOutputStream::LOCK | FileOutputStream::KEEPCLOSED | FileOutputStream::APPEND}) {
        constexpr int threadCount = 4;
        constexpr int blocks = 50;
        FileOutputStream out(path(), mode | FileOutputStream::TRUNC);
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([&, t] {
                const std::string line(99, static_cast<char>('a' + t));
                for (int i = 0; i < blocks; ++i) {
                    write(out, line + "\n");
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        const std::string all = content();
        ASSERT_EQ(all.size(), 100u * threadCount * blocks);
        for (std::size_t i = 0; i < all.size(); i += 100) {
            ASSERT_EQ(all.substr(i, 100), std::string(99, all[i]) + "\n");
        }
    }
}

/// Each write opens the file anew and writes over its start: what stays is one whole block.
TEST_F(FileStreamThreadsTest, OperationsOfAKeptClosedStreamAreNotInterleaved) {
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            const std::string block(1000, static_cast<char>('a' + t));
            for (int i = 0; i < 30; ++i) {
                write(out, block);
            }
        });
    }
    threads.emplace_back([&] {
        for (int i = 0; i < 30; ++i) {
            const std::int64_t size = out.getSize();
            EXPECT_TRUE(size == 0 || size == 1000) << size;
            out.open();
            out.flush();
            out.close();
        }
    });
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(out.is_open(), 0);
    const std::string all = content();
    ASSERT_EQ(all.size(), 1000u);
    EXPECT_EQ(all, std::string(1000, all[0]));
}

TEST_F(FileStreamThreadsTest, HolderOfTheLockKeepsOtherThreadsOut) {
    FileOutputStream out(path(), FileOutputStream::APPEND);
    out.wait();
    std::thread other([&] {
        out.signal(); // not its holder: nothing happens
        write(out, "other");
    });
    write(out, "one ");
    write(out, "two ");
    out.signal();
    other.join();
    EXPECT_EQ(content().size(), 13u);
    EXPECT_NE(content().find("one two "), std::string::npos);
}

// --- Other processes ---

constexpr int processes = 8;
constexpr int linesEach = 10000;
// Each durable line opens the file anew and reaches the disk, which an emulated system takes
// minutes for.
constexpr bool emulated = std::filesystem::path::preferred_separator == '\\';
constexpr int durableLines = emulated ? linesEach / 50 : linesEach;

const support::ChildRole appender("file-appender", [](const std::vector<std::string>& arguments) {
    FileOutputStream out(String(reinterpret_cast<const signed char*>(arguments[0].c_str()), -1),
                         static_cast<unsigned int>(std::stoul(arguments[1])));
    const int lines = std::stoi(arguments[3]);
    for (int i = 0; i < lines; ++i) {
        const std::string line = arguments[2] + ":" + std::to_string(i) + "\n";
        out.write(line.data(), static_cast<std::int32_t>(line.size()));
    }
    return 0;
});

const support::ChildRole
    lockHolder("file-lock-holder", [](const std::vector<std::string>& arguments) {
        FileOutputStream out(String(reinterpret_cast<const signed char*>(arguments[0].c_str()), -1),
                             FileOutputStream::APPEND);
        out.wait();
        support::tell("held");
        support::hear(); // until it is killed
        return 0;
    });

class FileStreamProcessTest : public FileStreamTest {
protected:
    FileStreamProcessTest() : FileStreamTest(support::TestFolder::fastParent()) {}

    void appendTogether(unsigned int mode, int lines) {
        std::vector<std::unique_ptr<support::TestProcess>> children;
        for (int p = 0; p < processes; ++p) {
            children.push_back(std::make_unique<support::TestProcess>(
                "file-appender",
                std::vector<std::string>{path().getBytes(), std::to_string(mode), std::to_string(p),
                                         std::to_string(lines)}));
        }
        for (const auto& child : children) {
            ASSERT_EQ(child->wait(), 0);
        }
        std::set<std::string> expected;
        for (int p = 0; p < processes; ++p) {
            for (int i = 0; i < lines; ++i) {
                expected.insert(std::to_string(p) + ":" + std::to_string(i));
            }
        }
        const std::string all = content();
        std::size_t count = 0;
        for (std::size_t start = 0; start < all.size();) {
            const std::size_t end = all.find('\n', start);
            ASSERT_NE(end, std::string::npos);
            ASSERT_EQ(expected.erase(all.substr(start, end - start)), 1u)
                << "a line that is torn, doubled or foreign: " << all.substr(start, end - start);
            start = end + 1;
            ++count;
        }
        EXPECT_EQ(count, static_cast<std::size_t>(processes) * static_cast<std::size_t>(lines));
        EXPECT_TRUE(expected.empty()) << expected.size() << " lines are missing";
    }
};

TEST_F(FileStreamProcessTest, AppendedLinesAreWholeAndComplete) {
    appendTogether(FileOutputStream::APPEND, linesEach);
}

TEST_F(FileStreamProcessTest, LockedLinesAreWholeAndComplete) {
    appendTogether(FileOutputStream::APPEND | FileOutputStream::LOCK, linesEach);
}

TEST_F(FileStreamProcessTest, LinesOfKeptClosedFilesAreWholeAndComplete) {
    appendTogether(FileOutputStream::APPEND | FileOutputStream::LOCK | FileOutputStream::KEEPCLOSED,
                   durableLines);
}

TEST_F(FileStreamProcessTest, LockOfAKilledProcessComesBack) {
    support::TestProcess child("file-lock-holder", {path().getBytes()});
    ASSERT_EQ(child.readLine(), "held");
    child.kill();
    FileOutputStream out(path(), FileOutputStream::APPEND);
    write(out, "mine");
    EXPECT_EQ(content(), "mine");
}

} // namespace
