#include "qv/AnsiBytes.h"
#include "qv/Exceptions.h"
#include "qv/String.h"
#include "qv/util/ROBuffer.h"
#include "qv/util/RWBuffer.h"
#include "qvcore/Encoding.h"
#include "tests/support/ClosingCodec.h"
#include "tests/support/LocaleScope.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <algorithm>
#include <cstdarg>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

using namespace qv;

namespace {

const signed char* bytesOf(const char* text) { return reinterpret_cast<const signed char*>(text); }

std::string content(const util::RWByteBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.getData()),
            static_cast<std::size_t>(buffer.getLength())};
}

// --- AnsiBytes ---

TEST(AnsiBytesTest, NamesAreEqualButForTheCaseOfAsciiLetters) {
    const String::AnsiBytes bytes(u"UTF-8");
    EXPECT_TRUE(bytes.encodingEquals(u"UTF-8"));
    EXPECT_TRUE(bytes.encodingEquals(u"utf-8"));
    EXPECT_FALSE(bytes.encodingEquals(u"utf-9"));
    EXPECT_FALSE(bytes.encodingEquals(u"UTF-"));
    EXPECT_FALSE(bytes.encodingEquals(u"UTF-88"));
    EXPECT_FALSE(bytes.encodingEquals(nullptr));
    EXPECT_FALSE(String::AnsiBytes(u"\u00C0").encodingEquals(u"\u00E0"));
    EXPECT_EQ(bytes.getLength(), 0);
}

TEST(AnsiBytesTest, NullEqualsNullAlone) {
    const String::AnsiBytes bytes(nullptr);
    EXPECT_TRUE(bytes.encodingEquals(nullptr));
    EXPECT_FALSE(bytes.encodingEquals(u"UTF-8"));
}

TEST(AnsiBytesTest, NameIsCopied) {
    char16_t name[] = u"UTF-8";
    const String::AnsiBytes bytes(name);
    name[0] = u'X';
    EXPECT_TRUE(bytes.encodingEquals(u"UTF-8"));
}

// --- Narrow output ---

TEST(StringBytesTest, NarrowFormIsTerminated) {
    EXPECT_STREQ(String(u"aé€\U0001F600").getBytes(u"UTF-8"),
                 "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_STREQ(String().getBytes(u"UTF-8"), "");
    EXPECT_STREQ(String(u"plain").getBytes(), "plain");
}

TEST(StringBytesTest, NullDecodesToNothing) {
    const String text(static_cast<const signed char*>(nullptr), 5, u"UTF-8");
    EXPECT_EQ(text.getLength(), 0);
    EXPECT_EQ(text.getData()[0], 0);
    EXPECT_NE(text.getData(), String().getData()) << "it has the room that was asked for";
    EXPECT_EQ(String(static_cast<const wchar_t*>(nullptr)).getLength(), 0);
}

TEST(StringBytesTest, WhatTheEncoderKeptStandsAtTheEnd) {
    const char16_t* const encoding = support::closingEncoding();
    const String text(u"abc");
    EXPECT_STREQ(text.getBytes(encoding), "abc!");
    char memory[8];
    EXPECT_EQ(text.getBytes(memory, 8, encoding), 6) << "with a terminator of two bytes";
    EXPECT_STREQ(memory, "abc!");
    EXPECT_EQ(text.getBytes(memory, 3, encoding), 3) << "it is left out where the room ends";
}

TEST(StringBytesTest, SameEncodingGivesTheSameBytesUntilAWrite) {
    String text(u"text");
    const char* const first = text.getBytes();
    EXPECT_EQ(text.getBytes(), first);
    EXPECT_EQ(text.getBytes(nullptr), first);
    const char* const named = text.getBytes(u"UTF-8");
    EXPECT_EQ(text.getBytes(u"utf-8"), named);
    text.append(u"!");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "text!");
}

TEST(StringBytesTest, NullNamesTheDefaultEncoding) {
    char16_t name[40];
    QVGetDefaultCharEncoding(name, 40);
    const String text(u"a\u00E9");
    const std::string bytes = text.getBytes(name);
    const String decoded(bytesOf(bytes.c_str()), -1, name);
    EXPECT_EQ(text.getBytes(), bytes);
    EXPECT_EQ(text.getDataT(true), bytes);
    char memory[16];
    EXPECT_EQ(text.getBytes(memory, 16), text.getBytes(memory, 16, name));
    EXPECT_EQ(memory, bytes);
    EXPECT_EQ(String(bytesOf(bytes.c_str()), -1, nullptr), decoded);
    String set;
    EXPECT_EQ(set.setTo(bytes.c_str()), decoded);
    set = u"old";
    EXPECT_EQ(set = bytes.c_str(), decoded);
}

