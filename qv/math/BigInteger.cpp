#include "qv/math/BigInteger.h"

#include "qv/detail/AsNumber.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/detail/Words.h"

#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace qv::math {

namespace {

constexpr std::size_t bytesPerWord = sizeof(detail::Word);

constexpr std::size_t wordsFor(std::int32_t bytes) noexcept {
    return (static_cast<std::size_t>(bytes) + bytesPerWord - 1) / bytesPerWord;
}

template <class Value>
constexpr unsigned long long magnitude(Value value) noexcept {
    const auto bits = static_cast<unsigned long long>(value);
    return value < 0 ? 0 - bits : bits;
}

} // namespace

const BigInteger BigInteger::ZERO;
const BigInteger BigInteger::ONE(1);

// --- Construction and assignment ---

BigInteger::BigInteger(int value) { setWord(magnitude(value), value < 0); }
BigInteger::BigInteger(unsigned int value) { setWord(value, false); }
BigInteger::BigInteger(long value) { setWord(magnitude(value), value < 0); }
BigInteger::BigInteger(unsigned long value) { setWord(value, false); }
BigInteger::BigInteger(long long value) { setWord(magnitude(value), value < 0); }
BigInteger::BigInteger(unsigned long long value) { setWord(value, false); }

BigInteger::BigInteger(const signed char* data, int size, bool negative) {
    setByteArray(data, size, negative);
}

BigInteger::BigInteger(const BigInteger& other) : Number(other) { *this = other; }

BigInteger::BigInteger(BigInteger&& other) noexcept : Number() { *this = std::move(other); }

BigInteger::~BigInteger() noexcept { delete[] words(); }

BigInteger& BigInteger::operator=(const BigInteger& other) {
    if (this != &other) {
        reserveWords(wordsFor(other.size_));
        std::copy_n(other.words(), wordsFor(other.size_), words());
        size_ = other.size_;
        negative_ = other.negative_;
    }
    return *this;
}

BigInteger& BigInteger::operator=(BigInteger&& other) noexcept {
    if (this != &other) {
        delete[] words();
        negative_ = std::exchange(other.negative_, false);
        size_ = std::exchange(other.size_, 0);
        capacity_ = std::exchange(other.capacity_, 0);
        data_ = std::exchange(other.data_, nullptr);
    }
    return *this;
}

BigInteger& BigInteger::operator=(int value) {
    setWord(magnitude(value), value < 0);
    return *this;
}
BigInteger& BigInteger::operator=(unsigned int value) {
    setWord(value, false);
    return *this;
}
BigInteger& BigInteger::operator=(long value) {
    setWord(magnitude(value), value < 0);
    return *this;
}
BigInteger& BigInteger::operator=(unsigned long value) {
    setWord(value, false);
    return *this;
}
BigInteger& BigInteger::operator=(long long value) {
    setWord(magnitude(value), value < 0);
    return *this;
}
BigInteger& BigInteger::operator=(unsigned long long value) {
    setWord(value, false);
    return *this;
}

// --- Number ---

int BigInteger::compareTo(const Object& other) const {
    return &other == this ? 0 : compareTo(qv::detail::asNumber(other).toBigInteger());
}

String BigInteger::toString() const { return toString(10); }

std::int64_t BigInteger::toInt64() const {
    constexpr Word mask = std::numeric_limits<std::int64_t>::max();
    const auto value = size_ == 0 ? 0 : static_cast<std::int64_t>(words()[0] & mask);
    return negative_ ? -value : value;
}

double BigInteger::toDouble() const { return static_cast<double>(toInt64()); }

BigInteger BigInteger::toBigInteger() const { return *this; }

BigDecimal BigInteger::toBigDecimal() const { return BigDecimal(*this, 0); }

int BigInteger::getSize() const { return size_; }

// --- Sums and differences ---

void BigInteger::add(const BigInteger& x) {
    negative_ == x.negative_ ? addMagnitude(x) : subtractMagnitude(x);
}

void BigInteger::subtract(const BigInteger& x) {
    negative_ == x.negative_ ? subtractMagnitude(x) : addMagnitude(x);
}

void BigInteger::addMagnitude(const BigInteger& x) {
    const std::size_t mine = wordCount();
    const std::size_t theirs = x.wordCount();
    const std::size_t longer = std::max(mine, theirs);
    if (longer == 0) {
        setWordCount(0);
        return;
    }
    const Word myTop = mine == longer ? words()[mine - 1] : 0;
    const Word theirTop = theirs == longer ? x.words()[theirs - 1] : 0;
    const bool mayCarry = myTop >= ~theirTop;
    reserveWords(longer + (mayCarry ? 1 : 0));
    Word* const sum = words();
    const Word carry = mine >= theirs ? detail::add(sum, sum, mine, x.words(), theirs)
                                      : detail::add(sum, x.words(), theirs, sum, mine);
    if (mayCarry) {
        sum[longer] = carry;
    }
    setWordCount(longer + (mayCarry ? 1 : 0));
}

