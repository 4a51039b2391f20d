// A locale with a decimal comma is made here, since a system may have none. The other system brings
// its own along.

#include "qv/Double.h"
#include "qv/String.h"
#include "qv/math/BigDecimal.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestProcess.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

using namespace qv;

namespace {

/// Numbers show and read the separator of the locale, but a decimal's point is part of its form.
int checkNumbers() {
    if (!Double(0.5).toString().equals(u"0,5") || Number::parseDouble(u"0,5") != 0.5) {
        return 6;
    }
    if (!math::BigDecimal(-1.5).toString().equals(u"-1.5") ||
        !math::BigDecimal(1.5f).toString().equals(u"1.5")) {
        return 7;
    }
    const math::BigDecimal decimal(String(u"2.75"));
    return decimal.toDouble() == 2.75 && decimal.toInt64() == 2 ? 0 : 8;
}

/// Runs in a process of its own, whose locale it changes. @return the number of what went wrong.
int checkCommaLocale(const std::vector<std::string>& arguments) {
    setenv("LOCPATH", arguments.at(0).c_str(), 1);
    if (std::setlocale(LC_NUMERIC, "comma") == nullptr) {
        return 1;
    }
    if (!String::valueOf(0.5).equals(u"0,5")) {
        return 2;
    }
    if (!String::valueOf(0.5f).equals(u"0,5")) {
        return 3;
    }
    if (!String::valueOf(-1234567.0).equals(u"-1,23457e+06")) {
        return 4;
    }
    if (!String::valueOf(1234567).equals(u"1234567")) {
        return 5;
    }
    return checkNumbers();
}

const support::ChildRole commaRole("decimal-comma", checkCommaLocale);

/// The character map of ASCII, which is all that the locale needs.
void writeCharmap(const std::filesystem::path& file) {
    std::ofstream map(file);
    map << "<code_set_name> ANSI_X3.4-1968\n<comment_char> %\n<escape_char> /\n"
           "<mb_cur_min> 1\n<mb_cur_max> 1\nCHARMAP\n";
    for (int unit = 0; unit < 128; ++unit) {
        char line[64];
        std::snprintf(line, sizeof line, "<U%04X> /x%02x U%04X\n", unit, unit, unit);
        map << line;
    }
    map << "END CHARMAP\n";
}

/// Makes a locale "comma" in the folder. @return false where the system has nothing to make it
/// with.
bool makeCommaLocale(const std::filesystem::path& folder) {
    writeCharmap(folder / "map");
    std::ofstream source(folder / "source");
    source << "comment_char %\nescape_char /\n"
              "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"<U002E>\"\ngrouping 3;3\n"
              "END LC_NUMERIC\n";
    source.close();
    const std::string path = folder.string();
    const std::string command = "localedef -c --no-archive -f " + path + "/map -i " + path +
                                "/source " + path + "/comma > " + path + "/log 2>&1";
    // Warnings about what the small locale leaves out give a code above 0.
    [[maybe_unused]] const int code = std::system(command.c_str());
    return std::filesystem::exists(folder / "comma" / "LC_NUMERIC");
}

TEST(DecimalCommaTest, FloatingNumbersHaveTheSeparatorOfTheRuntimeLocale) {
    const support::TestFolder folder;
    if (!makeCommaLocale(folder.path())) {
        GTEST_SKIP() << "the system has no localedef to make a locale with a decimal comma with";
    }
    EXPECT_EQ(support::TestProcess("decimal-comma", {folder.path().string()}).wait(), 0);
}

} // namespace
