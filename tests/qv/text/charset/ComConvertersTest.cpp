#include "qv/text/charset/BTCCom.h"
#include "qv/text/charset/CTBCom.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qv/text/charset/CodecManager.h"
#include "qv/util/BufferLocks.h"
#include "qvcore/Component.h"
#include "tests/support/Conversions.h"
#include "tests/support/Printing.h"
#include "tests/support/Slots.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

using namespace qv;
using namespace qv::text::charset;
using reference::Decoded;
using reference::Encoded;
using reference::Failure;

namespace {

constexpr std::int32_t failure = QV_E_UNAVAILABLE;

/// How far DecodeChar comes before it fails.
enum class Failing { beforeEverything, behindTheLength, behindTheCodePoint };

/// What a test's codec does; the codecs of a test share one.
struct Behaviour {
    std::int32_t nameResult = 0;
    std::int32_t bytesResult = 0;
    std::int32_t charsResult = 0;
    std::int32_t codeResult = 0; ///< of DecodeChar and EncodeChar
    Failing failing = Failing::behindTheLength;
    int formLength = 2; ///< bytes that EncodeChar appends
    int alive = 0;
};

/// Two bytes to a code point, higher first; "!!" is U+FFFD, "ww" is above U+10FFFF.
class TestCodec : public ComObject, public IQVCharCodec {
public:
    explicit TestCodec(Behaviour& behaviour) : behaviour_(behaviour) { ++behaviour_.alive; }
    ~TestCodec() noexcept override { --behaviour_.alive; }

    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override {
        if (!equalGuids(iid, IID_IQVCharCodec)) {
            *out = nullptr;
            return QV_E_NOINTERFACE;
        }
        *out = static_cast<IQVCharCodec*>(this);
        AddRef();
        return QV_S_OK;
    }
    std::uint32_t AddRef() const noexcept override { return ComObject::AddRef(); }
    std::uint32_t Release() const noexcept override { return ComObject::Release(); }

