#include "bench/Floors.h"

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

namespace bench {

namespace {

constexpr std::size_t kLane = 64;         // bytes
constexpr std::size_t kStep = 4 * kLane;  // bytes, so that no lane waits for the one before
volatile std::uint64_t keptAlive = 0;     // takes every result, so that no pass is optimised away

/// Exclusive or of all words; a byte or two at the end are left out where the count is not a multiple of 8.
std::uint64_t foldWords(const unsigned char* bytes, std::size_t count) {
    std::uint64_t lanes[kStep / 8] = {};
    std::size_t i = 0;
    for (; i + kStep <= count; i += kStep) {
        std::uint64_t words[kStep / 8];
        std::memcpy(words, bytes + i, kStep);
        for (std::size_t k = 0; k < kStep / 8; ++k) lanes[k] ^= words[k];
    }
    std::uint64_t folded = 0;
    for (const std::uint64_t lane : lanes) folded ^= lane;
    for (; i + 8 <= count; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes + i, 8);
        folded ^= word;
    }
    return folded;
}

using Fold = std::uint64_t (*)(const unsigned char*, std::size_t);

#if defined(__x86_64__) && defined(__GNUC__)

__attribute__((target("avx2"))) std::uint64_t foldAvx2(const unsigned char* bytes, std::size_t count) {
    constexpr int kRegisters = kStep / 32;
    __m256i lanes[kRegisters];
    for (__m256i& lane : lanes) lane = _mm256_setzero_si256();
    std::size_t i = 0;
    for (; i + kStep <= count; i += kStep) {
#pragma GCC unroll 8
        for (int k = 0; k < kRegisters; ++k) {
            const auto* place = reinterpret_cast<const __m256i*>(bytes + i) + k;
            lanes[k] = _mm256_xor_si256(lanes[k], _mm256_loadu_si256(place));
        }
    }
    for (int k = 1; k < kRegisters; ++k) lanes[0] = _mm256_xor_si256(lanes[0], lanes[k]);
    return foldWords(reinterpret_cast<const unsigned char*>(lanes), sizeof(__m256i)) ^ foldWords(bytes + i, count - i);
}

__attribute__((target("avx512f"))) std::uint64_t foldAvx512(const unsigned char* bytes, std::size_t count) {
    constexpr int kRegisters = kStep / 64;
    __m512i lanes[kRegisters];
    for (__m512i& lane : lanes) lane = _mm512_setzero_si512();
    std::size_t i = 0;
    for (; i + kStep <= count; i += kStep) {
#pragma GCC unroll 4
        for (int k = 0; k < kRegisters; ++k)
            lanes[k] = _mm512_xor_si512(lanes[k], _mm512_loadu_si512(bytes + i + kLane * static_cast<std::size_t>(k)));
    }
    for (int k = 1; k < kRegisters; ++k) lanes[0] = _mm512_xor_si512(lanes[0], lanes[k]);
    return foldWords(reinterpret_cast<const unsigned char*>(lanes), sizeof(__m512i)) ^ foldWords(bytes + i, count - i);
}

Fold widestFold() {
    if (__builtin_cpu_supports("avx512f")) return foldAvx512;
    if (__builtin_cpu_supports("avx2")) return foldAvx2;
    return foldWords;
}

#else

Fold widestFold() {
    return foldWords;
}

#endif

}  // namespace

void readOnce(const void* bytes, std::size_t count) {
    static const Fold fold = widestFold();
    keptAlive = fold(static_cast<const unsigned char*>(bytes), count);
}

void copyOnce(void* to, const void* from, std::size_t count) {
    std::memcpy(to, from, count);
    keptAlive = static_cast<const unsigned char*>(to)[count / 2];
}

void startAndJoin(int threads) {
    std::vector<std::thread> started;
    started.reserve(static_cast<std::size_t>(threads));
    for (int i = 0; i < threads; ++i) started.emplace_back([] {});
    for (std::thread& thread : started) thread.join();
}

}  // namespace bench
