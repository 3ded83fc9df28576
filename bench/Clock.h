/// @file Clock.h
/// @brief The two clocks of the benchmark, in seconds.

#ifndef KORVANE_BENCH_CLOCK_H
#define KORVANE_BENCH_CLOCK_H

#include <chrono>

#if defined(_WIN32)
#include <windows.h>
#else
#include <ctime>
#endif

namespace bench {

/// Wall time, for what starts threads.
inline double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

#if defined(_WIN32)

/// Processor cycles that the calling thread has taken; 0 where the system does not count them, as Wine does not.
inline double threadCycles() {
    ULONG64 cycles = 0;
    return QueryThreadCycleTime(GetCurrentThread(), &cycles) != 0 ? static_cast<double>(cycles) : 0.0;
}

/// Measured over a while that is long enough for both clocks; 0 without cycles.
inline double secondsPerCycle() {
    constexpr double kWhile = 0.05;  // seconds
    const double start = wallSeconds();
    const double startCycles = threadCycles();
    double seconds = 0.0;
    while (seconds < kWhile) seconds = wallSeconds() - start;
    const double cycles = threadCycles() - startCycles;
    return cycles > 0.0 ? seconds / cycles : 0.0;
}

/// Processor time of the calling thread, or wall time where there is none. (The system's own sum of a thread's time
/// grows by whole ticks of 10 ms or more.)
inline double threadSeconds() {
    static const double perCycle = secondsPerCycle();
    return perCycle > 0.0 ? threadCycles() * perCycle : wallSeconds();
}

#else

/// Processor time of the calling thread: what other programs take in between does not count.
inline double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

#endif

using Clock = double (*)();

}  // namespace bench

#endif  // KORVANE_BENCH_CLOCK_H
