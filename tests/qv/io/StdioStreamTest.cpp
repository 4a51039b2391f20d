// The streams over the process's own standard handles, each in a child process whose input and
// output are pipes.

#include "qv/Exceptions.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"
#include "qv/io/MaskedConsoleInputStream.h"
#include "qv/io/StdioInputStream.h"
#include "qv/io/StdioOutputStream.h"
#include "qvcore/File.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestProcess.h"
#include "tests/support/Throws.h"

#include <fstream>
#include <gtest/gtest.h>

using namespace qv;
using namespace qv::io;

namespace {

using Arguments = std::vector<std::string>;

std::string printable(const signed char* bytes, std::int32_t count) {
    std::string text = std::to_string(count) + ":";
    for (std::int32_t i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += byte == '\n' ? "<lf>" : byte == 0 ? "<0>" : std::string(1, static_cast<char>(byte));
    }
    return text;
}

// --- StdioInputStream ---

const support::ChildRole stdinBlocks("stdin-blocks", [](const Arguments& arguments) {
    StdioInputStream in;
    signed char bytes[64];
    const int length = std::stoi(arguments[0]);
    for (;;) {
        const std::int32_t count = in.read(bytes, length);
        support::tell(printable(bytes, count));
        if (count < 1) {
            return bytes[0] == 0 || length < 1 ? 0 : 1;
        }
        if (bytes[count] != 0) {
            return 2; // not terminated
        }
    }
});

const support::ChildRole stdinBytes("stdin-bytes", [](const Arguments&) {
    StdioInputStream in;
    for (int byte = in.read();; byte = in.read()) {
        support::tell(std::to_string(byte));
        if (byte < 0) {
            return 0;
        }
    }
});

const support::ChildRole stdinSkip("stdin-skip", [](const Arguments&) {
    StdioInputStream in;
    support::tell(std::to_string(in.skip(3)));
    return in.skip(0) == 0 ? 0 : 1;
});

const support::ChildRole stdinSkipBetweenReads("stdin-skip-between-reads", [](const Arguments&) {
    StdioInputStream in;
    support::tell(std::to_string(in.read()));
    support::tell(std::to_string(in.skip(3)));
    support::tell(std::to_string(in.read()));
    return 0;
});

/// The same over a file of six bytes.
const support::ChildRole stdinFileSkip("stdin-file-skip", [](const Arguments& arguments) {
    if (std::freopen(arguments[0].c_str(), "rb", stdin) == nullptr) {
        return 1;
    }
    StdioInputStream in;
    support::tell(std::to_string(in.read()));
    for (const std::int32_t count : {3, -2, 0, 100}) {
        support::tell(std::to_string(in.skip(count)));
        support::tell(std::to_string(in.read()));
    }
    return 0;
});

const support::ChildRole stdinFarSkip("stdin-far-skip", [](const Arguments& arguments) {
    if (std::freopen(arguments[0].c_str(), "rb", stdin) == nullptr) {
        return 1;
    }
    StdioInputStream in;
    for (const std::int32_t count : {0x7FFFFFFF, 16, -100, 98}) {
        support::tell(std::to_string(in.skip(count)));
        support::tell(std::to_string(in.read()));
    }
    return 0;
});

/// What is thrown where standard input cannot be read.
const support::ChildRole stdinFailure("stdin-failure", [](const Arguments&) {
    if (QVFileClose(QVFileGetStandard(0)) < 0) {
        return 1;
    }
    StdioInputStream in;
    signed char bytes[8];
    support::tell(support::thrownText<IoException>([&] { in.read(bytes, 8); }));
    support::tell(support::thrownText<IoException>([&] { in.skip(1); }));
    std::clearerr(stdin);
    support::tell(support::thrownText<IoException>([&] { in.read(); }));
    return 0;
});

std::vector<std::string> answers(const char* role, const std::string& input,
                                 const Arguments& arguments) {
    support::TestProcess child(role, arguments);
    child.write(input);
    child.closeInput();
    std::vector<std::string> lines;
    for (std::string line = child.readLine(); !line.empty(); line = child.readLine()) {
        lines.push_back(line);
    }
    EXPECT_EQ(child.wait(), 0);
    return lines;
}

using Lines = std::vector<std::string>;

TEST(StdioInputStreamTest, BlockEndsBehindALineFeed) {
    EXPECT_EQ(answers("stdin-blocks", "ab\ncd", {"32"}), (Lines{"3:ab<lf>", "2:cd", "-1:"}));
}

TEST(StdioInputStreamTest, BlockLeavesRoomForATerminator) {
    EXPECT_EQ(answers("stdin-blocks", "abcde", {"3"}), (Lines{"2:ab", "2:cd", "1:e", "-1:"}));
}

TEST(StdioInputStreamTest, ZeroByteCutsTheCount) {
    EXPECT_EQ(answers("stdin-blocks", std::string("a\0b\nc", 5), {"32"}),
              (Lines{"1:a", "1:c", "-1:"}));
}

TEST(StdioInputStreamTest, LineThatBeginsWithAZeroByteLooksLikeTheEnd) {
    EXPECT_EQ(answers("stdin-blocks", std::string("\0ab\nc", 5), {"32"}), (Lines{"-1:"}));
}

TEST(StdioInputStreamTest, RoomForOneAsksForNothing) {
    EXPECT_EQ(answers("stdin-blocks", "abc", {"1"}), (Lines{"-1:"}));
}

TEST(StdioInputStreamTest, NoRoomReadsNothing) {
    EXPECT_EQ(answers("stdin-blocks", "abc", {"0"}), (Lines{"0:"}));
}

TEST(StdioInputStreamTest, BytesAreUnsignedAndEndInMinusOne) {
    EXPECT_EQ(answers("stdin-bytes", "a\xFF\n", {}), (Lines{"97", "255", "10", "-1"}));
}

TEST(StdioInputStreamTest, PipeSkipsNothing) {
    EXPECT_EQ(answers("stdin-skip", "abcdef", {}), (Lines{"0"}));
}

TEST(StdioInputStreamTest, PipeLosesNothingByASkip) {
    EXPECT_EQ(answers("stdin-skip-between-reads", "abcdef", {}), (Lines{"97", "0", "98"}));
}

TEST(StdioInputStreamTest, FileSkipsByMovingItsPosition) {
    const support::TestFolder folder;
    const std::string path = (folder.path() / "file").string();
    std::ofstream(path, std::ios::binary) << "abcdef";
    EXPECT_EQ(answers("stdin-file-skip", "", {path}),
              (Lines{"97", "3", "101", "-2", "100", "0", "101", "100", "-1"}));
}

TEST(StdioInputStreamTest, FileSkipsBehindTheReachOf32Bits) {
    const support::TestFolder folder;
    {
        FileOutputStream out(String((folder.path() / "file").u16string().c_str()), false);
        std::int64_t position = 0;
        ASSERT_EQ(QVFileSeek64(out.getHandle(), 0x80000010, 0, &position), 0);
        out.write(static_cast<signed char>('z'));
    }
    EXPECT_EQ(answers("stdin-far-skip", "", {(folder.path() / "file").string()}),
              (Lines{"2147483647", "0", "16", "122", "-100", "0", "98", "122"}));
}

TEST(StdioInputStreamTest, ErrorsHaveTheirTexts) {
    EXPECT_EQ(answers("stdin-failure", "", {}),
              (Lines{"stream read error", "stream seek error", "stream read error"}));
}

// --- StdioOutputStream ---

const support::ChildRole stdoutWriter("stdout-writer", [](const Arguments&) {
    StdioOutputStream out;
    out.write("block\n", 6);
    out.write(static_cast<signed char>('x')); // stays in the runtime stream's buffer
    out.write("overtakes\n", 10);
    out.write(static_cast<signed char>('\n'));
    out.flush();
    out.close();
    out.write("open\n", 5); // closing does nothing
    return 0;
});

/// With its standard error in a file.
const support::ChildRole stderrWriter("stderr-writer", [](const Arguments& arguments) {
    if (std::freopen(arguments[0].c_str(), "wb", stderr) == nullptr) {
        return 1;
    }
    const Reference<OutputStream> error = StdioOutputStream::getStdErrorStream();
    error->write("to the error stream\n", 20);
    error->flush();
    error->close();
    return std::ferror(stderr) == 0 && std::fputs("still open\n", stderr) >= 0 ? 0 : 1;
});

TEST(StdioOutputStreamTest, BlocksOvertakeSingleBytes) {
    EXPECT_EQ(answers("stdout-writer", "", {}), (Lines{"block", "overtakes", "x", "open"}));
}

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(StdioOutputStreamTest, ErrorStreamWritesStandardErrorAndDoesNotOwnIt) {
    const support::TestFolder folder;
    EXPECT_TRUE(answers("stderr-writer", "", {(folder.path() / "file").string()}).empty());
    EXPECT_EQ(contents(folder.path() / "file"), "to the error stream\nstill open\n");
}

/// What is thrown where standard output cannot be written; told in a file.
const support::ChildRole stdoutFailure("stdout-failure", [](const Arguments& arguments) {
    std::ofstream told(arguments[0], std::ios::binary);
    if (QVFileClose(QVFileGetStandard(1)) < 0) {
        return 1;
    }
    StdioOutputStream out;
    told << support::thrownText<IoException>([&] { out.write("abc", 3); }) << "\n";
    out.write(static_cast<signed char>('x')); // into the runtime stream's buffer
    told << support::thrownText<IoException>([&] { out.flush(); }) << "\n";
    std::clearerr(stdout);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    told << support::thrownText<IoException>([&] { out.write(static_cast<signed char>('x')); });
    return 0;
});

TEST(StdioOutputStreamTest, ErrorsHaveTheirTexts) {
    const support::TestFolder folder;
    answers("stdout-failure", "", {(folder.path() / "file").string()});
    EXPECT_EQ(contents(folder.path() / "file"),
              "stream write error\nstream flush error\nstream write error");
}

TEST(StdioFileOutputStreamTest, OwnedStreamIsClosedOnce) {
    const support::TestFolder folder;
    std::FILE* const file = std::fopen((folder.path() / "file").string().c_str(), "wb");
    ASSERT_NE(file, nullptr);
    {
        StdioFileOutputStream out(file, true);
        out.write(static_cast<signed char>('a'));
        out.flush();
        out.write("bc", 2);
        out.write("", 0);
        out.close();
        out.close();
    }
    FileInputStream in(String((folder.path() / "file").u16string().c_str()));
    signed char bytes[8];
    EXPECT_EQ(printable(bytes, in.read(bytes, 8)), "3:abc");
}

TEST(StdioFileOutputStreamTest, DestructorClosesWhatIsOwned) {
    const support::TestFolder folder;
    const std::string path = (folder.path() / "file").string();
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    {
        StdioFileOutputStream out(file, false);
        out.write(static_cast<signed char>('a'));
    }
    EXPECT_EQ(std::fputc('b', file), 'b') << "not owned: still open";
    {
        StdioFileOutputStream out(file, true);
        out.write(static_cast<signed char>('c'));
    }
    FileInputStream in(String((folder.path() / "file").u16string().c_str()));
    signed char bytes[8];
    EXPECT_EQ(printable(bytes, in.read(bytes, 8)), "3:abc") << "written by the close";
}

TEST(StdioFileOutputStreamTest, ClosedStreamRefusesEverything) {
    StdioFileOutputStream out(std::tmpfile(), true);
    out.close();
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write("abc", 3); }), "stream write error");
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write(static_cast<signed char>('x')); }),
              "stream write error");
    EXPECT_EQ(support::thrownText<IoException>([&] { out.flush(); }), "stream flush error");
}

