#include "tests/support/Conversions.h"

#include "qv/Exceptions.h"
#include "qv/String.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace support {

using namespace qv;
using namespace qv::text::charset;
using reference::Failure;

namespace {

/// Where the ranges of a call begin in their arrays.
constexpr std::int32_t inputStart = 3;
constexpr std::int32_t outputStart = 2;

/// Units behind the output's end that must stay as they are.
constexpr std::int32_t behind = 4;

template <class Unit>
constexpr Unit untouched = static_cast<Unit>(0x5A5A);

/// An encoder of UTF-16 gives characters, all others what was written.
bool countsCharacters(const char16_t* name) {
    return std::u16string_view(name).starts_with(u"UTF-16");
}

template <class Exception, class Outcome>
void noteFailure(const Exception& exception, Failure failure, Outcome& outcome) {
    outcome.failure = failure;
    outcome.message = exception.getDescription().getBytes(u"UTF-8");
}

/// The arrays of one call.
template <class In, class Out>
struct Call {
    std::vector<In> input;
    std::vector<Out> output;
    std::int32_t from = inputStart;
    std::int32_t to = outputStart;
    std::int32_t outputEnd;

    template <class Units>
    Call(const Units& units, std::size_t room)
        : input(inputStart), output(outputStart + room + behind, untouched<Out>),
          outputEnd(outputStart + static_cast<std::int32_t>(room)) {
        input.insert(input.end(), units.begin(), units.end());
    }

    std::int32_t inputEnd() const { return static_cast<std::int32_t>(input.size()); }

    /// True where the output has changed in `written` units from its start at most.
    template <class Count>
    bool isFrameUntouched(Count written) const {
        const auto isUntouched = [](Out unit) { return unit == untouched<Out>; };
        const auto start = output.begin() + outputStart;
        return std::all_of(output.begin(), start, isUntouched) &&
               std::all_of(start + static_cast<std::int32_t>(written), output.end(), isUntouched);
    }
};

template <class Unit, class In, class Out, class Converter>
reference::Outcome<Unit> run(Converter& converter, Call<In, Out>& call) {
    reference::Outcome<Unit> outcome;
    try {
        const std::int32_t result =
            converter.convert(call.input.data(), &call.from, call.inputEnd(), call.output.data(),
                              &call.to, call.outputEnd);
        outcome.consumed = call.from - inputStart;
        outcome.written.assign(call.output.begin() + outputStart, call.output.begin() + call.to);
        const bool characters = sizeof(Out) == 1 && countsCharacters(converter.getEncodingName());
        EXPECT_EQ(result, characters ? outcome.consumed : call.to - outputStart);
    } catch (const InvalidCharacterException& exception) {
        noteFailure(exception, Failure::invalidCharacter, outcome);
    } catch (const UnmappableCharacterException& exception) {
        noteFailure(exception, Failure::unmappableCharacter, outcome);
    }
    if (outcome.failure == Failure::none) {
        EXPECT_TRUE(call.isFrameUntouched(outcome.written.size()));
    } else {
        EXPECT_EQ(call.from, inputStart);
        EXPECT_EQ(call.to, outputStart);
        EXPECT_TRUE(call.isFrameUntouched(call.outputEnd - outputStart));
    }
    return outcome;
}

/// A failure does not tell what stands in front of it: that is compared here, and then left out.
template <class Outcome, class In, class Out>
bool holdsWritten(Outcome& expected, const Call<In, Out>& call) {
    if (expected.failure == Failure::none) {
        return true;
    }
    const auto& written = expected.written;
    const bool same = std::equal(written.begin(), written.end(), call.output.begin() + outputStart,
                                 [](auto a, Out b) { return static_cast<Out>(a) == b; }) &&
                      call.isFrameUntouched(written.size());
    expected.written.clear();
    return same;
}

template <class Unit, class View>
std::string hexOf(View units) {
    std::string text;
    for (const auto unit : units) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%0*X ", static_cast<int>(2 * sizeof unit),
                      static_cast<unsigned>(static_cast<Unit>(unit)));
        text += digits;
    }
    return text;
}

} // namespace