    std::int32_t GetEncodingName(IQVCharBuffer* name) override {
        if (behaviour_.nameResult < 0) {
            return behaviour_.nameResult;
        }
        String text = u"X-Pairs";
        return toResult([&] { QVCopyCharBuffer(name, &text); });
    }
    std::int32_t GetMaxBytesPerChar(int* count) override {
        *count = 2;
        return behaviour_.bytesResult;
    }
    std::int32_t GetMaxCharsPerByte(int* count) override {
        *count = 7;
        return behaviour_.charsResult;
    }
    std::int32_t DecodeChar(const signed char* bytes, int& length,
                            unsigned int* codePoint) override {
        const bool fails = behaviour_.codeResult < 0;
        if (fails && behaviour_.failing == Failing::beforeEverything) {
            return behaviour_.codeResult;
        }
        if (length < 2) {
            length = 0;
            return QV_S_OK;
        }
        length = 2;
        if (fails && behaviour_.failing == Failing::behindTheLength) {
            return behaviour_.codeResult;
        }
        *codePoint = bytes[0] == '!'   ? 0xFFFD
                     : bytes[0] == 'w' ? 0x110000u
                                       : static_cast<unsigned>(bytes[0] << 8 | bytes[1]);
        return behaviour_.codeResult;
    }
    std::int32_t EncodeChar(unsigned int codePoint, IQVByteBuffer* bytes) override {
        if (behaviour_.codeResult < 0) {
            return behaviour_.codeResult;
        }
        return toResult([&] {
            const int start = bytes->GetLength();
            util::BufferWriteLock lock(*bytes, start + behaviour_.formLength);
            for (int i = 0; i < behaviour_.formLength; ++i) {
                lock.getData()[start + i] =
                    static_cast<signed char>(i % 2 == 0 ? codePoint >> 8 : codePoint & 0xFF);
            }
            lock.setLength(start + behaviour_.formLength);
        });
    }

private:
    Behaviour& behaviour_;
};

TEST(IQVCharCodecTest, IdentifierIsThePublishedOne) {
    const GUID published = {
        0xE9DE4D9A, 0xBF89, 0x4A97, {0xB9, 0x74, 0x1F, 0x50, 0xBC, 0x5A, 0x8C, 0x61}};
    EXPECT_TRUE(equalGuids(IID_IQVCharCodec, published));
}

TEST(IQVCharCodecTest, OperationsStandInTheirOrder) {
    using C = IQVCharCodec;
    support::expectConsecutive({support::slotOf(&C::Release), support::slotOf(&C::GetEncodingName),
                                support::slotOf(&C::GetMaxBytesPerChar),
                                support::slotOf(&C::GetMaxCharsPerByte),
                                support::slotOf(&C::DecodeChar), support::slotOf(&C::EncodeChar)});
}

TEST(BTCComTest, KeepsOneReferenceToTheCodec) {
    Behaviour behaviour;
    auto* const codec = new TestCodec(behaviour);
    const Reference<TestCodec> held(codec);
    {
        const Reference<BTCCom> decoder = make<BTCCom>(codec);
        EXPECT_EQ(codec->GetRefCount(), 2u);
    }
    {
        const Reference<CTBCom> encoder = make<CTBCom>(codec);
        EXPECT_EQ(codec->GetRefCount(), 2u);
    }
    EXPECT_EQ(codec->GetRefCount(), 1u);
}

TEST(BTCComTest, NameAndBoundsAreTheCodecs) {
    Behaviour behaviour;
    const Reference<BTCCom> decoder = make<BTCCom>(new TestCodec(behaviour));
    const Reference<CTBCom> encoder = make<CTBCom>(new TestCodec(behaviour));
    EXPECT_EQ(String(decoder->getEncodingName()), u"X-Pairs");
    EXPECT_EQ(String(encoder->getEncodingName()), u"X-Pairs");
    EXPECT_EQ(decoder->getMaxBytesPerChar(), 2);
    EXPECT_EQ(encoder->getMaxBytesPerChar(), 2);
    EXPECT_EQ(decoder->getMaxCharsPerByte(), 7);
    EXPECT_EQ(encoder->getMaxCharsPerByte(), 7);
}

TEST(BTCComTest, CodecThatFailsAtConstructionThrowsItsResultAndIsReleased) {
    std::int32_t Behaviour::*const places[] = {&Behaviour::nameResult, &Behaviour::bytesResult,
                                               &Behaviour::charsResult};
    for (const auto place : places) {
        Behaviour behaviour;
        behaviour.*place = failure;
        EXPECT_EQ(support::thrownResult([&] { make<BTCCom>(new TestCodec(behaviour)); }), failure);
        EXPECT_EQ(support::thrownResult([&] { make<CTBCom>(new TestCodec(behaviour)); }), failure);
        EXPECT_EQ(behaviour.alive, 0);
    }
}

TEST(BTCComTest, DecodesThroughTheCodec) {
    Behaviour behaviour;
    const Reference<BTCCom> decoder = make<BTCCom>(new TestCodec(behaviour));
    EXPECT_EQ(support::decodeAll(*decoder, std::string("\0A\x20\x41", 4)), u"A\u2041");
    EXPECT_EQ(support::decode(*decoder, std::string("\0A\x20", 3)), (Decoded{2, u"A"}));
    EXPECT_EQ(support::decodeAll(*decoder, "!!ww"), u"\uFFFD\uFFFD");
}

TEST(BTCComTest, FailingCodecGivesTheReplacementCharacter) {
    Behaviour behaviour;
    const Reference<BTCCom> decoder = make<BTCCom>(new TestCodec(behaviour));
    behaviour.codeResult = failure;
    EXPECT_EQ(support::decodeAll(*decoder, "abcd"), u"\uFFFD\uFFFD");
    decoder->setSubstitutionMode(false);
    EXPECT_EQ(support::decode(*decoder, "ab").failure, Failure::unmappableCharacter);
}

TEST(BTCComTest, CodePointOfAFailingCodecCounts) {
    Behaviour behaviour;
    const Reference<BTCCom> decoder = make<BTCCom>(new TestCodec(behaviour));
    behaviour.codeResult = failure;
    behaviour.failing = Failing::behindTheCodePoint;
    EXPECT_EQ(support::decodeAll(*decoder, "ABww"), u"\u4142\uFFFD");
}

TEST(BTCComTest, FailingCodecThatTouchesNothingHasConsumedEverything) {
    Behaviour behaviour;
    const Reference<BTCCom> decoder = make<BTCCom>(new TestCodec(behaviour));
    behaviour.codeResult = failure;
    behaviour.failing = Failing::beforeEverything;
    EXPECT_EQ(support::decodeAll(*decoder, "abcde"), u"\uFFFD");
}

TEST(CTBComTest, EncodesThroughTheCodec) {
    Behaviour behaviour;
    const Reference<CTBCom> encoder = make<CTBCom>(new TestCodec(behaviour));
    EXPECT_EQ(support::encodeAll(*encoder, u"A\u2041"), std::string("\0A\x20\x41", 4));
    behaviour.formLength = 6;
    EXPECT_EQ(support::encodeAll(*encoder, u"\u4142"), "ABABAB");
}

TEST(CTBComTest, FailureAndUnusableLengthsAreNoForm) {
    Behaviour behaviour;
    const Reference<CTBCom> encoder = make<CTBCom>(new TestCodec(behaviour));
    behaviour.formLength = 0;
    EXPECT_EQ(support::encodeAll(*encoder, u"A"), "?");
    behaviour.formLength = 7;
    EXPECT_EQ(support::encodeAll(*encoder, u"A"), "?");
    behaviour.codeResult = failure;
    EXPECT_EQ(support::encodeAll(*encoder, u"A"), "?");
    encoder->setSubstitutionMode(false);
    EXPECT_EQ(support::encode(*encoder, u"A").failure, Failure::unmappableCharacter);
}

TEST(CTBComTest, StepTellsFailureFromUnusableLength) {
    struct Open : CTBCom {
        using CTBCom::convertChar;
        using CTBCom::CTBCom;
    };
    Behaviour behaviour;
    const Reference<Open> encoder = make<Open>(new TestCodec(behaviour));
    signed char out[6] = {};
    EXPECT_EQ(encoder->convertChar(0x4142, out, 6), 2);
    EXPECT_EQ(out[1], 'B');
    EXPECT_EQ(encoder->convertChar(0x4142, out, 1), 0);
    behaviour.codeResult = failure;
    EXPECT_EQ(encoder->convertChar(0x4142, out, 6), -1);
}

// --- Codecs that the manager finds as components ---

/// The class object of the test's codec, which counts what it makes.
class TestFactory : public IQVUnknown {
public:
    virtual std::int32_t CreateInstance(IQVUnknown* outer, const GUID& iid, void** out) {
        ++created;
        EXPECT_EQ(outer, nullptr);
        if (refuse) {
            return failure;
        }
        const Reference<TestCodec> codec = make<TestCodec>(behaviour);
        return codec->QueryInterface(iid, out);
    }
    virtual std::int32_t LockServer(int) { return 0; }

