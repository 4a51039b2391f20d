// qv::math::BigInteger; its peers are in peers/.

#include "NumbersBench.h"

#include "qv/math/BigDecimal.h"
#include "qv/math/BigInteger.h"

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;
using qv::String;
using qv::math::BigInteger;

String text(int digits, unsigned seed = 1) {
    const std::string narrow = bench::digits(digits, seed);
    return String(std::u16string(narrow.begin(), narrow.end()).c_str());
}

BigInteger number(benchmark::State& state, unsigned seed = 1, int factor = 1) {
    return BigInteger(text(factor * static_cast<int>(state.range(0)), seed));
}

void forSizes(benchmark::internal::Benchmark* benchmark) {
    for (const int size : bench::sizes) {
        benchmark->Arg(size);
    }
}

void add(benchmark::State& state) {
    const BigInteger a = number(state);
    const BigInteger b = number(state, 2);
    BigInteger sum;
    for (auto _ : state) {
        sum = a;
        sum.add(b);
        DoNotOptimize(sum.getData());
    }
}
BENCHMARK(add)->Name("add/qv")->Apply(forSizes);

void multiply(benchmark::State& state) {
    const BigInteger a = number(state);
    const BigInteger b = number(state, 2);
    BigInteger product;
    for (auto _ : state) {
        product = a;
        product.multiply(b);
        DoNotOptimize(product.getData());
    }
}
BENCHMARK(multiply)->Name("multiply/qv")->Apply(forSizes);

void square(benchmark::State& state) {
    const BigInteger a = number(state);
    BigInteger product;
    for (auto _ : state) {
        product = a;
        product.multiply(product);
        DoNotOptimize(product.getData());
    }
}
BENCHMARK(square)->Name("square/qv")->Apply(forSizes);

/// Twice the digits by the digits.
void divide(benchmark::State& state) {
    const BigInteger a = number(state, 1, 2);
    const BigInteger b = number(state, 2);
    BigInteger quotient;
    BigInteger remainder;
    for (auto _ : state) {
        quotient = a;
        quotient.divide(b, remainder);
        DoNotOptimize(quotient.getData());
    }
}
BENCHMARK(divide)->Name("divide/qv")->Apply(forSizes);

void parse(benchmark::State& state) {
    const String digits = text(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        BigInteger parsed(digits);
        DoNotOptimize(parsed.getData());
    }
}
BENCHMARK(parse)->Name("parse/qv")->Apply(forSizes);

void print(benchmark::State& state) {
    const BigInteger a = number(state);
    for (auto _ : state) {
        const String digits = a.toString();
        DoNotOptimize(digits.getData());
    }
}
BENCHMARK(print)->Name("print/qv")->Apply(forSizes);

void modularPower(benchmark::State& state) {
    const BigInteger a = number(state);
    const BigInteger e = number(state, 2);
    BigInteger m = number(state, 3);
    m.setBit(0);
    for (auto _ : state) {
        BigInteger power(a);
        power.modPow(e, m);
        DoNotOptimize(power.getData());
    }
}
BENCHMARK(modularPower)->Name("modpow/qv")->Arg(100)->Arg(1000);

void commonDivisor(benchmark::State& state) {
    const BigInteger a = number(state);
    const BigInteger b = number(state, 2);
    for (auto _ : state) {
        BigInteger divisor(a);
        divisor.gcd(b);
        DoNotOptimize(divisor.getData());
    }
}
BENCHMARK(commonDivisor)->Name("gcd/qv")->Arg(100)->Arg(1000)->Arg(10000);

void decimalFromDouble(benchmark::State& state) {
    for (auto _ : state) {
        const qv::math::BigDecimal decimal(12345.678901);
        DoNotOptimize(decimal.getScale());
    }
}
BENCHMARK(decimalFromDouble)->Name("decimal_from_double/qv");

} // namespace
