// A short code that people can type: three numbers packed into bits, the bits written as letters
// that are not mistaken for one another, and the way back.

#include "qv/Reference.h"
#include "qv/io/AlphaNumInputStream.h"
#include "qv/io/AlphaNumOutputStream.h"
#include "qv/io/BitInputStream.h"
#include "qv/io/BitOutputStream.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"

#include <cstdio>

using namespace qv;

constexpr int yearBits = 7; // since 2000
constexpr int shopBits = 10;
constexpr int numberBits = 23;
static_assert((yearBits + shopBits + numberBits) % 40 == 0); // whole groups of eight letters

static String codeOf(unsigned year, unsigned shop, unsigned number) {
    const auto bytes = make<io::ByteArrayOutputStream>();
    io::BitOutputStream bits(make<io::AlphaNumOutputStream>(bytes));
    bits.write(year - 2000, yearBits);
    bits.write(shop, shopBits);
    bits.write(number, numberBits);
    bits.flush();
    return bytes->toString(u"ASCII");
}

int main() {
    const String code = codeOf(2026, 42, 1234567);
    std::printf("%s\n", code.getBytes());

    const char* const letters = code.getBytes(u"ASCII");
    const auto source = make<io::ByteArrayInputStream>(
        reinterpret_cast<const signed char*>(letters), code.getLength());
    io::BitInputStream bits(make<io::AlphaNumInputStream>(source));
    const int year = 2000 + bits.read(yearBits);
    const int shop = bits.read(shopBits);
    const int number = bits.read(numberBits);
    std::printf("year %d, shop %d, number %d\n", year, shop, number);
    return year == 2026 && shop == 42 && number == 1234567 ? 0 : 1;
}
