// Digests and ciphers, beside those of OpenSSL and POCO where they are at hand.

#include "qv/crypto/BlowFish.h"
#include "qv/crypto/MD5Digest.h"

#include <benchmark/benchmark.h>
#include <vector>

#if __has_include(<openssl/md5.h>)
#    define BENCH_OPENSSL 1
#    define OPENSSL_SUPPRESS_DEPRECATED // the direct calls cost the least, and are what is to be
                                        // met
#    include <openssl/blowfish.h>
#    include <openssl/md5.h>
#endif
#if __has_include(<Poco/MD5Engine.h>)
#    define BENCH_POCO 1
#    include <Poco/MD5Engine.h>
#endif

namespace {

using Bytes = std::vector<signed char>;

constexpr int longLength = 1 << 20; // bytes
constexpr signed char key[] = "a key of sixteen";

Bytes made(std::int64_t length) {
    Bytes bytes(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<signed char>(i * 7 % 251);
    }
    return bytes;
}

void countBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void md5Qv(benchmark::State& state) {
    const Bytes bytes = made(state.range(0));
    qv::crypto::MD5Digest digest;
    signed char out[16];
    for (auto _ : state) {
        digest.update(bytes.data(), static_cast<int>(bytes.size()));
        digest.getDigest(out, 16);
        benchmark::DoNotOptimize(out);
    }
    countBytes(state);
}
BENCHMARK(md5Qv)->Name("md5/qv")->Arg(16)->Arg(1024)->Arg(longLength);

template <auto operation>
void cipherQv(benchmark::State& state) {
    const qv::crypto::BlowFish cipher(key, 16);
    Bytes bytes = made(state.range(0));
    for (auto _ : state) {
        (cipher.*operation)(bytes.data(), bytes.data(), static_cast<std::int32_t>(bytes.size()));
        benchmark::DoNotOptimize(bytes.data());
    }
    countBytes(state);
}
BENCHMARK(cipherQv<&qv::crypto::BlowFish::encrypt>)
    ->Name("blowfish_encrypt/qv")
    ->Arg(8)
    ->Arg(1024)
    ->Arg(longLength);
BENCHMARK(cipherQv<&qv::crypto::BlowFish::decrypt>)
    ->Name("blowfish_decrypt/qv")
    ->Arg(1024)
    ->Arg(longLength);

void keyQv(benchmark::State& state) {
    for (auto _ : state) {
        const qv::crypto::BlowFish cipher(key, 16);
        benchmark::DoNotOptimize(&cipher);
    }
}
BENCHMARK(keyQv)->Name("blowfish_key/qv");

#ifdef BENCH_OPENSSL

void md5OpenSsl(benchmark::State& state) {
    const Bytes bytes = made(state.range(0));
    unsigned char out[MD5_DIGEST_LENGTH];
    for (auto _ : state) {
        MD5_CTX context;
        MD5_Init(&context);
        MD5_Update(&context, bytes.data(), bytes.size());
        MD5_Final(out, &context);
        benchmark::DoNotOptimize(out);
    }
    countBytes(state);
}
BENCHMARK(md5OpenSsl)->Name("md5/OpenSSL")->Arg(16)->Arg(1024)->Arg(longLength);

template <int way>
void cipherOpenSsl(benchmark::State& state) {
    BF_KEY schedule;
    BF_set_key(&schedule, 16, reinterpret_cast<const unsigned char*>(key));
    Bytes bytes = made(state.range(0));
    for (auto _ : state) {
        auto* const data = reinterpret_cast<unsigned char*>(bytes.data());
        for (std::size_t at = 0; at < bytes.size(); at += BF_BLOCK) {
            BF_ecb_encrypt(data + at, data + at, &schedule, way);
        }
        benchmark::DoNotOptimize(bytes.data());
    }
    countBytes(state);
}
BENCHMARK(cipherOpenSsl<BF_ENCRYPT>)
    ->Name("blowfish_encrypt/OpenSSL")
    ->Arg(8)
    ->Arg(1024)
    ->Arg(longLength);
BENCHMARK(cipherOpenSsl<BF_DECRYPT>)->Name("blowfish_decrypt/OpenSSL")->Arg(1024)->Arg(longLength);

void keyOpenSsl(benchmark::State& state) {
    for (auto _ : state) {
        BF_KEY schedule;
        BF_set_key(&schedule, 16, reinterpret_cast<const unsigned char*>(key));
        benchmark::DoNotOptimize(&schedule);
    }
}
BENCHMARK(keyOpenSsl)->Name("blowfish_key/OpenSSL");

#endif

#ifdef BENCH_POCO

void md5Poco(benchmark::State& state) {
    const Bytes bytes = made(state.range(0));
    Poco::MD5Engine engine;
    for (auto _ : state) {
        engine.update(bytes.data(), bytes.size());
        benchmark::DoNotOptimize(engine.digest().data());
    }
    countBytes(state);
}
BENCHMARK(md5Poco)->Name("md5/POCO")->Arg(16)->Arg(1024)->Arg(longLength);

#endif

} // namespace