TEST(StringBytesTest, NarrowFormIsNotCarriedOverByACopy) {
    const String text(u"text");
    const char* const bytes = text.getBytes(u"UTF-8");
    const String copy(text);
    EXPECT_NE(copy.getBytes(u"UTF-8"), bytes);
    EXPECT_STREQ(bytes, "text");
}

TEST(StringBytesTest, TerminatorIsAsWideAsTheWidestCharacter) {
    util::RWByteBuffer buffer;
    String(u"ab").getBytes(&buffer, u"UTF-16LE");
    EXPECT_EQ(content(buffer), std::string("a\0b\0\0\0\0\0", 8));
    String(u"ab").getBytes(&buffer, u"ISO8859_1");
    EXPECT_EQ(content(buffer), std::string("ab\0", 3));
    String(u"ab").getBytes(&buffer, u"UTF-8");
    EXPECT_EQ(content(buffer), std::string("ab\0\0\0\0\0\0", 8));
}

TEST(StringBytesTest, RoomForTheWorstCaseIsTakenAtOnceAndKept) {
    util::RWByteBuffer buffer;
    String(u'a', 10).getBytes(&buffer, u"UTF-8");
    EXPECT_EQ(buffer.getCapacity(), 80) << "6 bytes for each of 10 units and the terminator";
    EXPECT_EQ(buffer.getLength(), 16);
    util::RWByteBuffer single;
    String(u'a', 10).getBytes(&single, u"ISO8859_1");
    EXPECT_EQ(single.getCapacity(), 16);
}

TEST(StringBytesTest, NegativeSizeWritesNothing) {
    signed char byte = 'x';
    for (const std::int32_t size : {-1, std::numeric_limits<std::int32_t>::min()}) {
        for (const char16_t* encoding : {u"UTF-8", u"UTF-16LE", u"ISO8859_1"}) {
            EXPECT_EQ(String(u'a', 40).getBytes(&byte, size, encoding), 0);
        }
    }
    EXPECT_EQ(byte, 'x');
}

TEST(StringBytesTest, CallersMemoryTakesTextAndTerminator) {
    signed char memory[16];
    EXPECT_EQ(String(u"ab").getBytes(memory, 16, u"UTF-16LE"), 8);
    EXPECT_EQ(String(u"ab").getBytes(memory, 6, u"UTF-16LE"), 6) << "as many zeros as fit";
    EXPECT_EQ(memory[5], 0);
    EXPECT_EQ(String(u"abc").getBytes(memory, 4, u"ISO8859_1"), 4);
    EXPECT_EQ(memory[3], 0);
    EXPECT_EQ(String(u"abc").getBytes(memory, 3, u"ISO8859_1"), 3) << "no room for a terminator";
    memory[2] = 'x';
    EXPECT_EQ(String(u"abc").getBytes(memory, 2, u"ISO8859_1"), 2) << "the text is cut";
    EXPECT_EQ(memory[2], 'x');
    char narrow[8];
    EXPECT_EQ(String(u"abc").getBytes(narrow, 8, u"ISO8859_1"), 4);
    EXPECT_STREQ(narrow, "abc");
    EXPECT_EQ(String(u"abc").getBytes(narrow, 0, u"ISO8859_1"), 0);
}

/// What an encoding makes of "a" and a supplementary character, each in a form of its own, and of
/// the terminator.
struct CutForm {
    const char16_t* encoding;
    std::string first;
    std::string second;
    std::size_t zeros;
};

class StringCutTest : public testing::TestWithParam<CutForm> {};

TEST_P(StringCutTest, NoCharacterIsCutInTheMiddle) {
    const CutForm& form = GetParam();
    const std::string whole = form.first + form.second;
    for (std::size_t size = 0; size <= whole.size() + form.zeros + 2; ++size) {
        const std::size_t fitting = size < form.first.size() ? 0
                                    : size < whole.size()    ? form.first.size()
                                                             : whole.size();
        const std::size_t zeros = std::min(form.zeros, size - fitting);
        const std::string expected = whole.substr(0, fitting) + std::string(zeros, '\0');
        std::string memory(32, 'x');
        const std::int32_t written =
            String(u"a\U0001F600")
                .getBytes(memory.data(), static_cast<std::int32_t>(size), form.encoding);
        EXPECT_EQ(written, static_cast<std::int32_t>(expected.size())) << size;
        EXPECT_EQ(memory, expected + std::string(32 - expected.size(), 'x')) << size;
    }
}

