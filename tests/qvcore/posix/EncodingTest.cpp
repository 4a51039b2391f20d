#include "qvcore/Encoding.h"
#include "qvcore/NumberText.h"

#include "tests/support/ChildRole.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestProcess.h"

#include <array>
#include <clocale>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

using namespace support;

namespace {

std::string narrow(const char16_t* text, std::int32_t size = 100) {
    std::array<char, 100> area;
    area.fill('#');
    EXPECT_GT(QVUnicodeToAnsi(area.data(), text, size), 0);
    return area.data();
}

std::u16string widen(const std::string& text, std::int32_t size = 100) {
    std::u16string area(100, u'#');
    const std::int32_t units =
        QVAnsiToUnicode(area.data(), text.data(), static_cast<std::int32_t>(text.size()), size);
    EXPECT_GE(units, 0);
    area.resize(static_cast<std::size_t>(std::min(units, size)));
    return area;
}

std::u16string encodingName() {
    std::array<char16_t, 40> name = {};
    QVGetDefaultCharEncoding(name.data(), static_cast<std::int32_t>(name.size()));
    return name.data();
}

/// Runs in a process of its own, whose locale it changes. @return the number of what went wrong.
int checkLatinLocale(const std::vector<std::string>& arguments) {
    setenv("LOCPATH", arguments.at(0).c_str(), 1);
    if (std::setlocale(LC_CTYPE, "latin") == nullptr ||
        std::setlocale(LC_NUMERIC, "latin") == nullptr) {
        return 1;
    }
    if (encodingName() != u"ISO-8859-1") {
        return 2;
    }
    if (narrow(u"aäÿ\u20AC\xD83D\xDE00\xD800z") != "a\xE4\xFF???z" || narrow(u"ää", 2) != "\xE4") {
        return 3;
    }
    if (widen("a\xE4\xFF\x80") != u"aäÿ\u0080") {
        return 4;
    }
    const char16_t* text = u"1,5.0";
    const char16_t* end = nullptr;
    if (QVStrToDW(text, &end) != 1.5 || end != text + 3) {
        return 5;
    }
    if (QVStrToDW(u",5e1", nullptr) != 5.0 || QVStrToDW(u"1.5", nullptr) != 1.0) {
        return 6;
    }
    return 0;
}

int checkUtf8Locale(const std::vector<std::string>&) {
    if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr) {
        return 1;
    }
    return encodingName() == u"UTF-8" && narrow(u"ä") == "\xC3\xA4" ? 0 : 2;
}

const support::ChildRole latinRole("latin-locale", checkLatinLocale);
const support::ChildRole utf8Role("utf8-locale", checkUtf8Locale);

constexpr const char* charmap = "<code_set_name> ISO-8859-1\n"
                                "<comment_char> %\n<escape_char> /\n<mb_cur_min> 1\n"
                                "<mb_cur_max> 1\nCHARMAP\n";

/// Makes a locale "latin" with one byte a character and a decimal comma in the folder.
bool makeLatinLocale(const std::filesystem::path& folder) {
    std::ofstream map(folder / "map");
    map << charmap;
    for (int unit = 0; unit < 256; ++unit) {
        char line[64];
        std::snprintf(line, sizeof line, "<U%04X> /x%02x U%04X\n", unit, unit, unit);
        map << line;
    }
    map << "END CHARMAP\n";
    map.close();
    std::ofstream source(folder / "source");
    source
        << "comment_char %\nescape_char /\n"
           "LC_CTYPE\n"
           "upper <U0041>;<U0042>;<U0043>;<U0044>;<U0045>;<U0046>\n"
           "lower <U0061>;<U0062>;<U0063>;<U0064>;<U0065>;<U0066>\n"
           "digit <U0030>;<U0031>;<U0032>;<U0033>;<U0034>;<U0035>;<U0036>;<U0037>;<U0038>;<U0039>\n"
           "space <U0020>\n"
           "END LC_CTYPE\n"
           "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"\"\ngrouping -1\n"
           "END LC_NUMERIC\n";
    source.close();
    const std::string path = folder.string();
    const std::string command = "localedef -c --no-archive -f " + path + "/map -i " + path +
                                "/source " + path + "/latin > " + path + "/log 2>&1";
    // Warnings about what the small locale leaves out give a code above 0.
    [[maybe_unused]] const int code = std::system(command.c_str());
    return std::filesystem::exists(folder / "latin" / "LC_CTYPE") &&
           std::filesystem::exists(folder / "latin" / "LC_NUMERIC");
}

} // namespace

