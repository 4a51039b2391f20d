#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace support {

using Bytes = std::vector<signed char>;

/// The bytes of pairs of hexadecimal digits; blanks between pairs are left out.
inline Bytes fromHex(std::string_view digits) {
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        i += digits[i] == ' ' ? 1 : 0;
        bytes.push_back(
            static_cast<signed char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}

/// Two lower-case hexadecimal digits for each byte.
template <class Range>
std::string toHex(const Range& bytes) {
    std::string digits;
    for (const auto byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        digits += "0123456789abcdef"[value >> 4];
        digits += "0123456789abcdef"[value & 15];
    }
    return digits;
}

} // namespace support
