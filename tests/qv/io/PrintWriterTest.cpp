#include "qv/io/PrintWriter.h"

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/StringWriter.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace {

using namespace qv;

constexpr auto toUnits = support::unitsOf<char16_t>;

/// What a print writer makes of it.
template <class Work>
String printed(Work work) {
    const Reference<io::StringWriter> text = make<io::StringWriter>();
    io::PrintWriter out(text, false);
    work(out);
    return text->toString();
}

TEST(PrintWriterTest, PrintsEveryKindOfValue) {
    using Out = io::PrintWriter;
    EXPECT_EQ(printed([](Out& out) { out.print(String(u"a\u20AC")); }), u"a\u20AC");
    EXPECT_EQ(printed([](Out& out) { out.print("narrow"); }), u"narrow");
    EXPECT_EQ(printed([](Out& out) { out.print(u"wide"); }), u"wide");
    EXPECT_EQ(printed([](Out& out) { out.print(0.5); }), String::valueOf(0.5));
    EXPECT_EQ(printed([](Out& out) { out.print(0.25F); }), String::valueOf(0.25F));
    EXPECT_EQ(printed([](Out& out) { out.print(-2147483647L); }), u"-2147483647");
    EXPECT_EQ(printed([](Out& out) { out.print(std::numeric_limits<int>::min()); }),
              u"-2147483648");
    EXPECT_EQ(printed([](Out& out) { out.print(u'c'); }), u"c");
    EXPECT_EQ(printed([](Out& out) { out.print(true); }), String::valueOf(true));
    EXPECT_EQ(printed([](Out& out) { out.print(false); }), u"false");
}

TEST(PrintWriterTest, PrintsALongInItsWholeRange) {
    for (const long value : {std::numeric_limits<long>::min(), std::numeric_limits<long>::max()}) {
        const String text = String::valueOf(value);
        EXPECT_EQ(text.getBytes(), std::to_string(value));
        EXPECT_EQ(printed([=](io::PrintWriter& out) { out.print(value); }), text);
        EXPECT_EQ(printed([=](io::PrintWriter& out) { out.println(value); }), text + String(u"\n"));
    }
}

TEST(PrintWriterTest, DecodesNarrowTextsWithTheDefaultEncoding) {
    const char bytes[] = "caf\xC3\xA9 \xE2\x82\xAC \xFF";
    const String expected(reinterpret_cast<const signed char*>(bytes), -1);
    EXPECT_NE(expected, u"caf") << "there is more than ASCII";
    EXPECT_EQ(printed([&](io::PrintWriter& out) { out.print(bytes); }), expected);
    EXPECT_EQ(printed([&](io::PrintWriter& out) { out.println(bytes); }), expected + String(u"\n"));
}

TEST(PrintWriterTest, PrintsAFloatAsAFloat) {
    EXPECT_EQ(printed([](io::PrintWriter& out) { out.print(0.1F); }), String::valueOf(0.1F));
    EXPECT_EQ(printed([](io::PrintWriter& out) { out.print(0.1); }), String::valueOf(0.1));
}

TEST(PrintWriterTest, EndsALineWithASingleLineFeed) {
    using Out = io::PrintWriter;
    EXPECT_EQ(printed([](Out& out) { out.println(String(u"text")); }), u"text\n");
    EXPECT_EQ(printed([](Out& out) { out.println("narrow"); }), u"narrow\n");
    EXPECT_EQ(printed([](Out& out) { out.println(u"wide"); }), u"wide\n");
    EXPECT_EQ(printed([](Out& out) { out.println(1.5); }), String::valueOf(1.5) + String(u"\n"));
    EXPECT_EQ(printed([](Out& out) { out.println(1.5F); }), String::valueOf(1.5F) + String(u"\n"));
    EXPECT_EQ(printed([](Out& out) { out.println(7L); }), u"7\n");
    EXPECT_EQ(printed([](Out& out) { out.println(-7); }), u"-7\n");
    EXPECT_EQ(printed([](Out& out) { out.println(u'c'); }), u"c\n");
    EXPECT_EQ(printed([](Out& out) { out.println(true); }), u"true\n");
    EXPECT_EQ(printed([](Out& out) { out.println(); }), u"\n");
}

TEST(PrintWriterTest, PrintsEmptyTexts) {
    using Out = io::PrintWriter;
    EXPECT_EQ(printed([](Out& out) { out.print(""); }), u"");
    EXPECT_EQ(printed([](Out& out) { out.print(u""); }), u"");
    EXPECT_EQ(printed([](Out& out) { out.print(String()); }), u"");
}

TEST(PrintWriterTest, PassesTextsOnInTheirForm) {
    const auto sink = make<support::BlockWriter>();
    io::PrintWriter out(sink);
    out.print(String(u"a\0b", 3));
    out.print(u"cd");
    out.print(u'e');
    EXPECT_EQ(sink->blocks,
              (std::vector<std::vector<char16_t>>{{'a', 0, 'b'}, toUnits("cd"), toUnits("e")}));
}

/// Writes down in which form it was given a text.
class FormWriter : public io::Writer {
public:
    void write(const String&) override { forms.emplace_back("string"); }
    void write(const char16_t*) override { forms.emplace_back("text"); }
    void write(const char16_t*, std::int32_t) override { forms.emplace_back("block"); }
    void write(char16_t) override { forms.emplace_back("unit"); }
    void flush() override { forms.emplace_back("flush"); }
    std::vector<std::string> forms;
};

TEST(PrintWriterTest, WritesByTheOperationOfTheSameType) {
    using Forms = std::vector<std::string>;
    const auto sink = make<FormWriter>();
    io::PrintWriter out(sink, true);
    out.print(String(u"a"));
    out.print(u"b");
    out.print(u'c');
    EXPECT_EQ(std::exchange(sink->forms, {}), (Forms{"string", "text", "unit"}));
    out.print("d");
    out.print(1.5);
    out.print(1.5F);
    out.print(1L);
    out.print(1);
    out.print(true);
    EXPECT_EQ(std::exchange(sink->forms, {}), Forms(6, "string"));
    out.println(u"e");
    EXPECT_EQ(sink->forms, (Forms{"text", "unit", "flush"}));
}

TEST(PrintWriterTest, OnlyPrintlnFlushesAndOnlyWhereAskedFor) {
    const auto sink = make<support::BlockWriter>();
    io::PrintWriter flushing(sink, true);
    flushing.print(u"a");
    flushing.print(1);
    EXPECT_EQ(sink->flushes, 0);
    flushing.println();
    EXPECT_EQ(sink->flushes, 1);
    flushing.println(u"text");
    EXPECT_EQ(sink->flushes, 2);
    io::PrintWriter plain(sink, false);
    plain.println(u"text");
    plain.println();
    EXPECT_EQ(sink->flushes, 2);
}

TEST(PrintWriterTest, IsAFilter) {
    const auto sink = make<support::BlockWriter>();
    {
        io::PrintWriter out(sink);
        out.write(u"text");
        out.flush();
        out.close();
        EXPECT_EQ(sink->GetRefCount(), 2U);
    }
    EXPECT_EQ(sink->all(), toUnits("text"));
    EXPECT_EQ(sink->flushes, 1) << "the destructor does not flush";
    EXPECT_EQ(sink->closes, 1);
    EXPECT_EQ(sink->GetRefCount(), 1U);
}

/// Prints numbers in its own way.
class NamingWriter : public io::PrintWriter {
public:
    using PrintWriter::print;
    using PrintWriter::PrintWriter;
    void print(int) override { write(u"number"); }
    using PrintWriter::newLine;
};

TEST(PrintWriterTest, PrintlnGoesThroughTheSlotOfPrint) {
    const auto sink = make<support::BlockWriter>();
    NamingWriter out(sink, true);
    out.println(5);
    EXPECT_EQ(sink->all(), toUnits("number\n"));
}

TEST(PrintWriterTest, ANewLineFlushesLikePrintln) {
    const auto sink = make<support::BlockWriter>();
    NamingWriter out(sink, true);
    out.newLine();
    EXPECT_EQ(sink->all(), toUnits("\n"));
    EXPECT_EQ(sink->flushes, 1);
}

template <class Value>
std::ptrdiff_t printSlot() {
    return support::slotOf<void (io::PrintWriter::*)(Value)>(&io::PrintWriter::print);
}
template <class Value>
std::ptrdiff_t printlnSlot() {
    return support::slotOf<void (io::PrintWriter::*)(Value)>(&io::PrintWriter::println);
}

TEST(PrintWriterTest, HasItsOperationsInOrder) {
    support::expectConsecutive({
        support::slotOf(&io::Writer::close),
        printSlot<const String&>(),
        printSlot<const char*>(),
        printSlot<const char16_t*>(),
        printSlot<double>(),
        printSlot<float>(),
        printSlot<long>(),
        printSlot<int>(),
        printSlot<char16_t>(),
        printSlot<bool>(),
        printlnSlot<const String&>(),
        printlnSlot<const char*>(),
        printlnSlot<const char16_t*>(),
        printlnSlot<double>(),
        printlnSlot<float>(),
        printlnSlot<long>(),
        printlnSlot<int>(),
        printlnSlot<char16_t>(),
        printlnSlot<bool>(),
        support::slotOf<void (io::PrintWriter::*)()>(&io::PrintWriter::println),
    });
}

} // namespace
