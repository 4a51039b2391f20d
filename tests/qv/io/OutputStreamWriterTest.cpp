#include "qv/io/OutputStreamWriter.h"

#include "qv/ClassManager.h"
#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/text/charset/CTBMultiByte.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/text/charset/CodecManager.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Streams.h"
#include "tests/support/Throws.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace qv;
using text::charset::InvalidCharacterException;

constexpr auto toBytes = support::unitsOf<signed char>;

/// An encoder that is not the library's own: four bytes for a pair, one for ASCII.
class OutsideEncoder : public text::charset::CTBMultiByte {
public:
    OutsideEncoder() {
        encodingName_ = u"x-outside";
        maxBytesPerChar_ = 4;
        maxCharsPerByte_ = 1;
    }

    static const char16_t* registered() {
        constexpr const char16_t* className = u"test::OutsideEncoder";
        ClassManager::getInstance()->registerClass(className, &typeid(OutsideEncoder),
                                                   []() -> Object* { return new OutsideEncoder; });
        text::charset::CodecManager::getInstance()->registerCodec(u"x-outside", className,
                                                                  u"qv::text::charset::BTCASCII");
        return u"x-outside";
    }

protected:
    int convertChar(unsigned int codePoint, signed char* out, int) override {
        if (codePoint < 0x80) {
            *out = static_cast<signed char>(codePoint);
            return 1;
        }
        if (codePoint < 0x10000) {
            return 0;
        }
        for (int i = 0; i < 4; ++i) {
            out[i] = static_cast<signed char>('0' + (codePoint >> (4 * (3 - i)) & 0xF));
        }
        return 4;
    }
};

/// What is written of a text that begins with `plain` letters and goes on with pairs and letters,
/// through a buffer of `size` bytes.
std::string encodedPairs(const char16_t* encoding, int plain, std::int32_t size) {
    String text;
    for (int i = 0; i < plain; ++i) {
        text.append(u"a");
    }
    text.append(u"\U0001F600b\U0001F601\U0001F602c");
    const auto sink = make<support::BlockOutputStream>();
    io::OutputStreamWriter out(sink, encoding, size);
    out.write(text);
    out.flush();
    const std::vector<signed char> bytes = sink->all();
    return {bytes.begin(), bytes.end()};
}

class OutputStreamWriterTest : public testing::Test {
public:
    ~OutputStreamWriterTest() noexcept override = default;

protected:
    Reference<support::BlockOutputStream> sink_ = make<support::BlockOutputStream>();
};

TEST_F(OutputStreamWriterTest, EncodesItsText) {
    io::OutputStreamWriter out(sink_, u"UTF-8");
    out.write(u"a\u00E9\u20AC\U0001F600");
    out.write(String(u"b"));
    out.write(u'c');
    EXPECT_TRUE(sink_->blocks.empty());
    out.flush();
    EXPECT_EQ(sink_->all(), toBytes("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"
                                    "bc"));
    EXPECT_EQ(sink_->flushes, 1);
}

TEST_F(OutputStreamWriterTest, WritesFullBuffersAndKeepsTheRest) {
    io::OutputStreamWriter out(sink_, u"UTF-8", 1);
    out.write(u"abcdefghijklmn");
    EXPECT_EQ(sink_->blocks,
              (std::vector<std::vector<signed char>>{toBytes("abcdef"), toBytes("ghijkl")}));
    out.flush();
    EXPECT_EQ(sink_->all(), toBytes("abcdefghijklmn"));
}

TEST_F(OutputStreamWriterTest, HasABufferOfAtLeastSixBytes) {
    for (const auto& [size, expected] : {std::pair(-1, 6), std::pair(6, 6), std::pair(7, 7)}) {
        const auto sink = make<support::BlockOutputStream>();
        io::OutputStreamWriter out(sink, u"UTF-8", size);
        out.write(u"abcdefghi");
        ASSERT_EQ(sink->blocks.size(), 1U);
        EXPECT_EQ(sink->blocks[0].size(), static_cast<std::size_t>(expected));
    }
}

TEST_F(OutputStreamWriterTest, WritesNothingForLengthsBelowOne) {
    io::OutputStreamWriter out(sink_, u"UTF-8");
    out.write(u"abc", 0);
    out.write(u"abc", -1);
    out.write(u"");
    out.flush();
    EXPECT_TRUE(sink_->blocks.empty());
}

