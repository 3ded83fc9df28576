#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/ExitGuard.h"
#include "support/KernelSets.h"

namespace {

constexpr int kSkipped = 77;  // exit status that the runner shows as "skipped"
constexpr int kUsage = 2;     // exit status

}  // namespace

// Test programs take one argument beside the framework's own: --kernels=SET.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string option = "--kernels=";
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind(option, 0) != 0) continue;
        switch (support::chooseKernels(argument.substr(option.size()))) {
            case support::KernelChoice::kActive:
                break;
            case support::KernelChoice::kNotSupported:
                std::printf("Skipped: this processor does not have %s.\n", argument.c_str() + option.size());
                return kSkipped;
            case support::KernelChoice::kUnknown:
                std::printf("Kernels are one of %s.\n", support::kernelSetNames().c_str());
                return kUsage;
        }
    }
#if defined(KORVANE_EMULATED_PROCESSOR)
    // A death test runs in a copy of this process, before all other tests.
    testing::GTEST_FLAG(death_test_style) = "fast";
#else
    // A death test runs in a process of its own, so the threads of other tests do not matter to it.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
#endif
    support::guardAgainstProcessEnd();
    const int result = RUN_ALL_TESTS();
    support::expectProcessEnd();
    return result;
}
