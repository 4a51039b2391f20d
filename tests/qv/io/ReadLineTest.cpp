#include "qv/io/BufferedReader.h"

#include "qv/Reference.h"
#include "qv/String.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;

constexpr auto toUnits = support::unitsOf<char16_t>;

using Lines = std::vector<std::u16string>;

/// All lines of a text. Checks that each result is the length of its line.
Lines linesOf(const std::vector<char16_t>& text, std::int32_t bufferSize = 16,
              std::int32_t piece = 1000000) {
    io::BufferedReader in(make<support::SlowReader>(text, piece), bufferSize);
    Lines lines;
    String line;
    for (std::int32_t length = in.readLine(line); length != -1; length = in.readLine(line)) {
        EXPECT_EQ(line.getLength(), length);
        lines.push_back(support::units(line));
    }
    EXPECT_EQ(line, u"");
    EXPECT_EQ(in.readLine(line), -1);
    return lines;
}

TEST(ReadLineTest, TakesEveryKindOfLineEnd) {
    EXPECT_EQ(linesOf(toUnits("a\r\nb\rc")), (Lines{u"a", u"b", u"c"}));
    EXPECT_EQ(linesOf(toUnits("a\nb\n")), (Lines{u"a", u"b"}));
    EXPECT_EQ(linesOf(toUnits("a\n\rb")), (Lines{u"a", u"", u"b"}));
    EXPECT_EQ(linesOf(toUnits("a\r\r\nb")), (Lines{u"a", u"", u"b"}));
}

TEST(ReadLineTest, ACarriageReturnMayBeTheLastUnit) {
    EXPECT_EQ(linesOf(toUnits("a\r")), (Lines{u"a"}));
    EXPECT_EQ(linesOf(toUnits("\r")), (Lines{u""}));
}

TEST(ReadLineTest, AnEmptyInputHasNoLine) {
    io::BufferedReader in(make<support::SlowReader>(std::vector<char16_t>()), 16);
    String line(u"what was there");
    EXPECT_EQ(in.readLine(line), -1);
    EXPECT_EQ(line, u"");
}

TEST(ReadLineTest, AnEmptyLineIsALine) {
    EXPECT_EQ(linesOf(toUnits("\n")), (Lines{u""}));
    EXPECT_EQ(linesOf(toUnits("\n\n")), (Lines{u"", u""}));
}

TEST(ReadLineTest, TheLastLineNeedsNoEnd) {
    EXPECT_EQ(linesOf(toUnits("first\nlast")), (Lines{u"first", u"last"}));
}

TEST(ReadLineTest, ALineMayBeLongerThanTheBuffer) {
    const std::u16string line(1000, u'x');
    std::vector<char16_t> text(line.begin(), line.end());
    text.insert(text.end(), {u'\r', u'\n', u'y'});
    EXPECT_EQ(linesOf(text), (Lines{line, u"y"}));
    EXPECT_EQ(linesOf(text, 16, 3), (Lines{line, u"y"}));
    EXPECT_EQ(linesOf(text, 8192), (Lines{line, u"y"}));
}

/// The line end stands at every place with respect to the buffer's end and to the runs of the
/// search.
TEST(ReadLineTest, FindsALineEndAtEveryPlace) {
    for (const char* const end : {"\n", "\r", "\r\n"}) {
        for (std::size_t length = 0; length < 40; ++length) {
            const std::string first(length, 'a');
            const std::vector<char16_t> text = toUnits(first + end + "b" + end);
            EXPECT_EQ(linesOf(text), (Lines{std::u16string(length, u'a'), u"b"})) << length;
        }
    }
}

TEST(ReadLineTest, OnlyLineFeedAndCarriageReturnEndALine) {
    const std::u16string line = u"\t\v\f\x85\u2028\u2029\u0A0A\u0D0D\u0A00\u0D00 end";
    std::vector<char16_t> text(line.begin(), line.end());
    text.push_back(u'\n');
    EXPECT_EQ(linesOf(text), (Lines{line}));
}

TEST(ReadLineTest, ReplacesWhatTheLineHeld) {
    io::BufferedReader in(make<support::SlowReader>(toUnits("x\nyy\n")), 16);
    String line(u"a much longer text than what comes");
    const String shared(line);
    EXPECT_EQ(in.readLine(line), 1);
    EXPECT_EQ(line, u"x");
    EXPECT_EQ(in.readLine(line), 2);
    EXPECT_EQ(line, u"yy");
    EXPECT_EQ(shared, u"a much longer text than what comes");
}

