#pragma once

#include <random>
#include <string>

/// The inputs of the benchmarks of big integers, the same for the library and its peers.
namespace bench {

/// Decimal digits of a number of that length, always the same for one length and seed.
inline std::string digits(int count, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::string text(static_cast<std::size_t>(count), '9');
    for (char& digit : text) {
        digit = static_cast<char>('1' + random() % 9);
    }
    return text;
}

/// How many digits the operands have.
inline constexpr int sizes[] = {20, 100, 1000, 10000, 100000};

} // namespace bench
