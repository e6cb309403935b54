// The MD5 digest of 1 MiB of random bytes, beside OpenSSL's digest through its EVP interface.
// Before timing, the two digests are compared.
#include "toolkit/md5.h"

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<std::uint8_t> randomBytes(size_t n) {
    std::mt19937_64 rng(1);
    std::vector<std::uint8_t> bytes(n);
    for (auto& b : bytes)
        b = static_cast<std::uint8_t>(rng());
    return bytes;
}

std::string peerDigest(const std::vector<std::uint8_t>& bytes) {
    unsigned char md[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (!EVP_Digest(bytes.data(), bytes.size(), md, &length, EVP_md5(), nullptr)) return "";
    static const char kHex[] = "0123456789abcdef";
    std::string hex;
    for (unsigned i = 0; i < length; ++i) {
        hex += kHex[md[i] >> 4];
        hex += kHex[md[i] & 15];
    }
    return hex;
}

void BM_Ours_Md5(benchmark::State& state) {
    const auto bytes = randomBytes(static_cast<size_t>(state.range(0)));
    {
        CMD5Checksum md5;
        md5.Update(bytes.data(), bytes.size());
        const CString ours = md5.Final();
        const std::string peer = peerDigest(bytes);
        if (std::wstring(ours.GetString()) != std::wstring(peer.begin(), peer.end())) {
            state.SkipWithError("the digests differ");
            return;
        }
    }
    for (auto _ : state) {
        CMD5Checksum md5;
        md5.Update(bytes.data(), bytes.size());
        const CString digest = md5.Final();
        benchmark::DoNotOptimize(digest.GetString());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_OpenSsl_Md5(benchmark::State& state) {
    const auto bytes = randomBytes(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        unsigned char md[EVP_MAX_MD_SIZE];
        unsigned int length = 0;
        EVP_Digest(bytes.data(), bytes.size(), md, &length, EVP_md5(), nullptr);
        benchmark::DoNotOptimize(md);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_Ours_Md5)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenSsl_Md5)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
