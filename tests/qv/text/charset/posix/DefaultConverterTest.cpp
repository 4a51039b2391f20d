#include "qv/Class.h"
#include "qv/Exceptions.h"
#include "qv/Reference.h"
#include "qv/Str1.h"
#include "qv/String.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "qv/util/CommandLineParser.h"
#include "qv/util/RWBuffer.h"
#include "tests/support/Printing.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Throws.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;

namespace {

const signed char* bytesOf(const char* text) { return reinterpret_cast<const signed char*>(text); }

/// Runs each test in a locale of its own making, whose code set has a name that the test chooses.
class DefaultConverterTest : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists("/usr/share/i18n/locales/POSIX")) {
            GTEST_SKIP() << "the system has no sources to make a locale from";
        }
    }
    ~DefaultConverterTest() override {
        // The previous locale is found where it was found before.
        if (previousPath_.empty()) {
            unsetenv("LOCPATH");
        } else {
            setenv("LOCPATH", previousPath_.c_str(), 1);
        }
        std::setlocale(LC_ALL, previous_.c_str());
    }

    void enterLocale(const std::string& codeSet) {
        std::ofstream map(folder_.path() / "map");
        map << "<code_set_name> " << codeSet << "\n<mb_cur_min> 1\n<mb_cur_max> 1\n"
            << "<comment_char> %\n<escape_char> /\nCHARMAP\n<U0000>..<U007F> /x00 x\nEND CHARMAP\n";
        map.close();
        const std::string folder = folder_.path().string();
        const std::string command =
            "localedef -i POSIX -f '" + folder + "/map' '" + folder + "/test' >/dev/null 2>&1";
        // Its exit status is not 0 for mere warnings: what counts is whether the locale is there.
        static_cast<void>(std::system(command.c_str()) == 0);
        setenv("LOCPATH", folder.c_str(), 1);
        ASSERT_NE(std::setlocale(LC_ALL, "test"), nullptr);
    }

private:
    static std::string localePath() {
        const char* const path = std::getenv("LOCPATH");
        return path == nullptr ? "" : path;
    }

    const std::string previousPath_ = localePath();
    const std::string previous_ = std::setlocale(LC_ALL, nullptr);
    support::TestFolder folder_;
};

TEST_F(DefaultConverterTest, NameOfTheLocaleIsLookedUp) {
    ASSERT_NO_FATAL_FAILURE(enterLocale("cp437"));
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(nullptr));
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getDefaultConverter());
    EXPECT_EQ(String(decoder->getEncodingName()), u"CP437");
    EXPECT_EQ(String(encoder->getEncodingName()), u"CP437");
}

TEST_F(DefaultConverterTest, StringsEncodeByIt) {
    ASSERT_NO_FATAL_FAILURE(enterLocale("cp437"));
    const String text(u"\u00E9");
    EXPECT_STREQ(text.getBytes(), "\x82");
    EXPECT_STREQ(text.getDataT(true), "\x82");
    EXPECT_STREQ(text.getBytesReadLock(), "\x82");
    text.releaseReadLock();
    char out[4];
    EXPECT_EQ(text.getBytes(out, 4), 2);
    EXPECT_STREQ(out, "\x82");
    util::RWByteBuffer buffer;
    text.getBytes(&buffer);
    EXPECT_EQ(buffer.getLength(), 2);
    EXPECT_EQ(buffer.getData()[0], '\x82');
}

TEST_F(DefaultConverterTest, StringsDecodeByIt) {
    ASSERT_NO_FATAL_FAILURE(enterLocale("cp437"));
    String text;
    text = "\x82";
    EXPECT_EQ(text, u"\u00E9");
    EXPECT_EQ(text.setTo("\xA0"), u"\u00E1");
    EXPECT_EQ(String(bytesOf("\x82"), -1, nullptr), u"\u00E9");
    EXPECT_EQ(CQVString::create(bytesOf("\x82"), -1, nullptr, 0), u"\u00E9");
}

TEST_F(DefaultConverterTest, LightStringsConvertByIt) {
    ASSERT_NO_FATAL_FAILURE(enterLocale("cp437"));
    Str1 text;
    EXPECT_EQ(text.copyA(bytesOf("\x82"), -1), 0);
    EXPECT_EQ(text.appendA(bytesOf("\xA0"), -1), 0);
    EXPECT_EQ(text, u"\u00E9\u00E1");
    EXPECT_EQ(Str1(bytesOf("\x82"), -1, nullptr), u"\u00E9");
    int length = 0;
    EXPECT_EQ(text.getLengthA(&length), 0);
    EXPECT_EQ(length, 2);
    char out[4];
    EXPECT_EQ(text.convertToAZ(out, 4), 0);
    EXPECT_STREQ(out, "\x82\xA0");
    EXPECT_STREQ(text.getBytesAZ(), "\x82\xA0");
}

TEST_F(DefaultConverterTest, NameThatNothingServesThrows) {
    ASSERT_NO_FATAL_FAILURE(enterLocale("X-UNSERVED"));
    EXPECT_THROW(ByteToCharConverter::getConverter(nullptr), UnknownEncodingException);
    EXPECT_THROW(CharToByteConverter::getDefaultConverter(), UnknownEncodingException);
}

TEST_F(DefaultConverterTest, NamesOfClassesAndArgumentsNeedNone) {
    ASSERT_NO_FATAL_FAILURE(enterLocale("X-UNSERVED"));
    EXPECT_EQ(support::thrownText<ClassNotFoundException>(
                  [] { Class::forType(&typeid(ResultException)); }),
              "qv::ResultException");
    char option[] = "-a=1";
    char beyondAscii[] = "x\xE4y";
    char* arguments[] = {option, beyondAscii, nullptr};
    util::CommandLineParser parser;
    parser.parse(2, arguments);
    EXPECT_EQ(parser.getValueString(u"a"), u"1");
    EXPECT_EQ(parser.getParameter(0)->getValueString(0), u"x\uFFFDy");
}

TEST_F(DefaultConverterTest, EmptyNameGivesAscii) {
    // A name that does not fit into forty units counts as none.
    ASSERT_NO_FATAL_FAILURE(enterLocale("X-" + std::string(60, 'N')));
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(nullptr));
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(nullptr));
    EXPECT_EQ(String(decoder->getEncodingName()), u"ASCII");
    EXPECT_EQ(String(encoder->getEncodingName()), u"ASCII");
}

} // namespace
