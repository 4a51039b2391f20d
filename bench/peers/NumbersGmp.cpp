// GMP on the inputs of the benchmarks: hand-written assembly, and so the limit.

#include "../NumbersBench.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <gmp.h>

namespace {

using benchmark::DoNotOptimize;

class Number {
public:
    Number() { mpz_init(value); }
    explicit Number(const std::string& digits) { mpz_init_set_str(value, digits.c_str(), 10); }
    Number(benchmark::State& state, unsigned seed = 1, int factor = 1)
        : Number(bench::digits(factor * static_cast<int>(state.range(0)), seed)) {}
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { mpz_clear(value); }

    mpz_t value;
};

void forSizes(benchmark::internal::Benchmark* benchmark) {
    for (const int size : bench::sizes) {
        benchmark->Arg(size);
    }
}

void addGmp(benchmark::State& state) {
    const Number a(state);
    const Number b(state, 2);
    Number sum;
    for (auto _ : state) {
        mpz_add(sum.value, a.value, b.value);
        DoNotOptimize(sum.value);
    }
}
BENCHMARK(addGmp)->Name("add/Gmp")->Apply(forSizes);

void multiplyGmp(benchmark::State& state) {
    const Number a(state);
    const Number b(state, 2);
    Number product;
    for (auto _ : state) {
        mpz_mul(product.value, a.value, b.value);
        DoNotOptimize(product.value);
    }
}
BENCHMARK(multiplyGmp)->Name("multiply/Gmp")->Apply(forSizes);

void squareGmp(benchmark::State& state) {
    const Number a(state);
    Number product;
    for (auto _ : state) {
        mpz_mul(product.value, a.value, a.value);
        DoNotOptimize(product.value);
    }
}
BENCHMARK(squareGmp)->Name("square/Gmp")->Apply(forSizes);

void divideGmp(benchmark::State& state) {
    const Number a(state, 1, 2);
    const Number b(state, 2);
    Number quotient;
    Number remainder;
    for (auto _ : state) {
        mpz_tdiv_qr(quotient.value, remainder.value, a.value, b.value);
        DoNotOptimize(quotient.value);
    }
}
BENCHMARK(divideGmp)->Name("divide/Gmp")->Apply(forSizes);

void parseGmp(benchmark::State& state) {
    const std::string digits = bench::digits(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const Number parsed(digits);
        DoNotOptimize(parsed.value);
    }
}
BENCHMARK(parseGmp)->Name("parse/Gmp")->Apply(forSizes);

void printGmp(benchmark::State& state) {
    const Number a(state);
    for (auto _ : state) {
        char* const digits = mpz_get_str(nullptr, 10, a.value);
        DoNotOptimize(digits);
        std::free(digits);
    }
}
BENCHMARK(printGmp)->Name("print/Gmp")->Apply(forSizes);

void modularPowerGmp(benchmark::State& state) {
    const Number a(state);
    const Number e(state, 2);
    Number m(state, 3);
    mpz_setbit(m.value, 0);
    Number power;
    for (auto _ : state) {
        mpz_powm(power.value, a.value, e.value, m.value);
        DoNotOptimize(power.value);
    }
}
BENCHMARK(modularPowerGmp)->Name("modpow/Gmp")->Arg(100)->Arg(1000);

void commonDivisorGmp(benchmark::State& state) {
    const Number a(state);
    const Number b(state, 2);
    Number divisor;
    for (auto _ : state) {
        mpz_gcd(divisor.value, a.value, b.value);
        DoNotOptimize(divisor.value);
    }
}
BENCHMARK(commonDivisorGmp)->Name("gcd/Gmp")->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
