// A process in which no thread can be started.

#ifndef KORVANE_TESTS_BOUNDARY_THREADSHORTAGE_H
#define KORVANE_TESTS_BOUNDARY_THREADSHORTAGE_H

namespace boundary {

/// From construction to destruction, whoever starts a thread is told that the system has no room for it.
class ThreadShortage {
public:
    ThreadShortage();
    ~ThreadShortage();
    ThreadShortage(const ThreadShortage&) = delete;
    ThreadShortage& operator=(const ThreadShortage&) = delete;

    /// Whether this system has a way to it.
    static bool isPossible();
};

}  // namespace boundary

#endif  // KORVANE_TESTS_BOUNDARY_THREADSHORTAGE_H
