#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What the benchmarks of the converters share with those of their peers.
namespace bench {

/// A text of one language.
struct Text {
    std::string language;
    std::string utf8;
    std::u16string utf16;
};

/// The texts of scripts/make-bench-texts.sh, read once; those that are not there are left out.
const std::vector<Text>& texts();

/// The bytes of a text in an encoding, by the library's own name of it.
const std::string& bytesOf(const Text& text, const std::string& encoding);

/// What one program does: decodes bytes into units, or encodes units into bytes.
/// @return how many it wrote, to compare the programs by.
using Decode = std::function<std::size_t(std::string_view bytes, std::u16string& out)>;
using Encode = std::function<std::size_t(std::u16string_view units, std::string& out)>;

/// Measures a program with every text that fits the encoding, in bytes of the encoding a second.
/// `out` has room for the longest result.
void measure(const std::string& encoding, const std::string& program, const Decode& decode,
             const Encode& encode);

} // namespace bench
