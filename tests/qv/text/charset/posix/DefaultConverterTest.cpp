#include "qv/Exceptions.h"
#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "tests/support/TestFolder.h"
#include "tests/support/Throws.h"

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;

namespace {

/// Runs each test in a locale of its own making, whose code set has a name that the test chooses.
class DefaultConverterTest : public testing::Test {
protected:
    ~DefaultConverterTest() override {
        std::setlocale(LC_ALL, previous_.c_str());
        unsetenv("LOCPATH");
    }

    /// @return false where the system cannot make locales.
    [[nodiscard]] bool enterLocale(const std::string& codeSet) {
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
        return std::setlocale(LC_ALL, "test") != nullptr;
    }

private:
    std::string previous_ = std::setlocale(LC_ALL, nullptr);
    support::TestFolder folder_;
};

constexpr const char* noLocales = "the system has no sources to make a locale from";

TEST_F(DefaultConverterTest, NameOfTheLocaleIsLookedUp) {
    if (!enterLocale("cp437")) {
        GTEST_SKIP() << noLocales;
    }
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(nullptr));
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getDefaultConverter());
    EXPECT_EQ(String(decoder->getEncodingName()), u"CP437");
    EXPECT_EQ(String(encoder->getEncodingName()), u"CP437");
}

TEST_F(DefaultConverterTest, NameThatNothingServesThrows) {
    if (!enterLocale("X-UNSERVED")) {
        GTEST_SKIP() << noLocales;
    }
    EXPECT_THROW(ByteToCharConverter::getConverter(nullptr), UnknownEncodingException);
    EXPECT_THROW(CharToByteConverter::getDefaultConverter(), UnknownEncodingException);
}

TEST_F(DefaultConverterTest, EmptyNameGivesAscii) {
    // A name that does not fit into forty units counts as none.
    if (!enterLocale("X-" + std::string(60, 'N'))) {
        GTEST_SKIP() << noLocales;
    }
    const Reference<ByteToCharConverter> decoder(ByteToCharConverter::getConverter(nullptr));
    const Reference<CharToByteConverter> encoder(CharToByteConverter::getConverter(nullptr));
    EXPECT_EQ(String(decoder->getEncodingName()), u"ASCII");
    EXPECT_EQ(String(encoder->getEncodingName()), u"ASCII");
}

} // namespace