/// Characters of one to four bytes in every position with respect to the buffer's end, also pairs.
TEST_F(OutputStreamWriterTest, KeepsEveryCharacterWholeAtTheEndOfTheBuffer) {
    const std::u16string characters[] = {u"a", u"\u00E9", u"\u20AC", u"\U0001F600"};
    String text;
    for (int i = 0; i < 500; ++i) {
        text.append(characters[(i * i + i / 7) % 4].c_str());
    }
    for (const char16_t* const encoding :
         {u"UTF-8", u"UTF-16LE", u"UTF-16BE", u"UTF-32LE", u"UTF-32BE", u"AMP-7"}) {
        for (const std::int32_t size : {6, 7, 8, 9, 10, 11, 100, 8192}) {
            const auto bytes = make<io::ByteArrayOutputStream>();
            io::OutputStreamWriter out(bytes, encoding, size);
            out.write(text);
            out.flush();
            ASSERT_EQ(bytes->toString(encoding), text) << String(encoding).getBytes() << size;
        }
    }
}

TEST_F(OutputStreamWriterTest, KeepsManyPairsWhole) {
    String text;
    for (int i = 0; i < 5000; ++i) {
        text.append(u"\U0001F600");
    }
    const auto bytes = make<io::ByteArrayOutputStream>();
    io::OutputStreamWriter out(bytes, u"UTF-8");
    out.write(text);
    out.flush();
    EXPECT_EQ(bytes->toString(u"UTF-8"), text);
}

/// Where the buffer ends within a pair, an encoder may forget the pair's first half.
TEST_F(OutputStreamWriterTest, KeepsPairsWholeForEveryEncoder) {
    const char16_t* const outside = OutsideEncoder::registered();
    for (const std::int32_t size : {6, 7, 8, 9, 10, 11, 100}) {
        for (int plain = 0; plain < 30; ++plain) {
            const std::string letters(static_cast<std::size_t>(plain), 'a');
            for (const char16_t* const encoding : {u"ASCII", u"ISO8859_1", u"CP437", u"CP1252"}) {
                ASSERT_EQ(encodedPairs(encoding, plain, size), letters + "?b??c")
                    << String(encoding).getBytes() << " " << plain << " in " << size;
            }
            ASSERT_EQ(encodedPairs(outside, plain, size), letters + "?600b?601?602c")
                << plain << " in " << size;
        }
    }
}

using Blocks = std::vector<std::vector<signed char>>;

TEST_F(OutputStreamWriterTest, APairThatFitsFillsTheBlock) {
    io::OutputStreamWriter out(sink_, u"UTF-8", 6);
    out.write(u"ab\U0001F600");
    EXPECT_EQ(sink_->blocks, Blocks{toBytes("ab\xF0\x9F\x98\x80")});
}

TEST_F(OutputStreamWriterTest, APairThatDoesNotFitBeginsTheNextBlock) {
    io::OutputStreamWriter out(sink_, u"UTF-8", 6);
    out.write(u"abc\U0001F600de");
    EXPECT_EQ(sink_->blocks, (Blocks{toBytes("abc"), toBytes("\xF0\x9F\x98\x80"
                                                             "de")}));
}

TEST_F(OutputStreamWriterTest, PairsFillTheirBlocks) {
    io::OutputStreamWriter out(sink_, u"UTF-8", 10);
    out.write(u"ab\U0001F600\U0001F601\U0001F602\U0001F603x");
    out.flush();
    EXPECT_EQ(sink_->blocks, (Blocks{toBytes("ab\xF0\x9F\x98\x80\xF0\x9F\x98\x81"),
                                     toBytes("\xF0\x9F\x98\x82\xF0\x9F\x98\x83x")}));
}

TEST_F(OutputStreamWriterTest, ALeadingSurrogateThatWaitsSendsNothingOut) {
    io::OutputStreamWriter out(sink_, u"UTF-8", 6);
    out.write(u"abcd\xD83D");
    EXPECT_TRUE(sink_->blocks.empty());
    out.write(u'\xDE00');
    EXPECT_EQ(sink_->blocks, Blocks{toBytes("abcd")});
}

