#include "qv/text/charset/CodecManager.h"

#include "qv/Exceptions.h"
#include "qv/text/charset/EncodingInfo.h"
#include "tests/support/Conversions.h"
#include "tests/support/Printing.h"

#include <gtest/gtest.h>
#include <map>
#include <thread>

using namespace qv;
using namespace qv::text::charset;

namespace {

const char16_t* nameOfDecoder(const char16_t* name) {
    const Reference<Object> made(CodecManager::getInstance()->getDecoder(name));
    return made == nullptr ? nullptr
                           : static_cast<ByteToCharConverter*>(made.get())->getEncodingName();
}

const char16_t* nameOfEncoder(const char16_t* name) {
    const Reference<Object> made(CodecManager::getInstance()->getEncoder(name));
    return made == nullptr ? nullptr
                           : static_cast<CharToByteConverter*>(made.get())->getEncodingName();
}

struct Family {
    const char16_t* name;
    const char16_t* decoderClass;
    const char16_t* encoderClass;
    std::vector<const char16_t*> aliases;
};

const Family families[] = {
    {u"ASCII",
     u"qv::text::charset::BTCASCII",
     u"qv::text::charset::CTBASCII",
     {u"ANSI_X3.4-1968", u"ISO-IR-6", u"ANSI_X3.4-1986", u"ISO_646.IRV:1991", u"ASCII",
      u"ISO646-US", u"US-ASCII", u"US", u"IBM367", u"CP367", u"CSASCII", u"646", u"DEFAULT",
      u"ASCII7"}},
    {u"ISO8859_1",
     u"qv::text::charset::BTCISO8859_1",
     u"qv::text::charset::CTBISO8859_1",
     {u"ISO_8859-1:1987", u"ISO-IR-100", u"ISO_8859-1", u"ISO-8859-1", u"LATIN1", u"L1", u"IBM819",
      u"CP819", u"CSISOLATIN1", u"8859_1", u"ISO_8859-1:1978", u"IBM-819", u"819"}},
    {u"CP437",
     u"qv::text::charset::BTCCP437",
     u"qv::text::charset::CTBCP437",
     {u"IBM437", u"437", u"CSPC8CODEPAGE437", u"IBM-437"}},
    {u"CP1252",
     u"qv::text::charset::BTCCP1252",
     u"qv::text::charset::CTBCP1252",
     {u"WINDOWS-1252"}},
    {u"UTF-8", u"qv::text::charset::BTCUTF8", u"qv::text::charset::CTBUTF8", {u"UTF8", u"UTF_8"}},
    {u"UTF-16LE", u"qv::text::charset::BTCUTF16LE", u"qv::text::charset::CTBUTF16LE", {}},
    {u"UTF-16BE", u"qv::text::charset::BTCUTF16BE", u"qv::text::charset::CTBUTF16BE", {}},
    {u"UTF-32BE", u"qv::text::charset::BTCUTF32BE", u"qv::text::charset::CTBUTF32BE", {}},
    {u"UTF-32LE", u"qv::text::charset::BTCUTF32LE", u"qv::text::charset::CTBUTF32LE", {}},
    {u"AMP-7", u"qv::text::charset::BTCAMP7", u"qv::text::charset::CTBAMP7", {u"A7"}},
};

class CodecFamilyTest : public testing::TestWithParam<Family> {};

TEST_P(CodecFamilyTest, EveryNameGivesTheConvertersOfTheFamily) {
    std::vector<const char16_t*> names = GetParam().aliases;
    names.push_back(GetParam().name);
    for (const char16_t* name : names) {
        ASSERT_NE(nameOfDecoder(name), nullptr) << String(name).getBytes();
        ASSERT_NE(nameOfEncoder(name), nullptr) << String(name).getBytes();
        EXPECT_EQ(String(nameOfDecoder(name)), GetParam().name);
        EXPECT_EQ(String(nameOfEncoder(name)), GetParam().name);
    }
}

TEST_P(CodecFamilyTest, ConvertersAreOfTheTablesClasses) {
    CodecManager* const manager = CodecManager::getInstance();
    const Reference<Object> decoder(manager->getDecoder(GetParam().name));
    const Reference<Object> encoder(manager->getEncoder(GetParam().name));
    EXPECT_EQ(String(decoder->getClass()->getName()), GetParam().decoderClass);
    EXPECT_EQ(String(encoder->getClass()->getName()), GetParam().encoderClass);
}

TEST_P(CodecFamilyTest, NamesMatchInAnyCase) {
    std::vector<const char16_t*> names = GetParam().aliases;
    names.push_back(GetParam().name);
    for (const char16_t* name : names) {
        String lower = name;
        lower.toLower();
        ASSERT_NE(nameOfDecoder(lower.getData()), nullptr) << lower.getBytes();
        EXPECT_EQ(String(nameOfDecoder(lower.getData())), GetParam().name);
    }
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, CodecFamilyTest, testing::ValuesIn(families));

TEST(CodecManagerTest, LibraryTableHasEveryNameOnceAndAsciiAgainAsItsAlias) {
    std::map<std::u16string, int> counts;
    forEachEncodingName(
        [](const EncodingName& name, void* context) {
            if (name.isBuiltIn) {
                ++(*static_cast<std::map<std::u16string, int>*>(context))[name.name];
            }
        },
        &counts);
    int total = 0;
    for (const auto& [name, count] : counts) {
        EXPECT_EQ(count, name == u"ASCII" ? 2 : 1) << String(name.c_str()).getBytes();
        total += count;
    }
    EXPECT_EQ(total, 45);
}

TEST(CodecManagerTest, EncodingsWithoutByteOrderAreUnknown) {
    EXPECT_EQ(nameOfDecoder(u"UTF-16"), nullptr);
    EXPECT_EQ(nameOfEncoder(u"UTF-32"), nullptr);
}

TEST(CodecManagerTest, UnknownNamesGiveNull) {
    EXPECT_EQ(nameOfDecoder(u"no such encoding"), nullptr);
    EXPECT_EQ(nameOfEncoder(u""), nullptr);
    const std::u16string longName(5000, u'x');
    EXPECT_EQ(nameOfDecoder(longName.c_str()), nullptr);
    EXPECT_EQ(nameOfDecoder(nullptr), nullptr);
    EXPECT_EQ(nameOfEncoder(nullptr), nullptr);
}

TEST(CodecManagerTest, CodePageNumbersFindTheirEncodings) {
    EXPECT_EQ(String(nameOfDecoder(u"1252")), u"CP1252");
    EXPECT_EQ(String(nameOfEncoder(u"65001")), u"UTF-8");
    EXPECT_EQ(String(nameOfDecoder(u"28591")), u"ISO8859_1");
    EXPECT_EQ(String(nameOfDecoder(u"20127")), u"ASCII");
}

TEST(CodecManagerTest, EncodingsOfTheTableWithoutComponentAreUnknown) {
    for (const char16_t* name : {u"CP1251", u"cp1251", u"WINDOWS-1251", u"1251", u"GB2312",
                                 u"EUC-JP", u"EUCJP", u"20932"}) {
        EXPECT_EQ(nameOfDecoder(name), nullptr) << String(name).getBytes();
        EXPECT_EQ(nameOfEncoder(name), nullptr) << String(name).getBytes();
    }
}

TEST(CodecManagerTest, FirstRegistrationOfANameWins) {
    CodecManager* const manager = CodecManager::getInstance();
    manager->registerCodec(u"ascii", u"qv::text::charset::CTBUTF8", u"qv::text::charset::BTCUTF8");
    EXPECT_EQ(String(nameOfDecoder(u"ASCII")), u"ASCII");
    EXPECT_EQ(String(nameOfEncoder(u"ASCII")), u"ASCII");
    // What does nothing does not look for its classes either.
    EXPECT_NO_THROW(manager->registerCodec(u"Ascii", u"no class", u"no class"));
}

TEST(CodecManagerTest, NewRegistrationServesItsTwoClasses) {
    CodecManager::getInstance()->registerCodec(u"x-Mixed", u"qv::text::charset::CTBCP437",
                                               u"qv::text::charset::BTCUTF8");
    EXPECT_EQ(String(nameOfDecoder(u"X-MIXED")), u"UTF-8");
    EXPECT_EQ(String(nameOfEncoder(u"x-mixed")), u"CP437");
}

TEST(CodecManagerTest, LongNamesCountInFull) {
    const std::u16string name(200, u'x');
    CodecManager::getInstance()->registerCodec((name + u"a").c_str(), u"qv::text::charset::CTBUTF8",
                                               u"qv::text::charset::BTCUTF8");
    EXPECT_EQ(String(nameOfDecoder((name + u"A").c_str())), u"UTF-8");
    EXPECT_EQ(String(nameOfEncoder((name + u"a").c_str())), u"UTF-8");
    EXPECT_EQ(nameOfDecoder((name + u"b").c_str()), nullptr);
    EXPECT_EQ(nameOfDecoder(name.c_str()), nullptr);
}

TEST(CodecManagerTest, RegistrationOfUnknownClassesThrowsAndAddsNothing) {
    CodecManager* const manager = CodecManager::getInstance();
    EXPECT_THROW(manager->registerCodec(u"x-half", u"qv::text::charset::CTBUTF8", u"no class"),
                 ClassNotFoundException);
    EXPECT_THROW(manager->registerCodec(u"x-half", u"no class", u"qv::text::charset::BTCUTF8"),
                 ClassNotFoundException);
    EXPECT_EQ(nameOfDecoder(u"x-half"), nullptr);
}

TEST(CodecManagerTest, NewConverterHasNoReferences) {
    Object* const made = CodecManager::getInstance()->getEncoder(u"UTF-8");
    EXPECT_EQ(made->AddRef(), 1u);
    EXPECT_EQ(made->Release(), 0u);
}

TEST(CodecManagerTest, EveryCallGivesTheSameManager) {
    EXPECT_EQ(CodecManager::getInstance(), CodecManager::getInstance());
}

TEST(CodecManagerTest, FreedManagerIsMadeAgainEmpty) {
    // The library's own registrations are made again for the tests behind this one.
    CodecManager::freeInstance();
    CodecManager::freeInstance();
    EXPECT_EQ(nameOfDecoder(u"UTF-16LE"), nullptr);
    for (const Family& family : families) {
        std::vector<const char16_t*> names = family.aliases;
        names.push_back(family.name);
        for (const char16_t* name : names) {
            CodecManager::getInstance()->registerCodec(name, family.encoderClass,
                                                       family.decoderClass);
        }
    }
    EXPECT_EQ(String(nameOfDecoder(u"UTF-16LE")), u"UTF-16LE");
}

TEST(CodecManagerThreadsTest, LookUpsRunSideBySide) {
    std::vector<std::thread> threads;
    std::vector<int> found(4);
    for (int& count : found) {
        threads.emplace_back([&count] {
            for (int i = 0; i < 500; ++i) {
                count += nameOfDecoder(u"latin1") != nullptr && nameOfEncoder(u"1252") != nullptr &&
                         nameOfDecoder(u"x-unknown") == nullptr;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(found, std::vector<int>(4, 500));
}

} // namespace
