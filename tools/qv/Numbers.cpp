// The commands that calculate.

#include "Commands.h"
#include "Output.h"
#include "qv/Exceptions.h"
#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"

#include <algorithm>
#include <iterator>

namespace tool {

using qv::String;
using qv::math::BigDecimal;
using qv::math::BigInteger;

namespace {

/// The operands of one calculation, each read when it is asked for.
class Operands {
public:
    /// @throws UsageError for a `-radix` that is none.
    explicit Operands(const Arguments& arguments)
        : arguments_(arguments), radix_(arguments.number(u"radix").value_or(10)) {
        if (radix_ < 2 || radix_ > 36) {
            throw UsageError();
        }
    }

    int radix() const { return radix_; }
    /// @throws UsageError without a `-scale`, as all of these.
    int scale() const {
        const std::optional<int> scale = arguments_.number(u"scale");
        if (!scale) {
            throw UsageError();
        }
        return *scale;
    }
    BigInteger integer(const char16_t* name) const {
        return BigInteger(arguments_.requiredText(name), 10);
    }
    /// `-m`, or as the second of two operands `-b`.
    BigInteger modulus() const { return integer(arguments_.has(u"m") ? u"m" : u"b"); }
    BigDecimal decimal(const char16_t* name) const {
        return BigDecimal(arguments_.requiredText(name));
    }

private:
    const Arguments& arguments_;
    int radix_;
};

/// An operation by its name: it gives the line to print.
struct Operation {
    const char16_t* name;
    String (*run)(const Operands& operands);
};

template <std::size_t count>
void runOperation(const Operation (&operations)[count], const Arguments& arguments) {
    const String name = arguments.requiredText(u"op");
    const auto* const found = std::ranges::find_if(
        operations, [&](const Operation& operation) { return name == operation.name; });
    if (found == std::end(operations)) {
        throw UsageError();
    }
    const String line = found->run(Operands(arguments));
    Output output;
    output.line(line);
    output.finish();
}

// --- Integers ---

/// `a`, changed by an operation with `b`.
template <void (BigInteger::*operation)(const BigInteger&)>
String changed(const Operands& operands) {
    BigInteger number = operands.integer(u"a");
    (number.*operation)(operands.integer(u"b"));
    return number.toString(operands.radix());
}

String divided(const Operands& operands) {
    BigInteger quotient = operands.integer(u"a");
    BigInteger remainder;
    quotient.divide(operands.integer(u"b"), remainder);
    return quotient.toString(operands.radix()) + u" " + remainder.toString(operands.radix());
}

String modularPower(const Operands& operands) {
    BigInteger number = operands.integer(u"a");
    number.modPow(operands.integer(u"b"), operands.integer(u"m"));
    return number.toString(operands.radix());
}

template <void (BigInteger::*operation)(const BigInteger&)>
String reduced(const Operands& operands) {
    BigInteger number = operands.integer(u"a");
    (number.*operation)(operands.modulus());
    return number.toString(operands.radix());
}

constexpr Operation integerOperations[] = {
    {u"add", &changed<&BigInteger::add>},
    {u"sub", &changed<&BigInteger::subtract>},
    {u"mul", &changed<&BigInteger::multiply>},
    {u"div", &divided},
    {u"mod", &reduced<&BigInteger::mod>},
    {u"pow", &changed<&BigInteger::pow>},
    {u"modpow", &modularPower},
    {u"modinv", &reduced<&BigInteger::modInverse>},
    {u"gcd", &changed<&BigInteger::gcd>},
    {u"cmp",
     [](const Operands& operands) {
         return String::valueOf(operands.integer(u"a").compareTo(operands.integer(u"b")));
     }},
    {u"tostring",
     [](const Operands& operands) { return operands.integer(u"a").toString(operands.radix()); }},
};

// --- Decimal numbers ---

template <void (BigDecimal::*operation)(const BigDecimal&)>
String changedDecimal(const Operands& operands) {
    BigDecimal number = operands.decimal(u"a");
    (number.*operation)(operands.decimal(u"b"));
    return number.toString();
}

String dividedDecimal(const Operands& operands) {
    BigDecimal number = operands.decimal(u"a");
    number.divide(operands.decimal(u"b"), operands.scale());
    return number.toString();
}

String rescaled(const Operands& operands) {
    BigDecimal number = operands.decimal(u"a");
    number.setScale(operands.scale());
    return number.toString();
}

constexpr Operation decimalOperations[] = {
    {u"add", &changedDecimal<&BigDecimal::add>},
    {u"sub", &changedDecimal<&BigDecimal::subtract>},
    {u"mul", &changedDecimal<&BigDecimal::multiply>},
    {u"div", &dividedDecimal},
    {u"cmp",
     [](const Operands& operands) {
         return String::valueOf(operands.decimal(u"a").compareTo(operands.decimal(u"b")));
     }},
    {u"setscale", &rescaled},
    {u"tostring", [](const Operands& operands) { return operands.decimal(u"a").toString(); }},
};

} // namespace

void runBigInt(const Arguments& arguments) { runOperation(integerOperations, arguments); }

void runDecimal(const Arguments& arguments) { runOperation(decimalOperations, arguments); }

} // namespace tool
