// A library call that ends the process with status 0 would make a test program look green. Every test program is
// linked to a main with a guard: if the process ends before the runner has finished, it ends with status 86 and says
// so.

#ifndef KORVANE_TESTS_SUPPORT_EXITGUARD_H
#define KORVANE_TESTS_SUPPORT_EXITGUARD_H

namespace support {

/// For the statement of a death test that expects the process to end: lets the exit status through.
void expectProcessEnd();

}  // namespace support

#endif  // KORVANE_TESTS_SUPPORT_EXITGUARD_H
