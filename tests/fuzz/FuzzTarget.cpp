// The libFuzzer program of one room; KORVANE_FUZZ_CHECK names its check.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/Checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string difference = fuzz::KORVANE_FUZZ_CHECK(data, size);
    if (!difference.empty()) {
        std::fputs(difference.c_str(), stderr);
        std::abort();
    }
    return 0;
}
