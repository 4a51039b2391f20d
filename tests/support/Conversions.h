#pragma once

#include "qv/Reference.h"
#include "qv/text/charset/ByteToCharConverter.h"
#include "qv/text/charset/CharToByteConverter.h"
#include "tests/reference/Converters.h"

#include <ostream>

namespace support {

using Decoder = qv::Reference<qv::text::charset::ByteToCharConverter>;
using Encoder = qv::Reference<qv::text::charset::CharToByteConverter>;

/// New converters of one of the library's own encodings.
Decoder newDecoder(reference::Form form);
Encoder newEncoder(reference::Form form);

void configure(qv::text::charset::ByteToCharConverter& decoder,
               const reference::DecoderSettings& settings);
void configure(qv::text::charset::CharToByteConverter& encoder,
               const reference::EncoderSettings& settings);

/// Runs one call of `convert` over the whole input, into `room` units, and tells what it did. The
/// ranges begin behind the start of their arrays. Fails the test where the positions, the result or
/// what lies around the output, also between its end and that of the room, are not what they must
/// be. The text in front of a failure is not told.
reference::Decoded decode(qv::text::charset::ByteToCharConverter& decoder, std::string_view bytes,
                          std::size_t room = 4096);
reference::Encoded encode(qv::text::charset::CharToByteConverter& encoder,
                          std::u16string_view units, std::size_t room = 4096);

/// Decodes and encodes a text that must not fail and be consumed whole.
std::u16string decodeAll(qv::text::charset::ByteToCharConverter& decoder, std::string_view bytes);
std::string encodeAll(qv::text::charset::CharToByteConverter& encoder, std::u16string_view units);

/// Runs converter and reference over the same input. Fails the test where they differ, also in what
/// stands in the output in front of a failure, and behind it. @return true where they agree.
bool agreesDecoding(reference::Form form, std::string_view bytes, std::size_t room,
                    const reference::DecoderSettings& settings = {});
bool agreesEncoding(reference::Form form, std::u16string_view units, std::size_t room,
                    const reference::EncoderSettings& settings = {});

/// Hexadecimal units, for messages.
std::string hex(std::string_view bytes);
std::string hex(std::u16string_view units);

} // namespace support

namespace reference {

template <class Unit>
void PrintTo(const Outcome<Unit>& outcome, std::ostream* out) {
    *out << "consumed " << outcome.consumed << ", written "
         << support::hex(std::basic_string_view<Unit>(outcome.written)) << ", failure "
         << static_cast<int>(outcome.failure) << " \"" << outcome.message << '"';
}

} // namespace reference