TEST(StdioFileOutputStreamTest, AFileThatCouldNotBeOpenedIsAClosedStream) {
    StdioFileOutputStream out(nullptr, true);
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write("abc", 3); }), "stream write error");
    EXPECT_NO_THROW(out.close());
}

TEST(StdioFileOutputStreamTest, WriteToAReadingStreamFailsWithItsText) {
    const support::TestFolder folder;
    const std::string path = (folder.path() / "file").string();
    std::fclose(std::fopen(path.c_str(), "wb"));
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    StdioFileOutputStream out(file, true);
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write("abc", 3); }), "stream write error");
    EXPECT_EQ(support::thrownText<IoException>([&] { out.write(static_cast<signed char>('x')); }),
              "stream write error");
}

// --- Standard handles ---

const support::ChildRole handleCopier("handle-copier", [](const Arguments&) {
    const Reference<FileInputStream> in = FileInputStream::standardInput();
    const Reference<FileOutputStream> out = FileOutputStream::standardOutput();
    signed char bytes[16];
    for (std::int32_t n = in->read(bytes, 16); n > 0; n = in->read(bytes, 16)) {
        out->write(bytes, n);
    }
    in->close();
    out->close();
    return out->is_open() == 1 ? 0 : 1; // not owned
});

TEST(StandardHandleTest, BytesPassUnchanged) {
    EXPECT_EQ(answers("handle-copier", "one line\nanother, longer than a block\n", {}),
              (Lines{"one line", "another, longer than a block"}));
}

