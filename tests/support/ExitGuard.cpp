#include "support/ExitGuard.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kEndedTooEarly = 86;  // exit status

bool processMayEnd = false;

void failUnlessFinished() {
    if (processMayEnd) return;
    std::fputs("The process ended before the tests had finished.\n", stderr);
    std::_Exit(kEndedTooEarly);
}

}  // namespace

void support::guardAgainstProcessEnd() {
    std::atexit(failUnlessFinished);
}

void support::expectProcessEnd() {
    processMayEnd = true;
}
