// This system brings its locales along; the other one's are made for the test.

#include "qv/String.h"

#include <clocale>
#include <gtest/gtest.h>

using namespace qv;

namespace {

TEST(DecimalCommaTest, FloatingNumbersHaveTheSeparatorOfTheRuntimeLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "German_Germany.1252"), nullptr);
    const String half = String::valueOf(0.5);
    const String single = String::valueOf(0.5f);
    const String whole = String::valueOf(1234567);
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_TRUE(half.equals(u"0,5"));
    EXPECT_TRUE(single.equals(u"0,5"));
    EXPECT_TRUE(whole.equals(u"1234567"));
}

} // namespace