// --- MaskedConsoleInputStream ---

const support::ChildRole maskedReader("masked-reader", [](const Arguments& arguments) {
    MaskedConsoleInputStream in;
    signed char bytes[64];
    try {
        const std::int32_t count = in.read(bytes, std::stoi(arguments[0]));
        support::tell(printable(bytes, count));
    } catch (const UserAbortException&) {
        support::tell("aborted");
    }
    return 0;
});

const support::ChildRole closedReader("masked-closed-reader", [](const Arguments&) {
    QVFileClose(QVFileGetStandard(0));
    MaskedConsoleInputStream in;
    const std::int32_t result = support::thrownResult([&] { in.read(); });
    support::tell(result == QV_E_INVALIDHANDLE ? "invalid handle" : "another result");
    return 0;
});

std::string masked(const std::string& keys, int length = 64) {
    const Lines lines = answers("masked-reader", keys, {std::to_string(length)});
    return lines.size() == 1 ? lines[0] : "no single answer";
}

TEST(MaskedConsoleInputStreamTest, EnterEndsTheLineAsALineFeed) {
    EXPECT_EQ(masked("ab\rcd"), "3:ab<lf>");
    EXPECT_EQ(masked("ab\ncd"), "3:ab<lf>");
}

TEST(MaskedConsoleInputStreamTest, BackspaceForgetsTheLastKey) {
    EXPECT_EQ(masked("ab\bc\r"), "3:ac<lf>");
    EXPECT_EQ(masked("\b\ba\r"), "2:a<lf>") << "an empty line stays empty";
}

