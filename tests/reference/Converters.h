#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The encodings once more, step by step and slowly: what the library's converters are compared
/// with.
namespace reference {

enum class Form { utf8, utf16le, utf16be, utf32le, utf32be, amp7, ascii, latin1, cp437, cp1252 };

inline constexpr Form allForms[] = {Form::utf8,    Form::utf16le, Form::utf16be, Form::utf32le,
                                    Form::utf32be, Form::amp7,    Form::ascii,   Form::latin1,
                                    Form::cp437,   Form::cp1252};

/// The registered name.
const char16_t* nameOf(Form form);

enum class Failure { none, invalidCharacter, unmappableCharacter };

/// What one call of `convert` does.
template <class Unit>
struct Outcome {
    std::int32_t consumed = 0;
    std::basic_string<Unit> written; ///< also what was written in front of a failure
    Failure failure = Failure::none;
    std::string message = {};

    bool operator==(const Outcome&) const = default;
};

using Decoded = Outcome<char16_t>;
using Encoded = Outcome<char>;

struct DecoderSettings {
    bool substitute = true;
    std::u16string chars = u"\uFFFD";
};

struct EncoderSettings {
    bool substitute = true;
    std::string bytes = "?";
};

/// Decodes into `room` units. For UTF-32 `bytes` are whole words.
Decoded decode(Form form, std::string_view bytes, std::size_t room,
               const DecoderSettings& settings = {});
/// Encodes into `room` bytes. `pending` is the leading surrogate that waits, 0 for none.
Encoded encode(Form form, std::u16string_view units, std::size_t room, char16_t& pending,
               const EncoderSettings& settings = {});

} // namespace reference