const CutForm cutForms[] = {
    {u"UTF-8", "a", "\xF0\x9F\x98\x80", 6},
    {u"UTF-32LE", std::string("a\0\0\0", 4), std::string("\x00\xF6\x01\x00", 4), 4},
    {u"AMP-7", "a", "&_1F600;", 8},
    {u"CP1252", "a", "?", 1},
};
INSTANTIATE_TEST_SUITE_P(Encodings, StringCutTest, testing::ValuesIn(cutForms));

TEST(StringBytesTest, UnmappableCharactersAreSubstituted) {
    EXPECT_STREQ(String(u"a€b").getBytes(u"ISO8859_1"), "a?b");
}

TEST(StringBytesTest, UnknownEncodingThrowsWithItsName) {
    String text(u"text");
    EXPECT_EQ(support::thrownText<text::charset::UnknownEncodingException>(
                  [&] { text.getBytes(u"no such"); }),
              "no such");
    EXPECT_THROW(text.getBytes(u"no such"), text::charset::UnknownEncodingException)
        << "a failed rendering is not kept";
    EXPECT_THROW(text.getBytesReadLock(u"no such"), text::charset::UnknownEncodingException);
    util::RWByteBuffer buffer;
    EXPECT_THROW(text.getBytes(&buffer, u"no such"), text::charset::UnknownEncodingException);
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "text");
}

TEST(StringBytesTest, LoneLeadingSurrogateAtTheEndThrows) {
    const String text(u"a\xD800");
    EXPECT_THROW(text.getBytes(u"UTF-8"), text::charset::InvalidCharacterException);
    EXPECT_THROW(text.getBytes(u"UTF-8"), text::charset::InvalidCharacterException);
}

TEST(StringBytesTest, RefusedBufferThrowsItsResult) {
    util::ROByteBuffer buffer;
    EXPECT_EQ(support::thrownResult([&] { String(u"a").getBytes(&buffer, u"UTF-8"); }),
              QV_E_NOTIMPL);
}

// --- Narrow input ---

TEST(StringBytesTest, BytesAreDecoded) {
    EXPECT_EQ(String(bytesOf("a\xC3\xA9\xF0\x9F\x98\x80"), -1, u"UTF-8"), u"aé\U0001F600");
    EXPECT_EQ(String(bytesOf("abc"), 2, u"UTF-8"), u"ab");
    EXPECT_EQ(String(bytesOf("a\0b"), 3, u"UTF-8").getLength(), 3);
    EXPECT_EQ(String(bytesOf("a\0b\0"), 4, u"UTF-16LE"), u"ab");
    EXPECT_EQ(String(bytesOf(""), -1, u"UTF-8").getData(), String().getData());
    EXPECT_EQ(String(nullptr, 0, u"UTF-8", 0).getData(), String().getData());
    EXPECT_EQ(String(static_cast<const signed char*>(nullptr), 0, u"UTF-8", 20).getLength(), 0);
    EXPECT_EQ(String(bytesOf("\x80"), -1, u"CP1252"), u"€");
}

TEST(StringBytesTest, BytesThatGiveMoreThanTheirEncodingSaysAreDecodedToTheEnd) {
    EXPECT_EQ(String(bytesOf("\xFF"), -1, u"AMP-7"), u"\uFFFD\uFFFD");
    EXPECT_EQ(String(bytesOf("a&b"), -1, u"AMP-7"), u"a\uFFFD\uFFFDb");
    EXPECT_EQ(String(bytesOf("tail& lost"), -1, u"AMP-7", 4), u"tail\uFFFD\uFFFD lost");
    EXPECT_EQ(String(bytesOf("&AM"), -1, u"AMP-7"), u"") << "an escape that does not end";
    const std::string refused(10000, '\xFF');
    EXPECT_EQ(String(bytesOf(refused.c_str()), -1, u"AMP-7"), String().append(u'\uFFFD', 20000));
}

