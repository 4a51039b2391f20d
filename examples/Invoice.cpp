// Sums of money are exact: decimals of one scale, and a division that rounds only once.

#include "qv/math/BigDecimal.h"

#include <cstdio>

using qv::String;
using qv::math::BigDecimal;

namespace {

constexpr int cents = 2;

/// A decimal with as many decimals as all others: sums take the values as they stand.
BigDecimal amount(const char16_t* text) {
    BigDecimal number{String(text)};
    number.setScale(cents);
    return number;
}

} // namespace

int main() {
    BigDecimal total = amount(u"0");
    for (const char16_t* const item : {u"19.99", u"5", u"0.1", u"0.2"}) {
        total.add(amount(item));
    }
    BigDecimal share(total);
    share.divide(BigDecimal(3), cents);

    std::printf("total %s, a third of it %s\n", total.toString().getBytes(u"UTF-8"),
                share.toString().getBytes(u"UTF-8"));
    return total.toString() == u"25.29" && share.toString() == u"8.43" ? 0 : 1;
}