TEST(ReadLineTest, KeepsTheRoomOfTheLine) {
    io::BufferedReader in(make<support::SlowReader>(toUnits("a\nbc\n")), 16);
    String line(1000);
    const char16_t* const room = line.getData();
    EXPECT_EQ(in.readLine(line), 1);
    EXPECT_EQ(in.readLine(line), 2);
    EXPECT_EQ(line.getData(), room);
}

TEST(ReadLineTest, ReadsOnForTheLineFeedBehindALastCarriageReturn) {
    const auto source = make<support::SlowReader>(toUnits("abc\r\ndef\n"), 4);
    io::BufferedReader in(source, 16);
    String line;
    EXPECT_EQ(in.readLine(line), 3);
    EXPECT_EQ(source->requests.size(), 2U);
    EXPECT_EQ(in.read(), 'd') << "the line feed is gone";
}

TEST(ReadLineTest, ASingleLineFeedDoesNotReadOn) {
    const auto source = make<support::SlowReader>(toUnits("abc\ndef\n"), 4);
    io::BufferedReader in(source, 16);
    String line;
    EXPECT_EQ(in.readLine(line), 3);
    EXPECT_EQ(source->requests.size(), 1U);
}

TEST(ReadLineTest, GoesTogetherWithTheOtherReads) {
    io::BufferedReader in(make<support::SlowReader>(toUnits("one\r\ntwo\nthree")), 16);
    String line;
    EXPECT_EQ(in.read(), 'o');
    EXPECT_EQ(in.readLine(line), 2);
    EXPECT_EQ(line, u"ne");
    in.mark(10);
    EXPECT_EQ(in.readLine(line), 3);
    in.reset();
    EXPECT_EQ(in.readLine(line), 3);
    EXPECT_EQ(line, u"two");
    char16_t rest[5];
    EXPECT_EQ(in.read(rest, 5), 5);
    EXPECT_EQ(in.readLine(line), -1);
}

TEST(ReadLineTest, AFailureOfTheSourcePassesThrough) {
    const auto source = make<support::SlowReader>(toUnits("line\n"));
    source->failures = 1;
    io::BufferedReader in(source, 16);
    String line;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.readLine(line); }),
              "the source failed");
    EXPECT_EQ(in.readLine(line), 4);
}

/// Wherever the source fails, also between a carriage return and its line feed.
TEST(ReadLineTest, ALineThatTheSourceFailedComesWhole) {
    for (int pieces = 0; pieces < 12; ++pieces) {
        const auto source =
            make<support::SlowReader>(toUnits("1st\r\na line longer than the buffer\r\nlast"), 5);
        source->failures = 1;
        source->piecesBeforeFailures = pieces;
        io::BufferedReader in(source, 16);
        Lines lines;
        int failures = 0;
        String line;
        for (std::int32_t length = 0; length != -1;) {
            try {
                length = in.readLine(line);
                lines.push_back(support::units(line));
            } catch (const io::IoException&) {
                ++failures;
            }
        }
        EXPECT_EQ(lines, (Lines{u"1st", u"a line longer than the buffer", u"last", u""})) << pieces;
        EXPECT_EQ(failures, source->failures == 0 ? 1 : 0);
    }
}

TEST(ReadLineTest, ALineThatFailsBehindAMarkComesAgainFromTheMark) {
    const auto source = make<support::SlowReader>(toUnits("ab\rcd\n"), 3);
    io::BufferedReader in(source, 16);
    in.mark(10);
    in.read();
    source->failures = 1;
    String line;
    EXPECT_THROW(in.readLine(line), io::IoException);
    EXPECT_EQ(in.readLine(line), 1);
    EXPECT_EQ(line, u"b");
    in.reset();
    EXPECT_EQ(in.readLine(line), 2);
    EXPECT_EQ(line, u"ab");
    EXPECT_EQ(in.readLine(line), 2);
    EXPECT_EQ(line, u"cd");
}

TEST(ReadLineTest, RefusesToReadBehindAClose) {
    io::BufferedReader in(make<support::SlowReader>(toUnits("line\n")), 16);
    in.close();
    String line(u"kept");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { in.readLine(line); }), "stream closed");
    EXPECT_EQ(line, u"kept");
}

TEST(ReadLineTest, IsTheSlotBehindTheReadersOwn) {
    EXPECT_EQ(support::slotOf(&io::BufferedReader::readLine),
              support::slotOf(&io::Reader::reset) + 1);
}

} // namespace