TEST(PosixEncodingTest, IsUtf8InTheCLocale) {
    // The test program never sets a locale.
    EXPECT_EQ(encodingName(), u"UTF-8");
}

TEST(PosixEncodingTest, IsTheCodeSetOfTheLocale) {
    EXPECT_EQ(TestProcess("utf8-locale", {}).wait(), 0);
}

TEST(PosixEncodingTest, ServesOtherCodeSetsAndDecimalSeparators) {
    const TestFolder folder;
    if (!makeLatinLocale(folder.path())) {
        GTEST_SKIP() << "the system has no localedef to make a locale of another code set with";
    }
    EXPECT_EQ(TestProcess("latin-locale", {folder.path().string()}).wait(), 0);
}

TEST(PosixEncodingTest, NarrowsToUtf8) {
    EXPECT_EQ(narrow(u"aä€\xD83D\xDE00"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(narrow(u"\u007F\u0080\u07FF\u0800\uFFFF"),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(narrow(u"\xDBFF\xDFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(PosixEncodingTest, NeverCutsInsideACharacter) {
    const char16_t* text = u"ä€\xD83D\xDE00";
    const std::string forms[] = {"",         "",         "\xC3\xA4",
                                 "\xC3\xA4", "\xC3\xA4", "\xC3\xA4\xE2\x82\xAC"};
    for (std::int32_t size = 1; size <= 6; ++size) {
        EXPECT_EQ(narrow(text, size), forms[size - 1]) << size;
    }
    EXPECT_EQ(narrow(text, 9), "\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(narrow(text, 10), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(PosixEncodingTest, WidensUtf8) {
    EXPECT_EQ(widen("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"), u"aä€\xD83D\xDE00");
    EXPECT_EQ(widen("\xF4\x8F\xBF\xBF"), u"\xDBFF\xDFFF");
}

TEST(PosixEncodingTest, NeverWritesHalfAPair) {
    std::u16string area(3, u'#');
    EXPECT_EQ(QVAnsiToUnicode(area.data(), "a\xF0\x9F\x98\x80z", -1, 2), 4);
    EXPECT_EQ(area, u"a##");
}

struct BadBytes {
    const char* bytes;
    const char16_t* text;
};

class BadUtf8Test : public testing::TestWithParam<BadBytes> {};

TEST_P(BadUtf8Test, BecomesReplacementCharacters) {
    EXPECT_EQ(widen(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, BadUtf8Test,
    testing::Values(BadBytes{"\x80", u"\uFFFD"}, BadBytes{"a\xFF", u"a\uFFFD"},
                    BadBytes{"\xC0\x80", u"\uFFFD\uFFFD"}, BadBytes{"\xC3", u"\uFFFD"},
                    BadBytes{"\xC3z", u"\uFFFDz"}, BadBytes{"\xE2\x82", u"\uFFFD"},
                    BadBytes{"\xE2\x82z", u"\uFFFDz"},
                    BadBytes{"\xE0\x80\x80", u"\uFFFD\uFFFD\uFFFD"},
                    BadBytes{"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
                    BadBytes{"\xF0\x9F\x98", u"\uFFFD"},
                    BadBytes{"\xF0\x9F\x98\xF0\x9F\x98\x80", u"\uFFFD\xD83D\xDE00"},
                    BadBytes{"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
                    BadBytes{"\xF8\x88\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"}));
