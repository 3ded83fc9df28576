// A long seeded run, for compilers without libFuzzer.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "fuzz/Checks.h"
#include "fuzz/FuzzInput.h"
#include "support/KernelSets.h"

int main(int argc, char** argv) {
    if (argc < 3 || argc > 6 || std::string(argv[1]) != "--cases") {
        std::fputs("usage: fuzz_cases --cases N [SEED [ROOM [KERNELS]]]\n", stderr);
        return 2;
    }
    if (argc > 5 && support::chooseKernels(argv[5]) != support::KernelChoice::kActive) {
        std::fprintf(stderr, "fuzz_cases: kernels are one of %s, as far as the processor has them\n",
                     support::kernelSetNames().c_str());
        return 2;
    }
    const std::uint64_t cases = std::strtoull(argv[2], nullptr, 10);
    const std::uint64_t seed = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 1;
    const std::string only = argc > 4 ? argv[4] : "";

    int finds = 0;
    std::printf("%-12s %12s %8s %9s\n", "room", "cases", "finds", "seconds");
    for (const fuzz::Room& room : fuzz::kRooms) {
        if (!only.empty() && only != room.name) continue;
        const auto start = std::chrono::steady_clock::now();
        std::uint64_t done = 0;
        std::string difference;
        while (done < cases && difference.empty()) {
            const fuzz::Bytes input = fuzz::randomInput(seed, done++);
            difference = room.check(input.data(), input.size());
        }
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        std::printf("%-12s %12llu %8d %9.1f\n", room.name, static_cast<unsigned long long>(done),
                    difference.empty() ? 0 : 1, seconds.count());
        std::fputs(difference.c_str(), stdout);
        std::fflush(stdout);
        finds += difference.empty() ? 0 : 1;
    }
    return finds == 0 ? 0 : 1;
}
