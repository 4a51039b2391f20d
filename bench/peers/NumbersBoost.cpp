// Boost's big integers on the inputs of the benchmarks.

#include "../NumbersBench.h"

#include <benchmark/benchmark.h>
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wpedantic"
#include <boost/multiprecision/cpp_int.hpp>
#pragma GCC diagnostic pop

namespace {

using benchmark::DoNotOptimize;
using boost::multiprecision::cpp_int;

cpp_int number(benchmark::State& state, unsigned seed = 1, int factor = 1) {
    return cpp_int(bench::digits(factor * static_cast<int>(state.range(0)), seed));
}

void forSizes(benchmark::internal::Benchmark* benchmark) {
    for (const int size : bench::sizes) {
        benchmark->Arg(size);
    }
}

void addBoost(benchmark::State& state) {
    const cpp_int a = number(state);
    const cpp_int b = number(state, 2);
    cpp_int sum;
    for (auto _ : state) {
        sum = a;
        sum += b;
        DoNotOptimize(sum.backend().limbs());
    }
}
BENCHMARK(addBoost)->Name("add/Boost")->Apply(forSizes);

void multiplyBoost(benchmark::State& state) {
    const cpp_int a = number(state);
    const cpp_int b = number(state, 2);
    cpp_int product;
    for (auto _ : state) {
        product = a;
        product *= b;
        DoNotOptimize(product.backend().limbs());
    }
}
BENCHMARK(multiplyBoost)->Name("multiply/Boost")->Apply(forSizes);

void squareBoost(benchmark::State& state) {
    const cpp_int a = number(state);
    cpp_int product;
    for (auto _ : state) {
        product = a;
        product *= product;
        DoNotOptimize(product.backend().limbs());
    }
}
BENCHMARK(squareBoost)->Name("square/Boost")->Apply(forSizes);

void divideBoost(benchmark::State& state) {
    const cpp_int a = number(state, 1, 2);
    const cpp_int b = number(state, 2);
    cpp_int quotient;
    cpp_int remainder;
    for (auto _ : state) {
        boost::multiprecision::divide_qr(a, b, quotient, remainder);
        DoNotOptimize(quotient.backend().limbs());
    }
}
BENCHMARK(divideBoost)->Name("divide/Boost")->Apply(forSizes);

void parseBoost(benchmark::State& state) {
    const std::string digits = bench::digits(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        cpp_int parsed(digits);
        DoNotOptimize(parsed.backend().limbs());
    }
}
BENCHMARK(parseBoost)->Name("parse/Boost")->Apply(forSizes);

void printBoost(benchmark::State& state) {
    const cpp_int a = number(state);
    for (auto _ : state) {
        const std::string digits = a.str();
        DoNotOptimize(digits.data());
    }
}
BENCHMARK(printBoost)->Name("print/Boost")->Apply(forSizes);

void modularPowerBoost(benchmark::State& state) {
    const cpp_int a = number(state);
    const cpp_int e = number(state, 2);
    const cpp_int m = number(state, 3) | 1;
    for (auto _ : state) {
        const cpp_int power = boost::multiprecision::powm(a, e, m);
        DoNotOptimize(power.backend().limbs());
    }
}
BENCHMARK(modularPowerBoost)->Name("modpow/Boost")->Arg(100)->Arg(1000);

void commonDivisorBoost(benchmark::State& state) {
    const cpp_int a = number(state);
    const cpp_int b = number(state, 2);
    for (auto _ : state) {
        const cpp_int divisor = boost::multiprecision::gcd(a, b);
        DoNotOptimize(divisor.backend().limbs());
    }
}
BENCHMARK(commonDivisorBoost)->Name("gcd/Boost")->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
