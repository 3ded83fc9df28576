#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "support/ExitGuard.h"

namespace {

constexpr int kEndedTooEarly = 86;  // exit status

bool processMayEnd = false;

void failUnlessFinished() {
    if (processMayEnd) return;
    std::fputs("The process ended before the test runner had finished.\n", stderr);
    std::_Exit(kEndedTooEarly);
}

}  // namespace

void support::expectProcessEnd() {
    processMayEnd = true;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // A death test runs in a process of its own, so the threads of other tests do not matter to it.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    std::atexit(failUnlessFinished);
    const int result = RUN_ALL_TESTS();
    processMayEnd = true;
    return result;
}
