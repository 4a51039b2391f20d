#include "tests/support/Conversions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

/// The converters against the plain reference: whole ranges of short inputs, and long random ones.
using namespace std::string_literals;
using reference::allForms;
using reference::DecoderSettings;
using reference::EncoderSettings;
using reference::Form;

namespace {

const DecoderSettings decoderSettings[] = {
    {true, u"\uFFFD"}, {false, u"\uFFFD"}, {true, u"abc"}, {true, u""}};
const EncoderSettings encoderSettings[] = {{true, "?"}, {false, "?"}, {true, "12"}, {true, ""}};

bool agreesDecodingInAllSettings(Form form, const std::string& bytes, std::size_t room) {
    return std::all_of(std::begin(decoderSettings), std::end(decoderSettings),
                       [&](const DecoderSettings& settings) {
                           return support::agreesDecoding(form, bytes, room, settings);
                       });
}

bool agreesEncodingInAllSettings(Form form, const std::u16string& units, std::size_t room) {
    return std::all_of(std::begin(encoderSettings), std::end(encoderSettings),
                       [&](const EncoderSettings& settings) {
                           return support::agreesEncoding(form, units, room, settings);
                       });
}

bool isWordForm(Form form) { return form == Form::utf32le || form == Form::utf32be; }

class ReferenceTest : public testing::TestWithParam<Form> {};

TEST_P(ReferenceTest, AgreesOnEveryPairOfBytes) {
    const Form form = GetParam();
    const std::string frame = isWordForm(form) ? "\0\0"s : ""s;
    for (int pair = 0; pair < 0x10000; ++pair) {
        const std::string bytes = {static_cast<char>(pair >> 8), static_cast<char>(pair)};
        ASSERT_TRUE(support::agreesDecoding(form, bytes + frame, 8, {true, u"\uFFFD"}));
        ASSERT_TRUE(support::agreesDecoding(form, frame + bytes, 8, {false, u"\uFFFD"}));
    }
}

TEST_P(ReferenceTest, AgreesOnEveryUnit) {
    const Form form = GetParam();
    for (int unit = 0; unit < 0x10000; ++unit) {
        const std::u16string units(1, static_cast<char16_t>(unit));
        ASSERT_TRUE(support::agreesEncoding(form, units, 8, {true, "?"}));
        ASSERT_TRUE(support::agreesEncoding(form, u"a" + units + u"z", 16, {false, "?"}));
    }
}

TEST_P(ReferenceTest, AgreesOnUnitsOfEveryKindInEveryRoom) {
    const char16_t kinds[] = {u'a',   u'&',   0x7F,   0xE9,   0x7FF,
                              0x20AC, 0xD800, 0xDBFF, 0xDC00, 0xFFFD};
    for (const char16_t first : kinds) {
        for (const char16_t second : kinds) {
            for (const char16_t third : kinds) {
                for (std::size_t room = 0; room < 12; ++room) {
                    ASSERT_TRUE(
                        agreesEncodingInAllSettings(GetParam(), {first, second, third}, room));
                }
            }
        }
    }
}

/// Random texts: runs of one kind of character each, so that every bulk path begins and ends
/// somewhere.
class RandomText {
public:
    explicit RandomText(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return random_() % limit; }

    std::u16string text() {
        std::u16string units;
        for (std::size_t runs = below(6); runs > 0; --runs) {
            const std::size_t kind = below(7);
            for (std::size_t length = below(90); length > 0; --length) {
                append(units, kind);
            }
        }
        return units;
    }

    /// Bytes of an encoding, of which some are changed.
    std::string bytes(Form form) {
        const support::Encoder encoder = support::newEncoder(form);
        std::string result = support::encode(*encoder, text(), 8192).written;
        for (std::size_t changes = below(4); changes > 0 && !result.empty(); --changes) {
            result[below(result.size())] = static_cast<char>(random_());
        }
        return result;
    }

private:
    void append(std::u16string& units, std::size_t kind) {
        const struct {
            char16_t first;
            std::size_t count;
        } ranges[] = {{0x20, 0x5F},   {0, 0x80},       {0x80, 0x80},
                      {0x400, 0x100}, {0x800, 0xC800}, {0xE000, 0x2000}};
        if (kind < std::size(ranges)) {
            units += static_cast<char16_t>(ranges[kind].first + below(ranges[kind].count));
            return;
        }
        units += static_cast<char16_t>(0xD800 + below(0x400));
        if (below(40) != 0) {
            units += static_cast<char16_t>(0xDC00 + below(0x400));
        }
    }