    std::int32_t QueryInterface(const GUID&, void** out) override {
        *out = this;
        return 0;
    }
    std::uint32_t AddRef() const override { return 1; }
    std::uint32_t Release() const override { return 1; }
    virtual ~TestFactory() = default;

    Behaviour behaviour;
    int created = 0;
    bool refuse = false;
};

class ComponentCodecTest : public testing::Test {
protected:
    static inline TestFactory* factory = nullptr;
    static constexpr GUID classId = {
        0x6D9F6C5E, 0x2A0B, 0x4E0B, {0x9B, 0x6A, 0x54, 0xE1, 0x0A, 0x77, 0x31, 0x02}};

    ComponentCodecTest() { factory = &factory_; }
    ~ComponentCodecTest() override {
        EXPECT_EQ(QVComRevokeClass(&classId), 0);
        EXPECT_EQ(factory_.behaviour.alive, 0);
    }
    static void serve(const char16_t* progId) {
        ASSERT_EQ(QVComRegisterClass(progId, &classId,
                                     [](const GUID*, const GUID*, void** out) {
                                         *out = factory;
                                         return 0;
                                     }),
                  0);
    }

    TestFactory factory_;
};

TEST_F(ComponentCodecTest, NameFindsTheComponentOfItsProgId) {
    serve(u"Velquor.CharCodec.X-Outside");
    const support::Decoder decoder(ByteToCharConverter::getConverter(u"X-Outside"));
    const support::Encoder encoder(CharToByteConverter::getConverter(u"X-Outside"));
    EXPECT_EQ(String(decoder->getEncodingName()), u"X-Pairs");
    EXPECT_EQ(support::decodeAll(*decoder, "AB"), u"\u4142");
    EXPECT_EQ(support::encodeAll(*encoder, u"\u4142"), "AB");
    EXPECT_EQ(factory_.behaviour.alive, 2);
}

TEST_F(ComponentCodecTest, EncodingOfTheTableIsServedByTheComponentOfItsCanonicalName) {
    serve(u"Velquor.CharCodec.CP936");
    for (const char16_t* name : {u"CP936", u"GB2312", u"gb2312", u"936"}) {
        const support::Decoder decoder(ByteToCharConverter::getConverter(name));
        EXPECT_EQ(String(decoder->getEncodingName()), u"X-Pairs");
    }
}

TEST_F(ComponentCodecTest, ComponentOfTheNameItselfComesBeforeTheCanonicalName) {
    serve(u"Velquor.CharCodec.GB2312");
    const support::Encoder encoder(CharToByteConverter::getConverter(u"GB2312"));
    EXPECT_EQ(String(encoder->getEncodingName()), u"X-Pairs");
    EXPECT_THROW(CharToByteConverter::getConverter(u"CP936"), UnknownEncodingException);
}

TEST_F(ComponentCodecTest, ProgIdHasTheNameInTheCallersSpelling) {
    // In upper case the long s would be an S, which no longer is the same name in any case.
    serve(u"Velquor.CharCodec.X-Out\u017Fide");
    const support::Decoder decoder(ByteToCharConverter::getConverter(u"X-Out\u017Fide"));
    const support::Encoder encoder(CharToByteConverter::getConverter(u"X-Out\u017Fide"));
    EXPECT_EQ(String(decoder->getEncodingName()), u"X-Pairs");
    EXPECT_EQ(String(encoder->getEncodingName()), u"X-Pairs");
    EXPECT_EQ(CodecManager::getInstance()->getDecoder(u"X-Outside"), nullptr);
}

TEST_F(ComponentCodecTest, BuiltInEncodingComesBeforeAComponent) {
    serve(u"Velquor.CharCodec.UTF-8");
    const support::Decoder decoder(ByteToCharConverter::getConverter(u"utf-8"));
    EXPECT_EQ(String(decoder->getEncodingName()), u"UTF-8");
    EXPECT_EQ(factory_.created, 0);
}

TEST_F(ComponentCodecTest, ComponentThatCannotBeMadeIsNoCodec) {
    serve(u"Velquor.CharCodec.X-Outside");
    factory_.refuse = true;
    EXPECT_EQ(CodecManager::getInstance()->getDecoder(u"X-Outside"), nullptr);
    EXPECT_EQ(CodecManager::getInstance()->getEncoder(u"X-Outside"), nullptr);
    EXPECT_EQ(factory_.created, 2);
}

TEST_F(ComponentCodecTest, CodecThatFailsToSayItsNameThrowsItsResult) {
    serve(u"Velquor.CharCodec.X-Outside");
    factory_.behaviour.nameResult = failure;
    EXPECT_EQ(support::thrownResult([] { ByteToCharConverter::getConverter(u"X-Outside"); }),
              failure);
}

} // namespace
