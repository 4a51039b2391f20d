#pragma once

#include "qv/Number.h"

namespace qv::math {

/// A signed integer of any size, that changes in place: an operation replaces the value of the
/// object it is called on and leaves its arguments alone. An argument may be the object itself.
///
/// Zero keeps its sign: a negative zero arises from `negate`, from "-0", and from products with a
/// negative factor. It is zero to `isZero`, below zero to `compareTo`, and negative to the
/// operations that ask for a sign.
///
/// What fails throws Exception with one of five fixed texts, named below, or std::bad_alloc, also
/// where a result would come near 2 to the 31 bits; the number is then as it was before.
///
/// Thread safety: const-safe.
class QV_API BigInteger : public Number {
public:
    static const BigInteger ZERO;
    static const BigInteger ONE;

    /// Zero, without memory.
    BigInteger() noexcept = default;
    BigInteger(int value);
    BigInteger(unsigned int value);
    BigInteger(long value);
    BigInteger(unsigned long value);
    BigInteger(long long value);
    BigInteger(unsigned long long value);
    /// Reads a minus sign and digits of `radix`, 2 to 36, in groups of three: what is no digit
    /// counts as the runtime's parser has it in its group.
    /// Kept: with three or more leading zeros, the sign counted, the last groups are not read, as
    /// many as there are threes in front; "000123456" is 123.
    /// @throws Exception "Number Format Exception" for the empty text, and for a minus sign that
    ///     stands behind the start before any other.
    explicit BigInteger(const String& text, int radix = 10);
    /// Copies `size` bytes of the magnitude, least significant first.
    BigInteger(const signed char* data, int size, bool negative);
    BigInteger(const BigInteger& other);
    /// Leaves `other` zero.
    BigInteger(BigInteger&& other) noexcept;
    ~BigInteger() noexcept override;

    BigInteger& operator=(const BigInteger& other);
    BigInteger& operator=(BigInteger&& other) noexcept;
    BigInteger& operator=(int value);
    BigInteger& operator=(unsigned int value);
    BigInteger& operator=(long value);
    BigInteger& operator=(unsigned long value);
    BigInteger& operator=(long long value);
    BigInteger& operator=(unsigned long long value);

    int compareTo(const Object& other) const override;
    /// Decimal.
    String toString() const override;
    /// Kept: the low 63 bits, with the number's sign; 2 to the 63 gives 0.
    std::int64_t toInt64() const override;
    /// Kept: that of `toInt64`, with its limit.
    double toDouble() const override;
    BigInteger toBigInteger() const override;
    BigDecimal toBigDecimal() const override;

    // Slot order is contract: one more.

    /// The bytes of the magnitude.
    virtual int getSize() const;

    // --- Arithmetic ---

    void add(const BigInteger& x);
    void subtract(const BigInteger& x);
    void multiply(const BigInteger& x);
    /// This becomes the quotient, cut toward zero. `remainder` becomes the remainder of the
    /// magnitudes, which is never negative; where it is this object, the quotient prevails.
    /// @throws Exception "Divide by zero.".
    void divide(const BigInteger& d, BigInteger& remainder);
    /// Kept: a negative number that is a multiple of `m` becomes `m`, not 0.
    /// @throws Exception "Divide by zero.", or "Modulus can't be negative.".
    void mod(const BigInteger& m);
    /// Kept: to the power of 0 the number stays as it is.
    /// @throws Exception "Negative Exponent", also for a negative zero.
    void pow(const BigInteger& e);
    /// `pow` and then `mod`. With a negative exponent `modInverse` and then `pow`.
    /// Kept: that power is not reduced.
    /// @throws what these throw.
    void modPow(const BigInteger& e, const BigInteger& m);
    /// The inverse modulo `m`, by Euclid's algorithm on the magnitudes.
    /// Kept: for a negative number that may be the inverse of its negative.
    /// @throws Exception "Not invertible.", and what `divide` and `mod` throw.
    void modInverse(const BigInteger& m);
    /// The greatest common divisor. Kept: where `x` divides this, it is `x` with its sign, and an
    /// `x` of zero fails.
    /// @throws Exception "Divide by zero.".
    void gcd(const BigInteger& x);
    /// Clears the sign.
    void abs() noexcept { negative_ = false; }
    /// Flips the sign, also of zero.
    void negate() noexcept { negative_ = !negative_; }

    /// Sets bit `n` of the magnitude; nothing for a negative `n`.
    void setBit(int n);
    /// Clears bit `n` of the magnitude. Kept: it clears the lower bits of that byte too, and leaves
    /// the size as it is.
    void clearBit(int n);

    /// -1, 0 or 1.
    int compareTo(const BigInteger& x) const noexcept;
    /// The bits of the magnitude, 0 for zero. Kept: a zero byte that `clearBit` left on top counts
    /// no bit itself, and those below it eight.
    int getBitCount() const noexcept;
    bool isZero() const noexcept;
    bool isNegative() const noexcept { return negative_; }
    /// The bytes of the magnitude, least significant first: `getSize` of them. Null for a zero that
    /// never had memory.
    signed char* getData() noexcept { return data_; }
    const signed char* getData() const noexcept { return data_; }
    /// The digits in `radix`, 2 to 36, above 9 in lower case, behind a minus sign for a negative
    /// number other than zero. Any other radix gives what is left of each group of three digits
    /// there: nothing.
    String toString(int radix) const;

protected:
    /// Makes room for `capacity` bytes and keeps those in use.
    void ensureCapacity(int capacity);
    /// Makes the magnitude `size` bytes long; new ones are 0.
    void setSize(int size);
    void setByteArray(const signed char* data, int size, bool negative);

private:
    /// The magnitude is stored, and calculated with, in such words; those bytes of the top one that
    /// are not in use are 0.
    using Word = unsigned long long;
    /// As many as have fewer bits than an `int` counts.
    static constexpr std::size_t greatestWords = (std::size_t{1} << 25) - 1;

    static void setBit(signed char* data, int size, int n) noexcept;
    static void clearBit(signed char* data, int size, int n) noexcept;
    void truncateZeroBytes() noexcept;

    Word* words() noexcept { return reinterpret_cast<Word*>(data_); }
    const Word* words() const noexcept { return reinterpret_cast<const Word*>(data_); }
    /// The words without zeros on top.
    std::size_t wordCount() const noexcept;
    std::size_t wordCapacity() const noexcept;
    void reserveWords(std::size_t count);
    /// Takes the size from the words in place.
    void setWordCount(std::size_t count) noexcept;
    void setWords(const Word* words, std::size_t count);
    /// Owns: `words`, `capacity` of them, of which `count` are the magnitude.
    void adoptWords(Word* words, std::size_t count, std::size_t capacity) noexcept;
    void setWord(Word value, bool negative);
    void setZero() noexcept;

    static int compareMagnitudes(const BigInteger& a, const BigInteger& b) noexcept;
    void addMagnitude(const BigInteger& x);
    void subtractMagnitude(const BigInteger& x);
    void reduceMagnitude(const BigInteger& m);
    void readGroups(const char16_t* text, int first, int count, int radix);
    void readUnclearGroups(const char16_t* text, int first, int count, int radix);
    String groupsOfNothing(int radix) const;

    bool negative_ = false;
    std::int32_t size_ = 0;
    std::int32_t capacity_ = 0;
    signed char* data_ = nullptr;
};

} // namespace qv::math