    std::mt19937 random_;
};

TEST_P(ReferenceTest, AgreesOnRandomBytesInRandomRooms) {
    RandomText random(20240101);
    for (int i = 0; i < 4000; ++i) {
        std::string bytes = random.bytes(GetParam());
        if (isWordForm(GetParam())) {
            bytes.resize(bytes.size() & ~std::size_t{3});
        }
        const std::size_t room = random.below(2) == 0 ? 2048 : random.below(400);
        ASSERT_TRUE(support::agreesDecoding(
            GetParam(), bytes, room, decoderSettings[random.below(std::size(decoderSettings))]));
    }
}

TEST_P(ReferenceTest, AgreesOnRandomTextsInRandomRooms) {
    RandomText random(20240102);
    for (int i = 0; i < 4000; ++i) {
        const std::u16string units = random.text();
        const std::size_t room = random.below(2) == 0 ? 8192 : random.below(1200);
        ASSERT_TRUE(support::agreesEncoding(
            GetParam(), units, room, encoderSettings[random.below(std::size(encoderSettings))]));
    }
}

INSTANTIATE_TEST_SUITE_P(AllEncodings, ReferenceTest, testing::ValuesIn(allForms));

// --- AMP-7, whose escapes can be cut and wrong anywhere ---

TEST(Amp7ReferenceTest, AgreesOnEveryPrefixOfKnownTroublesInEveryRoom) {
    const std::string troubles[] = {
        "a&AMP;b",   "a&APOS;b",  "a&QUOT;b",   "&_;b",     "&_41;b",      "&_00041;b",
        "&_12345;",  "&_123456;", "&_1234567;", "&_FFFD;b", "&_0fffd;",    "&_FFFC;&_FFFE;",
        "&_D7FF;",   "&_d800;",   "&_DFFF;",    "&_E000;",  "&_10000;b",   "&_FFFFF;b",
        "&_G;",      "&_1 ;",     "&_\x80;",    "&amp;",    "&AMP&AMP;",   "&APOP;",
        "&QUIT;",    "&QUOT",     "&LT;",       "&;",       "&&&AMP;",     "&__;",
        "\x80\xFF&", "&_&_41;",   "&\x80;",     "& AMP;",   "&AMP ;&_41 ", "\0&\0;"s,
    };
    for (const std::string& trouble : troubles) {
        for (std::size_t length = 0; length <= trouble.size(); ++length) {
            for (std::size_t room = 0; room <= 8; ++room) {
                ASSERT_TRUE(
                    agreesDecodingInAllSettings(Form::amp7, trouble.substr(0, length), room));
            }
        }
    }
}

// --- UTF-8, where most can go wrong ---

TEST(Utf8ReferenceTest, AgreesOnFourBytesOfEveryKind) {
    const unsigned char kinds[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0,
                                   0xAF, 0xB0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0,
                                   0xE1, 0xED, 0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};
    std::string bytes(4, '\0');
    for (const unsigned char first : kinds) {
        bytes[0] = static_cast<char>(first);
        for (const unsigned char second : kinds) {
            bytes[1] = static_cast<char>(second);
            for (const unsigned char third : kinds) {
                bytes[2] = static_cast<char>(third);
                for (const unsigned char fourth : kinds) {
                    bytes[3] = static_cast<char>(fourth);
                    ASSERT_TRUE(support::agreesDecoding(Form::utf8, bytes, 8));
                }
            }
        }
    }
}

/// Source: M. Kuhn, "UTF-8 decoder capability and stress test"; RFC 3629; the Unicode Standard,
/// table of maximal subparts.
const std::string knownTroubles[] = {
    "\xCE\xBA\xE1\xBD\xB9\xCF\x83\xCE\xBC\xCE\xB5",
    "\0"s,
    "\xC2\x80",
    "\xE0\xA0\x80",
    "\xF0\x90\x80\x80",
    "\xF8\x88\x80\x80\x80",
    "\xFC\x84\x80\x80\x80\x80",
    "\x7F",
    "\xDF\xBF",
    "\xEF\xBF\xBF",
    "\xF7\xBF\xBF\xBF",
    "\xFB\xBF\xBF\xBF\xBF",
    "\xFD\xBF\xBF\xBF\xBF\xBF",
    "\xED\x9F\xBF",
    "\xEE\x80\x80",
    "\xEF\xBF\xBD",
    "\xF4\x8F\xBF\xBF",
    "\xF4\x90\x80\x80",
    "\x80\xBF\x80\xBF\x80\xBF\x80",
    "\xC0 \xC1 \xC2 \xDF ",
    "\xE0 \xE1 \xEF ",
    "\xF0 \xF1 \xF7 ",
    "\xF8 \xFB \xFC \xFD ",
    "\xC0\xE0\x80\xF0\x80\x80\xF8\x80\x80\x80\xFC\x80\x80\x80\x80",
    "\xDF\xEF\xBF\xF7\xBF\xBF\xFB\xBF\xBF\xBF\xFD\xBF\xBF\xBF\xBF",
    "\xFE\xFF\xFE\xFE\xFF\xFF",
    "\xC0\xAF\xE0\x80\xAF\xF0\x80\x80\xAF\xF8\x80\x80\x80\xAF",
    "\xC1\xBF\xE0\x9F\xBF\xF0\x8F\xBF\xBF\xF8\x87\xBF\xBF\xBF",
    "\xC0\x80\xE0\x80\x80\xF0\x80\x80\x80\xF8\x80\x80\x80\x80",
    "\xED\xA0\x80",
    "\xED\xAD\xBF",
    "\xED\xAE\x80",
    "\xED\xAF\xBF",
    "\xED\xB0\x80",
    "\xED\xBE\x80",
    "\xED\xBF\xBF",
    "\xED\xA0\x80\xED\xB0\x80",
    "\xED\xAF\xBF\xED\xBF\xBF",
    "\xEF\xBF\xBE\xEF\xBF\xBF",
    "a\xF1\x80\x80\xE1\x80\xC2"
    "b\x80"
    "c\x80\xBF"
    "d",
    "\xE1\xA0\xC0\xF1\x80\x80\x41",
    "\xF0\xB0\x80\x80\xF0\xBF\xBF\xBF\xF1\xB0\x80\x80",
};

TEST(Utf8ReferenceTest, AgreesOnEveryPrefixOfKnownTroubles) {
    for (const std::string& trouble : knownTroubles) {
        for (std::size_t length = 0; length <= trouble.size(); ++length) {
            for (std::size_t room = 0; room <= 8; ++room) {
                ASSERT_TRUE(
                    agreesDecodingInAllSettings(Form::utf8, trouble.substr(0, length), room));
            }
        }
    }
}

TEST(Utf8ReferenceTest, AgreesOnKnownTroublesAtEveryPlaceOfAVectorBlock) {
    std::string russian;
    std::string chinese;
    while (russian.size() < 200) {
        russian += "\xD0\xB6";
        chinese += "\xE4\xB8\xAD";
    }
    for (const std::string& filler : {std::string(200, 'x'), russian, chinese}) {
        for (const std::string& trouble : knownTroubles) {
            for (std::size_t place = 0; place <= 80; ++place) {
                const std::string bytes = filler.substr(0, place) + trouble + filler;
                ASSERT_TRUE(support::agreesDecoding(Form::utf8, bytes, 600));
            }
        }
    }
}

TEST(Utf8ReferenceTest, AgreesOnEveryCodePoint) {
    std::u16string units;
    std::string bytes;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) {
            continue;
        }
        if (c > 0xFFFF) {
            units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            units += static_cast<char16_t>(c);
        }
        if (units.size() > 4000) {
            char16_t pending = 0;
            bytes = reference::encode(Form::utf8, units, 5 * units.size(), pending).written;
            ASSERT_TRUE(support::agreesEncoding(Form::utf8, units, 5 * units.size()));
            ASSERT_TRUE(support::agreesDecoding(Form::utf8, bytes, 2 * bytes.size()));
            units.clear();
        }
    }
    ASSERT_TRUE(support::agreesEncoding(Form::utf8, units, 5 * units.size()));
}

} // namespace