TEST(MaskedConsoleInputStreamTest, OtherKeysAreStored) {
    EXPECT_EQ(masked("\x01\t\x1B\x7F\xE9\r"), "6:\x01\t\x1B\x7F\xE9<lf>");
    EXPECT_EQ(masked("abc\bd", 3), "3:abc") << "the room is full before the backspace";
    EXPECT_EQ(masked("ab\bcde", 3), "3:acd");
}

TEST(MaskedConsoleInputStreamTest, CtrlZEndsTheInput) {
    EXPECT_EQ(masked("\x1A"), "-1:");
    EXPECT_EQ(masked("ab\x1A"), "2:ab");
    EXPECT_EQ(masked(""), "-1:") << "so does the end of the input";
    EXPECT_EQ(masked("a\b\x1A"), "-1:") << "nothing is left";
}

TEST(MaskedConsoleInputStreamTest, CtrlCAborts) { EXPECT_EQ(masked("ab\x03"), "aborted"); }

TEST(MaskedConsoleInputStreamTest, FailureToReadIsThrown) {
    EXPECT_EQ(answers("masked-closed-reader", "", {}), Lines{"invalid handle"});
}

TEST(MaskedConsoleInputStreamTest, RoomEndsTheInput) {
    EXPECT_EQ(masked("abcdef", 3), "3:abc");
    EXPECT_EQ(masked("abcdef", 0), "0:");
}

} // namespace
