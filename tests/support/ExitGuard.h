// A library call that ends the process with status 0 would make a test program look green. Every test program sets a
// guard at its start: if the process ends before the program has finished, it ends with status 86 and says so.

#ifndef KORVANE_TESTS_SUPPORT_EXITGUARD_H
#define KORVANE_TESTS_SUPPORT_EXITGUARD_H

namespace support {

/// Sets the guard.
void guardAgainstProcessEnd();

/// Lets the exit status through: at the end of the program, and for the statement of a death test that expects the
/// process to end.
void expectProcessEnd();

}  // namespace support

#endif  // KORVANE_TESTS_SUPPORT_EXITGUARD_H