void BigInteger::subtractMagnitude(const BigInteger& x) {
    const int order = compareMagnitudes(*this, x);
    if (order == 0) {
        setZero();
        return;
    }
    const std::size_t mine = wordCount();
    const std::size_t theirs = x.wordCount();
    if (order > 0) {
        detail::subtract(words(), words(), mine, x.words(), theirs);
        setWordCount(mine);
    } else {
        reserveWords(theirs);
        detail::subtract(words(), x.words(), theirs, words(), mine);
        setWordCount(theirs);
        negative_ = !negative_;
    }
}

// --- Bits and comparison ---

void BigInteger::setBit(int n) {
    if (n < 0) {
        return;
    }
    setSize(std::max(size_, n / 8 + 1));
    setBit(data_, size_, n);
}

void BigInteger::clearBit(int n) {
    if (n >= 0) {
        clearBit(data_, size_, n);
    }
}

void BigInteger::setBit(signed char* data, int size, int n) noexcept {
    if (n / 8 < size) {
        data[n / 8] = static_cast<signed char>(data[n / 8] | 1 << n % 8);
    }
}

void BigInteger::clearBit(signed char* data, int size, int n) noexcept {
    if (n / 8 < size) {
        // Kept: the mask takes the lower bits along, and the size stays.
        data[n / 8] = static_cast<signed char>(data[n / 8] & 0xFE << n % 8);
    }
}

int BigInteger::compareTo(const BigInteger& x) const noexcept {
    if (negative_ != x.negative_) {
        return negative_ ? -1 : 1;
    }
    return negative_ ? compareMagnitudes(x, *this) : compareMagnitudes(*this, x);
}

int BigInteger::compareMagnitudes(const BigInteger& a, const BigInteger& b) noexcept {
    return detail::compare(a.words(), a.wordCount(), b.words(), b.wordCount());
}

int BigInteger::getBitCount() const noexcept {
    if (size_ == 0) {
        return 0;
    }
    return 8 * (size_ - 1) + std::bit_width(static_cast<unsigned char>(data_[size_ - 1]));
}

bool BigInteger::isZero() const noexcept { return wordCount() == 0; }

// --- Storage ---

void BigInteger::ensureCapacity(int capacity) {
    if (capacity > capacity_) {
        reserveWords(wordsFor(capacity));
    }
}

void BigInteger::setSize(int size) {
    size = std::max(size, 0);
    ensureCapacity(size);
    const int end = static_cast<int>(wordsFor(size) * bytesPerWord);
    const int start = std::min(size_, size);
    if (end > start) {
        std::memset(data_ + start, 0, static_cast<std::size_t>(end - start));
    }
    size_ = size;
}

void BigInteger::setByteArray(const signed char* data, int size, bool negative) {
    BigInteger number;
    number.setSize(size);
    if (size > 0) {
        std::memcpy(number.data_, data, static_cast<std::size_t>(size));
    }
    number.truncateZeroBytes();
    number.negative_ = negative;
    *this = std::move(number);
}

void BigInteger::truncateZeroBytes() noexcept { setWordCount(wordCount()); }

std::size_t BigInteger::wordCount() const noexcept {
    return detail::significant(words(), wordsFor(size_));
}

std::size_t BigInteger::wordCapacity() const noexcept {
    return static_cast<std::size_t>(capacity_) / bytesPerWord;
}

void BigInteger::reserveWords(std::size_t count) {
    if (count <= wordCapacity()) {
        return;
    }
    if (count > greatestWords) {
        throw std::bad_alloc();
    }
    auto* const more = new Word[count];
    std::copy_n(words(), wordsFor(size_), more);
    delete[] words();
    data_ = reinterpret_cast<signed char*>(more);
    capacity_ = static_cast<std::int32_t>(count * bytesPerWord);
}

void BigInteger::setWordCount(std::size_t count) noexcept {
    count = detail::significant(words(), count);
    size_ = static_cast<std::int32_t>((detail::bitLength(words(), count) + 7) / 8);
}

void BigInteger::setWords(const Word* words, std::size_t count) {
    reserveWords(count);
    std::copy_n(words, count, this->words());
    setWordCount(count);
}

void BigInteger::adoptWords(Word* words, std::size_t count, std::size_t capacity) noexcept {
    delete[] this->words();
    data_ = reinterpret_cast<signed char*>(words);
    capacity_ = static_cast<std::int32_t>(capacity * bytesPerWord);
    setWordCount(count);
}

void BigInteger::setWord(Word value, bool negative) {
    if (value == 0) {
        setZero();
    } else {
        setWords(&value, 1);
        negative_ = negative;
    }
}

void BigInteger::setZero() noexcept {
    size_ = 0;
    negative_ = false;
}

} // namespace qv::math
