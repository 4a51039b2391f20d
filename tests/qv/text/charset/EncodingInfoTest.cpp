#include "qv/text/charset/EncodingInfo.h"

#include "qv/Results.h"
#include "qv/String.h"
#include "tests/support/Printing.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

using namespace qv;

namespace {

struct Row {
    const char16_t* name;
    unsigned codePage;
};

const Row rows[] = {
    {u"ASCII", 20127}, {u"ISO8859_1", 28591}, {u"CP437", 437},   {u"CP1252", 1252},
    {u"UTF-8", 65001}, {u"CP1250", 1250},     {u"CP1251", 1251}, {u"CP1253", 1253},
    {u"CP1254", 1254}, {u"CP1255", 1255},     {u"CP1256", 1256}, {u"CP1257", 1257},
    {u"CP1258", 1258}, {u"CP737", 737},       {u"CP775", 775},   {u"CP850", 850},
    {u"CP852", 852},   {u"CP855", 855},       {u"CP857", 857},   {u"CP858", 858},
    {u"CP720", 720},   {u"CP862", 862},       {u"CP866", 866},   {u"CP932", 932},
    {u"CP936", 936},   {u"CP949", 949},       {u"CP950", 950},   {u"EUCJP", 20932},
};

struct Alias {
    const char16_t* alias;
    const char16_t* target;
};

const Alias aliases[] = {
    {u"ANSI_X3.4-1968", u"ASCII"},
    {u"ISO-IR-6", u"ASCII"},
    {u"ANSI_X3.4-1986", u"ASCII"},
    {u"ISO_646.IRV:1991", u"ASCII"},
    {u"ASCII", u"ASCII"},
    {u"ISO646-US", u"ASCII"},
    {u"US-ASCII", u"ASCII"},
    {u"US", u"ASCII"},
    {u"IBM367", u"ASCII"},
    {u"CP367", u"ASCII"},
    {u"CSASCII", u"ASCII"},
    {u"646", u"ASCII"},
    {u"DEFAULT", u"ASCII"},
    {u"ASCII7", u"ASCII"},
    {u"ISO_8859-1:1987", u"ISO8859_1"},
    {u"ISO-IR-100", u"ISO8859_1"},
    {u"ISO_8859-1", u"ISO8859_1"},
    {u"ISO-8859-1", u"ISO8859_1"},
    {u"LATIN1", u"ISO8859_1"},
    {u"L1", u"ISO8859_1"},
    {u"IBM819", u"ISO8859_1"},
    {u"CP819", u"ISO8859_1"},
    {u"CSISOLATIN1", u"ISO8859_1"},
    {u"8859_1", u"ISO8859_1"},
    {u"ISO_8859-1:1978", u"ISO8859_1"},
    {u"IBM-819", u"ISO8859_1"},
    {u"819", u"ISO8859_1"},
    {u"IBM437", u"CP437"},
    {u"437", u"CP437"},
    {u"CSPC8CODEPAGE437", u"CP437"},
    {u"IBM-437", u"CP437"},
    {u"WINDOWS-1252", u"CP1252"},
    {u"UTF8", u"UTF-8"},
    {u"UTF_8", u"UTF-8"},
    {u"EUC-JP", u"EUCJP"},
    {u"EUC_JP", u"EUCJP"},
    {u"WINDOWS-31J", u"CP932"},
    {u"MS932", u"CP932"},
    {u"GB2312", u"CP936"},
    {u"KS_C_5601-1987", u"CP949"},
    {u"BIG5", u"CP950"},
    {u"WINDOWS-1250", u"CP1250"},
    {u"WINDOWS-1251", u"CP1251"},
    {u"WINDOWS-1253", u"CP1253"},
    {u"WINDOWS-1254", u"CP1254"},
    {u"WINDOWS-1255", u"CP1255"},
    {u"WINDOWS-1256", u"CP1256"},
    {u"WINDOWS-1257", u"CP1257"},
    {u"WINDOWS-1258", u"CP1258"},
};

TEST(EncodingInfoTest, EveryRowIsFoundByNameNumberAndCodePage) {
    for (const Row& row : rows) {
        QVEncInfo info = {};
        ASSERT_EQ(QVGetEncInfoByName(row.name, &info), 0) << String(row.name).getBytes();
        EXPECT_EQ(String(info.name), row.name);
        EXPECT_EQ(info.codePage, row.codePage);
        EXPECT_EQ(info.reserved, 0);
        info = {};
        ASSERT_EQ(QVGetEncInfoByCodePage(row.codePage, &info), 0) << row.codePage;
        EXPECT_EQ(String(info.name), row.name);
        info = {};
        ASSERT_EQ(QVGetEncInfoByName(String::valueOf(row.codePage).getData(), &info), 0);
        EXPECT_EQ(String(info.name), row.name);
    }
}

TEST(EncodingInfoTest, EveryAliasFindsItsTarget) {
    for (const Alias& alias : aliases) {
        QVEncInfo info = {};
        ASSERT_EQ(QVGetEncInfoByName(alias.alias, &info), 0) << String(alias.alias).getBytes();
        EXPECT_EQ(String(info.name), alias.target);
    }
}

TEST(EncodingInfoTest, NamesMatchInAnyCase) {
    QVEncInfo info = {};
    EXPECT_EQ(QVGetEncInfoByName(u"latin1", &info), 0);
    EXPECT_EQ(String(info.name), u"ISO8859_1");
    EXPECT_EQ(QVGetEncInfoByName(u"Windows-31j", &info), 0);
    EXPECT_EQ(String(info.name), u"CP932");
}

TEST(EncodingInfoTest, EncodingsWithoutCodePageHaveNoRow) {
    for (const char16_t* name : {u"UTF-16LE", u"UTF-16BE", u"UTF-32LE", u"UTF-32BE", u"AMP-7",
                                 u"A7", u"", u"no such encoding"}) {
        QVEncInfo info = {u"untouched", 7, 7};
        EXPECT_EQ(QVGetEncInfoByName(name, &info), QV_E_FAIL);
        EXPECT_EQ(info.codePage, 7u);
    }
    QVEncInfo info = {};
    EXPECT_EQ(QVGetEncInfoByCodePage(0, &info), QV_E_FAIL);
    EXPECT_EQ(QVGetEncInfoByCodePage(1200, &info), QV_E_FAIL);
}

TEST(EncodingInfoTest, NullArgumentsAreRefused) {
    QVEncInfo info = {};
    EXPECT_EQ(QVGetEncInfoByName(nullptr, &info), QV_E_INVALIDARG);
    EXPECT_EQ(QVGetEncInfoByName(u"UTF-8", nullptr), QV_E_INVALIDARG);
    EXPECT_EQ(QVGetEncInfoByCodePage(65001, nullptr), QV_E_INVALIDARG);
    EXPECT_EQ(QVEnumerateEncInfo(nullptr, &info), QV_E_INVALIDARG);
    unsigned int count = 1;
    EXPECT_EQ(QVEnumerateEncInfo(&count, nullptr), QV_E_INVALIDARG);
    EXPECT_EQ(count, 1u);
}

TEST(EncodingInfoTest, FirstCallAsksForTheSize) {
    unsigned int count = 0;
    EXPECT_EQ(QVEnumerateEncInfo(&count, nullptr), QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(count, 28u);
    std::vector<QVEncInfo> tooFew(27);
    count = 27;
    EXPECT_EQ(QVEnumerateEncInfo(&count, tooFew.data()), QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(count, 28u);
    EXPECT_EQ(tooFew[0].name, nullptr);
    // A count of 0 asks for the size with a buffer too.
    count = 0;
    EXPECT_EQ(QVEnumerateEncInfo(&count, tooFew.data()), QV_E_BUFFERTOOSMALL);
    EXPECT_EQ(count, 28u);
    EXPECT_EQ(tooFew[0].name, nullptr);
}

TEST(EncodingInfoTest, BufferOfExactlyTheRowsIsEnough) {
    std::vector<QVEncInfo> all(28);
    unsigned int count = 28;
    EXPECT_EQ(QVEnumerateEncInfo(&count, all.data()), 0);
    EXPECT_EQ(count, 28u);
    EXPECT_EQ(String(all[0].name), u"ASCII");
    EXPECT_EQ(String(all[27].name), u"EUCJP");
}

TEST(EncodingInfoTest, RowIsANameACodePageAndAReservedWord) {
    EXPECT_EQ(offsetof(QVEncInfo, name), 0u);
    EXPECT_EQ(offsetof(QVEncInfo, codePage), 8u);
    EXPECT_EQ(offsetof(QVEncInfo, reserved), 12u);
    EXPECT_EQ(sizeof(QVEncInfo), 16u);
}

TEST(EncodingInfoTest, SecondCallGivesAllRows) {
    std::vector<QVEncInfo> all(40);
    auto count = static_cast<unsigned int>(all.size());
    EXPECT_EQ(QVEnumerateEncInfo(&count, all.data()), 0);
    ASSERT_EQ(count, 28u);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(String(all[i].name), rows[i].name);
        EXPECT_EQ(all[i].codePage, rows[i].codePage);
        EXPECT_EQ(all[i].reserved, 0);
    }
    EXPECT_EQ(all[28].name, nullptr);
}

} // namespace
