// Which set runs. The shared library chooses once, from the processor; what the tests and the benchmark link can be
// switched (KORVANE_SWITCHABLE_KERNELS).

#include <iterator>

#include "kernels/check/check.h"
#include "kernels/kernels.h"
#include "kernels/plain/plain.h"

#if KORVANE_LANE_SETS > 0 && defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

namespace KORVANELASERALGO::kernels {

// Sets of this build, by KORVANE_LANE_SETS: 0 none, 1 SSE2, 2 up to AVX2, 3 up to AVX512.
#if KORVANE_LANE_SETS > 0
namespace sse2 {
extern const KernelSet kTable;
}
#endif
#if KORVANE_LANE_SETS > 1
namespace avx2 {
extern const KernelSet kTable;
}
#endif
#if KORVANE_LANE_SETS > 2
namespace avx512 {
extern const KernelSet kTable;
}
#endif

namespace {

#if KORVANE_LANE_SETS > 1
#if defined(_MSC_VER) && !defined(__clang__)

bool hasBits(int value, int bits) {
    return (value & bits) == bits;
}

// The processor has the instructions, and the system saves the registers.
bool processorHas(int leaf7Bits, unsigned long long savedState) {
    int registers[4];
    __cpuidex(registers, 0, 0);
    if (registers[0] < 7) return false;  // the last leaf that there is
    __cpuidex(registers, 1, 0);
    constexpr int kSystemSaves = 1 << 27;
    if (!hasBits(registers[2], kSystemSaves) || (_xgetbv(0) & savedState) != savedState) return false;
    __cpuidex(registers, 7, 0);
    return hasBits(registers[1], leaf7Bits);
}

bool hasAvx2() {
    return processorHas(1 << 5 | 1 << 3 | 1 << 8, 0x6);  // AVX2, BMI1, BMI2
}

bool hasAvx512() {
    return hasAvx2() && processorHas(1 << 16 | 1 << 17 | 1 << 30 | static_cast<int>(1u << 31), 0xe6);  // F DQ BW VL
}

#else

bool hasAvx2() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
           __builtin_cpu_supports("popcnt");
}

bool hasAvx512() {
    return hasAvx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
}

#endif
#endif

}  // namespace

SetsOfBuild setsOfBuild() {
    static const SetOfBuild sets[] = {
        {&plain::kTable, true},
#if KORVANE_LANE_SETS > 0
        {&sse2::kTable, true},
#endif
#if KORVANE_LANE_SETS > 1
        {&avx2::kTable, hasAvx2()},
#endif
#if KORVANE_LANE_SETS > 2
        {&avx512::kTable, hasAvx512()},
#endif
    };
    return {std::begin(sets), std::end(sets)};
}

namespace {

const KernelSet& widestOfProcessor() {
    const KernelSet* widest = nullptr;
    for (const SetOfBuild& candidate : setsOfBuild()) {
        if (candidate.supported) widest = candidate.set;
    }
    return *widest;
}

}  // namespace

#ifdef KORVANE_SWITCHABLE_KERNELS

namespace {

const KernelSet*& chosenSet() {
    static const KernelSet* set = &widestOfProcessor();
    return set;
}

}  // namespace

const KernelSet& chosen() {
    return *chosenSet();
}

void activate(const KernelSet& set) {
    chosenSet() = &set;
}

#else

const KernelSet& chosen() {
    static const KernelSet& set = widestOfProcessor();
    return set;
}

#endif

const KernelSet& active() {
#ifdef KORVANE_CHECK_KERNELS
    return check::kTable;
#else
    return chosen();
#endif
}

}  // namespace KORVANELASERALGO::kernels
