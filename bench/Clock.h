/// @file Clock.h
/// @brief The two clocks of the benchmark, in seconds.

#ifndef KORVANE_BENCH_CLOCK_H
#define KORVANE_BENCH_CLOCK_H

#include <chrono>

#if defined(_WIN32)
#define NOMINMAX
#include <windows.h>
#else
#include <ctime>
#endif

namespace bench {

/// Processor time of the calling thread: what other programs take in between does not count.
inline double threadSeconds() {
#if defined(_WIN32)
    FILETIME created;
    FILETIME ended;
    FILETIME kernel;
    FILETIME user;
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(time.dwHighDateTime) * 4294967296.0 + static_cast<double>(time.dwLowDateTime);
    };
    constexpr double kTick = 1e-7;
    return (ticks(kernel) + ticks(user)) * kTick;
#else
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
#endif
}

/// Wall time, for what starts threads.
inline double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

using Clock = double (*)();

}  // namespace bench

#endif  // KORVANE_BENCH_CLOCK_H