TEST(StringBytesTest, OnlyMinusOneMeasuresBytes) {
    for (const int length : {-2, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(String(bytesOf("abc"), length, u"UTF-8"), u"");
        EXPECT_EQ(String(bytesOf("abc"), length, u"UTF-8", 20), u"");
        String text(u"old");
        EXPECT_EQ(text.setTo("abc", length, u"UTF-8"), u"");
        EXPECT_EQ(text.getData(), String().getData());
    }
}

TEST(StringBytesTest, DecodedTextHasTheRoomAskedFor) {
    String text(bytesOf("abc"), 3, u"UTF-8", 100);
    const char16_t* const data = text.getData();
    text.append(u'x', 90);
    EXPECT_EQ(text.getData(), data);
    EXPECT_EQ(text.getLength(), 93);
}

TEST(StringBytesTest, SetToDecodesInPlaceOfTheText) {
    String text(u"old");
    const String copy(text);
    static_cast<void>(text.getBytes(u"UTF-8"));
    EXPECT_EQ(&text.setTo("\xC3\xA9", -1, u"UTF-8"), &text);
    EXPECT_EQ(text, u"é");
    EXPECT_EQ(copy, u"old");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "\xC3\xA9");
    text.setTo("", -1, u"UTF-8");
    EXPECT_EQ(text.getData(), String().getData());
    text = "narrow";
    EXPECT_EQ(text, u"narrow");
    EXPECT_THROW(text.setTo("x", -1, u"no such"), text::charset::UnknownEncodingException);
    EXPECT_EQ(text, u"narrow");
}

TEST(StringBytesTest, OwnNarrowFormMayBeTheSource) {
    String text(u"a text that is taken from its own narrow form");
    text = text.getBytes();
    EXPECT_EQ(text, u"a text that is taken from its own narrow form");
    text.setTo(text.getBytes(u"UTF-16LE") + 4, 8, u"UTF-16LE");
    EXPECT_EQ(text, u"text");
}

TEST(StringBytesTest, BytesThatCannotBeDecodedLeaveTheTextAsItWas) {
    String text(u"old");
    EXPECT_THROW(text.setTo("\xED\xA0\x80", -1, u"UTF-8"),
                 text::charset::InvalidCharacterException);
    EXPECT_EQ(text, u"old");
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "old");
    EXPECT_THROW(text.setTo("good until \xED\xA0\x80", -1, u"UTF-8"),
                 text::charset::InvalidCharacterException);
    EXPECT_EQ(text, u"old");
}

TEST(StringBytesTest, LongTextsTravelThereAndBack) {
    String text;
    for (int i = 0; i < 5000; ++i) {
        text.append(u"aé中\U0001F600");
    }
    for (const char16_t* encoding : {u"UTF-8", u"UTF-16BE", u"UTF-32LE", u"AMP-7"}) {
        util::RWByteBuffer buffer;
        text.getBytes(&buffer, encoding);
        const String back(buffer.getData(), buffer.getLength(), encoding);
        EXPECT_TRUE(back.startsWith(text)) << String(encoding).getBytes();
    }
}

// --- Formatting ---

TEST(StringFormatTest, PlaceholdersAreFilledByIndex) {
    String text;
    EXPECT_EQ(&text.format(u"{0} and {1}", -1, u"one", u"two"), &text);
    EXPECT_EQ(text, u"one and two");
    EXPECT_EQ(String().format(u"{1} before {0}", -1, u"one", u"two"), u"two before one");
    EXPECT_EQ(String().format(u"{0}{0}", -1, u"x"), u"xx");
    EXPECT_EQ(String().format(u"{0}{0}", 3, u"x"), u"x") << "the length counts";
    EXPECT_EQ(String().format(String(u"<{0}>"), u"x"), u"<x>");
    EXPECT_EQ(String().format(u"{0}", -1, String(u"string").getData()), u"string");
}

TEST(StringFormatTest, PatternWithoutPlaceholdersIsTheResult) {
    EXPECT_EQ(String(u"old").format(u"pattern", -1), u"pattern");
    EXPECT_EQ(String(u"old").format(u"", -1), u"");
    EXPECT_EQ(String().format(u"{} {a} {0 {-1} { } {00} {01}", -1, u"x"),
              u"{} {a} {0 {-1} { } {00} {01}");
}

TEST(StringFormatTest, IndicesEndAtTheFirstGap) {
    EXPECT_EQ(String().format(u"{0} {2}", -1, u"a", u"b", u"c"), u"a {2}");
    EXPECT_EQ(String().format(u"{1}", -1, u"a", u"b"), u"{1}");
    EXPECT_EQ(String().format(u"{0}{2}{3}", -1, u"a", u"b", u"c", u"d"), u"a{2}{3}");
    EXPECT_EQ(String().format(u"{0}{0}{2}", -1, u"a", u"b", u"c"), u"aa{2}");
}