TEST_F(OutputStreamWriterTest, TheWordsOfAPairFillTheBlockOneByOne) {
    io::OutputStreamWriter out(sink_, u"UTF-16LE", 6);
    out.write(u"ab\U0001F600");
    const signed char first[] = {'a', 0, 'b', 0, 0x3D, '\xD8'};
    EXPECT_EQ(sink_->blocks, Blocks{std::vector<signed char>(first, first + 6)});
}

TEST_F(OutputStreamWriterTest, AnEscapedPairThatFitsFillsTheBlock) {
    io::OutputStreamWriter out(sink_, u"AMP-7", 10);
    out.write(u"ab\U0001F600cde\U0001F600");
    EXPECT_EQ(sink_->blocks, (Blocks{toBytes("ab&_1F600;"), toBytes("cde")}));
}

TEST_F(OutputStreamWriterTest, APairInFrontOfWhichTheSinkFailedIsWrittenOnce) {
    for (const bool writesOn : {false, true}) {
        const auto sink = make<support::BlockOutputStream>();
        io::OutputStreamWriter out(sink, u"UTF-8", 6);
        out.write(u"abc\xD83D");
        sink->failures = 1;
        EXPECT_EQ(support::thrownText<io::IoException>([&] { out.write(u'\xDE00'); }),
                  "the sink failed");
        if (writesOn) {
            out.write(u"de");
        }
        out.flush();
        EXPECT_EQ(sink->all(), toBytes(writesOn ? "abc\xF0\x9F\x98\x80"
                                                  "de"
                                                : "abc\xF0\x9F\x98\x80"));
    }
}

TEST_F(OutputStreamWriterTest, APairMayBeSplitOverTwoWrites) {
    for (const char16_t* const encoding : {u"UTF-8", u"UTF-16LE", u"UTF-32BE", u"AMP-7"}) {
        for (const std::int32_t size : {6, 7, 8, 9, 10, 8192}) {
            const auto bytes = make<io::ByteArrayOutputStream>();
            io::OutputStreamWriter out(bytes, encoding, size);
            String expected;
            for (int i = 0; i < 20; ++i) {
                out.write(u'x');
                out.write(u'\xD83D');
                out.write(u"\xDE00z");
                expected.append(u"x\U0001F600z");
            }
            out.flush();
            EXPECT_EQ(bytes->toString(encoding), expected) << String(encoding).getBytes() << size;
        }
    }
}

TEST_F(OutputStreamWriterTest, ALeadingSurrogateAloneIsRefusedByFlush) {
    for (const char16_t* const encoding : {u"UTF-8", u"UTF-32LE", u"AMP-7"}) {
        io::OutputStreamWriter out(sink_, encoding);
        out.write(u'\xD83D');
        EXPECT_EQ(support::thrownText<InvalidCharacterException>([&] { out.flush(); }),
                  "leading surrogate without trailing");
    }
    EXPECT_EQ(sink_->flushes, 0);
}

TEST_F(OutputStreamWriterTest, ALeadingSurrogateWithoutATrailingOneIsRefused) {
    for (const char16_t* const encoding : {u"UTF-8", u"UTF-32LE", u"AMP-7"}) {
        io::OutputStreamWriter out(sink_, encoding);
        EXPECT_EQ(support::thrownText<InvalidCharacterException>([&] { out.write(u"\xD83Dx"); }),
                  "leading surrogate without trailing");
        io::OutputStreamWriter split(sink_, encoding);
        split.write(u'\xD83D');
        EXPECT_THROW(split.write(u'x'), InvalidCharacterException);
    }
}

TEST_F(OutputStreamWriterTest, WritesTheSubstitutionForWhatHasNoForm) {
    io::OutputStreamWriter out(sink_, u"ASCII");
    out.write(u"a\u20ACb");
    out.flush();
    EXPECT_EQ(sink_->all(), toBytes("a?b"));
}

TEST_F(OutputStreamWriterTest, FlushesWhatTheBufferHoldsAndThenTheSink) {
    io::OutputStreamWriter out(sink_, u"UTF-8");
    out.flush();
    EXPECT_TRUE(sink_->blocks.empty());
    EXPECT_EQ(sink_->flushes, 1);
    out.write(u"ab");
    out.flush();
    EXPECT_EQ(sink_->blocks.size(), 1U);
    EXPECT_EQ(sink_->flushes, 2);
}