Decoder newDecoder(reference::Form form) {
    return ByteToCharConverter::getConverter(reference::nameOf(form));
}

Encoder newEncoder(reference::Form form) {
    return CharToByteConverter::getConverter(reference::nameOf(form));
}

void configure(ByteToCharConverter& decoder, const reference::DecoderSettings& settings) {
    decoder.setSubstitutionMode(settings.substitute);
    decoder.setSubstitutionChars(settings.chars.data(), static_cast<int>(settings.chars.size()));
}

void configure(CharToByteConverter& encoder, const reference::EncoderSettings& settings) {
    encoder.setSubstitutionMode(settings.substitute);
    encoder.setSubstitutionBytes(reinterpret_cast<const signed char*>(settings.bytes.data()),
                                 static_cast<int>(settings.bytes.size()));
}

reference::Decoded decode(ByteToCharConverter& decoder, std::string_view bytes, std::size_t room) {
    Call<signed char, char16_t> call(bytes, room);
    return run<char16_t>(decoder, call);
}

reference::Encoded encode(CharToByteConverter& encoder, std::u16string_view units,
                          std::size_t room) {
    Call<char16_t, signed char> call(units, room);
    return run<char>(encoder, call);
}

std::u16string decodeAll(ByteToCharConverter& decoder, std::string_view bytes) {
    const reference::Decoded outcome = decode(decoder, bytes, 4 * bytes.size() + 8);
    EXPECT_EQ(outcome.failure, Failure::none) << outcome.message;
    EXPECT_EQ(outcome.consumed, static_cast<std::int32_t>(bytes.size()));
    return outcome.written;
}

std::string encodeAll(CharToByteConverter& encoder, std::u16string_view units) {
    const reference::Encoded outcome = encode(encoder, units, 8 * units.size() + 8);
    EXPECT_EQ(outcome.failure, Failure::none) << outcome.message;
    EXPECT_EQ(outcome.consumed, static_cast<std::int32_t>(units.size()));
    return outcome.written;
}

bool agreesDecoding(reference::Form form, std::string_view bytes, std::size_t room,
                    const reference::DecoderSettings& settings) {
    const Decoder decoder = newDecoder(form);
    configure(*decoder, settings);
    Call<signed char, char16_t> call(bytes, room);
    const reference::Decoded actual = run<char16_t>(*decoder, call);
    reference::Decoded expected = reference::decode(form, bytes, room, settings);
    const bool same = holdsWritten(expected, call) && actual == expected;
    EXPECT_TRUE(same) << String(reference::nameOf(form)).getBytes() << " of " << hex(bytes)
                      << "in room " << room << ": " << testing::PrintToString(actual)
                      << " instead of " << testing::PrintToString(expected);
    return same;
}

bool agreesEncoding(reference::Form form, std::u16string_view units, std::size_t room,
                    const reference::EncoderSettings& settings) {
    const Encoder encoder = newEncoder(form);
    configure(*encoder, settings);
    Call<char16_t, signed char> call(units, room);
    const reference::Encoded actual = run<char>(*encoder, call);
    char16_t pending = 0;
    reference::Encoded expected = reference::encode(form, units, room, pending, settings);
    bool waits = false;
    try {
        encoder->flush(nullptr, nullptr, 0);
    } catch (const InvalidCharacterException&) {
        waits = true;
    }
    const bool same = holdsWritten(expected, call) && actual == expected && waits == (pending != 0);
    EXPECT_TRUE(same) << String(reference::nameOf(form)).getBytes() << " of " << hex(units)
                      << "in room " << room << ": " << testing::PrintToString(actual)
                      << " instead of " << testing::PrintToString(expected)
                      << (waits ? ", a surrogate waits" : "");
    return same;
}

std::string hex(std::string_view bytes) { return hexOf<unsigned char>(bytes); }
std::string hex(std::u16string_view units) { return hexOf<char16_t>(units); }

} // namespace support