TEST(StringFormatTest, ArgumentsAreNotExpanded) {
    EXPECT_EQ(String().format(u"{0} {1}", -1, u"{1}", u"b"), u"{1} b");
    EXPECT_EQ(String().format(u"{1} {0}", -1, u"{0}{1}", u"{0}"), u"{0} {0}{1}");
}

TEST(StringFormatTest, PlaceholdersMayTouchAndNest) {
    EXPECT_EQ(String().format(u"{{0}}", -1, u"x"), u"{x}");
    EXPECT_EQ(String().format(u"{0}{1}{0}", -1, u"", u"long argument text"), u"long argument text");
}

TEST(StringFormatTest, ManyIndices) {
    EXPECT_EQ(String().format(u"{10}{9}{8}{7}{6}{5}{4}{3}{2}{1}{0}", -1, u"a", u"b", u"c", u"d",
                              u"e", u"f", u"g", u"h", u"i", u"j", u"k"),
              u"kjihgfedcba");
}

/// A pattern of the placeholders "{0}" to "{count - 1}", and `behind` at its end.
String patternOf(int count, const char16_t* behind) {
    String pattern;
    for (int i = 0; i < count; ++i) {
        pattern += u"{";
        pattern += String::valueOf(i);
        pattern += u"}";
    }
    return pattern += behind;
}

/// The texts "<0>", "<1>" and so on, all given as arguments at once.
template <std::size_t... indices>
String filledByNumbers(const String& pattern, std::index_sequence<indices...>) {
    const String texts[] = {String(u"<").append(String::valueOf(static_cast<int>(indices)))...};
    String result;
    result.format(pattern, texts[indices].getData()...);
    return result;
}

TEST(StringFormatTest, IndicesBeyondAllWordsAreCounted) {
    using Numbers = std::make_index_sequence<140>;
    for (const int count : {63, 64, 65, 128, 130}) {
        String expected;
        for (int i = 0; i < count; ++i) {
            expected += u"<";
            expected += String::valueOf(i);
        }
        EXPECT_EQ(filledByNumbers(patternOf(count, u""), Numbers()), expected) << count;
        // The index behind a gap stays as it stands.
        const String gap = String(u"{").append(String::valueOf(count + 1)).append(u"}");
        EXPECT_EQ(filledByNumbers(patternOf(count, gap.getData()), Numbers()), expected + gap)
            << count;
    }
}

/// A buffer of no class that a string knows, which may refuse to be written.
class ForeignBuffer : public util::RWCharBuffer {
public:
    using RWBuffer::RWBuffer;
    char16_t* getWriteLock(int capacity) override {
        if (refuse) {
            throw ResultException(QV_E_BUSY);
        }
        ++locks;
        return RWBuffer::getWriteLock(capacity);
    }
    void releaseWriteLock(int length) override {
        --locks;
        RWBuffer::releaseWriteLock(length);
    }
    int locks = 0;
    bool refuse = false;
};

TEST(StringFormatTest, TextGoesThroughAForeignBufferThatTheStringAloneHolds) {
    auto* const buffer = new ForeignBuffer(u"own", 4);
    String text(String::ACQUIRE_SHARE, buffer);
    text.format(u"<{0}> and {1}", -1, text.getData(), u"more");
    EXPECT_EQ(text, u"<own> and more");
    EXPECT_EQ(text.getData(), buffer->getData());
    EXPECT_EQ(buffer->getLength(), 15);
    EXPECT_EQ(buffer->locks, 0);
    EXPECT_EQ(text.format(u"", -1), u"");
    EXPECT_EQ(buffer->getLength(), 1);
}

TEST(StringFormatTest, ForeignBufferThatIsSharedIsLeftToTheOthers) {
    const Reference<ForeignBuffer> buffer(new ForeignBuffer(u"own", 4));
    String text(String::ACQUIRE_SHARE, buffer.get());
    text.format(u"<{0}>", -1, u"x");
    EXPECT_EQ(text, u"<x>");
    EXPECT_EQ(String(buffer.get()).getLength(), 4);
    EXPECT_EQ(buffer->GetRefCount(), 1u);
}

TEST(StringFormatTest, RefusedWriteThrowsItsResultAndKeepsTheText) {
    auto* const buffer = new ForeignBuffer(u"own", 4);
    String text(String::ACQUIRE_SHARE, buffer);
    buffer->refuse = true;
    EXPECT_EQ(support::thrownResult([&] { text.format(u"<{0}>", -1, u"x"); }), QV_E_BUSY);
    EXPECT_EQ(text, u"own");
}