TEST_F(OutputStreamWriterTest, LosesWhatTheBufferHoldsAtClose) {
    io::OutputStreamWriter out(sink_, u"UTF-8");
    out.write(u"text");
    out.close();
    EXPECT_TRUE(sink_->blocks.empty());
    EXPECT_EQ(sink_->closes, 1);
}

TEST_F(OutputStreamWriterTest, LosesWhatTheBufferHoldsWhenItIsDropped) {
    {
        io::OutputStreamWriter out(sink_, u"UTF-8");
        out.write(u"text");
        EXPECT_EQ(sink_->GetRefCount(), 2U);
    }
    EXPECT_TRUE(sink_->blocks.empty());
    EXPECT_EQ(sink_->closes, 0);
    EXPECT_EQ(sink_->GetRefCount(), 1U);
}

TEST_F(OutputStreamWriterTest, RefusesEverythingBehindACloseButAnother) {
    io::OutputStreamWriter out(sink_, u"UTF-8");
    out.close();
    const std::function<void()> operations[] = {
        [&] { out.write(u"a"); }, [&] { out.write(u"a", 0); },
        [&] { out.write(u'a'); }, [&] { out.write(String(u"a")); },
        [&] { out.flush(); },     [&] { out.getEncodingName(); },
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(support::thrownText<io::IoException>(operation), "stream closed");
    }
    EXPECT_NO_THROW(out.close());
    EXPECT_EQ(sink_->closes, 2);
}

TEST_F(OutputStreamWriterTest, IsClosedBeforeItsSinkAndAlsoWhereThatFails) {
    const auto sink = make<support::Unclosable<support::BlockOutputStream>>();
    io::OutputStreamWriter out(sink, u"UTF-8");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { out.close(); }), "not closed");
    EXPECT_EQ(support::thrownText<io::IoException>([&] { out.write(u"a"); }), "stream closed");
    EXPECT_EQ(sink->closes, 1);
}

TEST_F(OutputStreamWriterTest, AFailureOfTheSinkLeavesWhatTheBufferHolds) {
    io::OutputStreamWriter out(sink_, u"UTF-8");
    out.write(u"text");
    sink_->failures = 1;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { out.flush(); }), "the sink failed");
    out.flush();
    EXPECT_EQ(sink_->all(), toBytes("text"));
}

TEST_F(OutputStreamWriterTest, ASplitPairThatTheSinkDidNotTakeIsWrittenOnce) {
    io::OutputStreamWriter out(sink_, u"AMP-7", 8);
    out.write(u'\xD83D');
    sink_->failures = 1;
    EXPECT_EQ(support::thrownText<io::IoException>([&] { out.write(u'\xDE00'); }),
              "the sink failed"); // the pair fills the buffer
    out.write(u"z");
    out.flush();
    EXPECT_EQ(sink_->all(), toBytes("&_1F600;z"));
}

TEST_F(OutputStreamWriterTest, TellsItsEncoding) {
    io::OutputStreamWriter out(sink_, u"utf8");
    EXPECT_EQ(String(out.getEncodingName()), u"UTF-8");
}

TEST_F(OutputStreamWriterTest, HasTheDefaultEncoderWithoutAName) {
    io::OutputStreamWriter out(sink_);
    const Reference<text::charset::CharToByteConverter> encoder =
        text::charset::CharToByteConverter::getDefaultConverter();
    EXPECT_EQ(String(out.getEncodingName()), String(encoder->getEncodingName()));
}

TEST_F(OutputStreamWriterTest, RefusesAnUnknownEncoding) {
    EXPECT_EQ(support::thrownText<text::charset::UnknownEncodingException>(
                  [&] { io::OutputStreamWriter out(sink_, u"no such encoding"); }),
              "no such encoding");
    EXPECT_EQ(sink_->GetRefCount(), 1U);
}

TEST_F(OutputStreamWriterTest, FailsOnFirstUseWithNothingToWrap) {
    io::OutputStreamWriter out(nullptr, u"UTF-8");
    EXPECT_NO_THROW(out.write(u"collected, not used yet"));
    EXPECT_THROW(out.flush(), IllegalStateException);
    EXPECT_THROW(out.close(), IllegalStateException);
}

TEST_F(OutputStreamWriterTest, HasItsNameBehindTheWritersOwnSlots) {
    EXPECT_EQ(support::slotOf(&io::OutputStreamWriter::getEncodingName),
              support::slotOf(&io::Writer::close) + 1);
}

} // namespace
