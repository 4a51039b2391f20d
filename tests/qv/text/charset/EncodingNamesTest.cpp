// The library hides its tables and builds them at start, so they are compiled here once more.
#include "qv/text/charset/detail/EncodingNames.cpp"
#include "face/EncodingTable.cpp"

#include "tests/support/Printing.h"

#include <gtest/gtest.h>

using qv::String;
using qv::text::charset::detail::EncodingNames;

namespace {

TEST(EncodingNamesTest, NothingIsThereBeforeBuildingAndAfterFreeing) {
    EXPECT_EQ(EncodingNames::current(), nullptr);
    qv::face::freeEncodingNames();
    EXPECT_EQ(EncodingNames::current(), nullptr);
}

TEST(EncodingNamesTest, FreedNamesAreBuiltAgain) {
    for (int i = 0; i < 2; ++i) {
        qv::face::buildEncodingNames();
        const EncodingNames* const names = EncodingNames::current();
        ASSERT_NE(names, nullptr);
        EXPECT_EQ(names->rows().size(), 28u);
        ASSERT_NE(names->find(u"ms932"), nullptr);
        EXPECT_EQ(String(names->find(u"ms932")->name), u"CP932");
        EXPECT_EQ(names->find(932u), names->find(u"MS932"));
        EXPECT_EQ(names->find(u"UTF-16LE"), nullptr);
        EXPECT_EQ(names->find(0u), nullptr);
        qv::face::freeEncodingNames();
        EXPECT_EQ(EncodingNames::current(), nullptr);
    }
}

TEST(EncodingNamesTest, BuildingTwiceKeepsTheSecond) {
    qv::face::buildEncodingNames();
    qv::face::buildEncodingNames();
    EXPECT_EQ(EncodingNames::current()->rows().size(), 28u);
    qv::face::freeEncodingNames();
}

TEST(EncodingNamesTest, TableOfCodecsHas45RowsAndAnEnd) {
    int rows = 0;
    int mainRows = 0;
    for (const qv::face::CodecRow* row = qv::face::codecTable; row->name != nullptr; ++row) {
        ++rows;
        mainRows += row->aliasOf == nullptr;
        EXPECT_TRUE(String(row->encoderClass).startsWith(u"qv::text::charset::CTB"));
        EXPECT_TRUE(String(row->decoderClass).startsWith(u"qv::text::charset::BTC"));
    }
    EXPECT_EQ(rows, 45);
    EXPECT_EQ(mainRows, 10);
}

} // namespace