TEST(StringFormatTest, RoomThatWasReservedStays) {
    String text(200);
    const char16_t* const data = text.getData();
    text.format(u"<{0}>", -1, u"x");
    EXPECT_EQ(text, u"<x>");
    text.append(u'y', 190);
    EXPECT_EQ(text.getData(), data);
    EXPECT_EQ(text.getLength(), 193);
    text.format(u"{0}{0}", -1, text.getData());
    EXPECT_EQ(text.getLength(), 386);
    EXPECT_TRUE(text.startsWith(u"<x>y")) << "its own text may be the argument";
}

TEST(StringFormatTest, OwnTextMayBeAnArgument) {
    String text(u"own");
    text.format(u"<{0}>", -1, text.getData());
    EXPECT_EQ(text, u"<own>");
}

TEST(StringFormatTest, FormattingDropsTheNarrowForm) {
    String text(u"old");
    static_cast<void>(text.getBytes(u"UTF-8"));
    text.format(u"new", -1);
    EXPECT_STREQ(text.getBytes(u"UTF-8"), "new");
}

const String& throughList(String& text, const char16_t* pattern, int length, ...) {
    va_list arguments;
    va_start(arguments, length);
    const String& result = text.formatv(pattern, length, arguments);
    va_end(arguments);
    return result;
}

const String& throughStringList(String& text, const String* pattern, ...) {
    va_list arguments;
    va_start(arguments, pattern);
    const String& result = text.formatv(*pattern, arguments);
    va_end(arguments);
    return result;
}

TEST(StringFormatTest, VariableListGivesAsManyAsTheIndices) {
    String text;
    EXPECT_EQ(throughList(text, u"{1}-{0}", -1, u"a", u"b"), u"b-a");
    EXPECT_EQ(throughList(text, u"none", -1), u"none");
    EXPECT_EQ(throughList(text, u"{0}{1}", 3, u"a"), u"a") << "only so much is the pattern";
    EXPECT_EQ(throughList(text, u"{0}", -2), u"");
    const String pattern(u"[{0}]");
    EXPECT_EQ(throughStringList(text, &pattern, u"x"), u"[x]");
    EXPECT_EQ(throughList(text, u"{0}{2}{3}", -1, u"a", u"b", u"c", u"d"), u"a{2}{3}");
    EXPECT_EQ(throughList(text, u"{0}{0}{2}", -1, u"a", u"b", u"c"), u"aa{2}");
}

// --- Values ---

TEST(StringValueTest, IntegersAreWrittenInDecimal) {
    EXPECT_EQ(String::valueOf(0), u"0");
    EXPECT_EQ(String::valueOf(std::numeric_limits<int>::min()), u"-2147483648");
    EXPECT_EQ(String::valueOf(4294967295u), u"4294967295");
    EXPECT_EQ(String::valueOf(-5L), u"-5");
    EXPECT_EQ(String::valueOf(5UL), u"5");
    EXPECT_EQ(String::valueOf(std::int64_t{-9223372036854775807} - 1), u"-9223372036854775808");
    EXPECT_EQ(String::valueOf(std::numeric_limits<std::uint64_t>::max()), u"18446744073709551615");
}

TEST(StringValueTest, LongsAreWrittenWholeWhateverTheirSize) {
    constexpr auto greatest = std::numeric_limits<unsigned long>::max();
    EXPECT_EQ(String::valueOf(greatest).getBytes(u"UTF-8"), std::to_string(greatest));
    constexpr auto least = std::numeric_limits<long>::min();
    EXPECT_EQ(String::valueOf(least).getBytes(u"UTF-8"), std::to_string(least));
}

TEST(StringValueTest, FloatingNumbersHaveSixDigits) {
    const support::LocaleScope locale(LC_NUMERIC, "C");
    EXPECT_EQ(String::valueOf(0.5), u"0.5");
    EXPECT_EQ(String::valueOf(1.0f), u"1");
    EXPECT_EQ(String::valueOf(1234567.0), u"1.23457e+06");
    EXPECT_EQ(String::valueOf(-1e-10), u"-1e-10");
    EXPECT_EQ(String::valueOf(std::numeric_limits<double>::infinity()), u"inf");
}

TEST(StringValueTest, TruthAndUnits) {
    EXPECT_EQ(String::valueOf(true), u"true");
    EXPECT_EQ(String::valueOf(false), u"false");
    EXPECT_EQ(String::valueOf(u'中'), u"中");
}

} // namespace
