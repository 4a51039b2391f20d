#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Big integers once more, byte by byte and slowly: what the library's are compared with, in what
/// they keep as well.
namespace reference {

/// What an operation refuses.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct BigNumber {
    bool negative = false;
    std::vector<std::uint8_t> bytes; ///< least significant first, no zeros on top

    BigNumber() = default;
    BigNumber(int value);
    /// Reads groups of three digits by the runtime's parser.
    BigNumber(std::u16string_view text, int radix);

    bool isZero() const { return bytes.empty(); }
    int compareTo(const BigNumber& x) const;
    void add(BigNumber x);
    void subtract(BigNumber x);
    void multiply(const BigNumber& x);
    void divide(const BigNumber& divisor, BigNumber& remainder);
    void mod(const BigNumber& m);
    void pow(const BigNumber& e);
    void modPow(const BigNumber& e, const BigNumber& m);
    void modInverse(const BigNumber& m);
    void gcd(const BigNumber& x);
    std::int64_t toInt64() const;
    std::u16string toString(int radix) const;
};

} // namespace reference
