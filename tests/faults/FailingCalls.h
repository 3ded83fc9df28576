// Allocations and thread starts that fail when a test says so. A program that links FailingCalls.cpp has its global
// allocation functions and pthread_create replaced, so it is a program of its own.

#ifndef KORVANE_TESTS_FAULTS_FAILINGCALLS_H
#define KORVANE_TESTS_FAULTS_FAILINGCALLS_H

#include <atomic>
#include <cstddef>

/// Counts the calls of one kind while it is watched, and tells which of them has to fail.
class CallCounter {
public:
    /// Counts from 1 again and fails the `failing`-th call; 0 fails none.
    void watch(int failing) {
        calls_ = 0;
        failing_ = failing;
        watched_ = true;
    }
    void release() { watched_ = false; }
    /// Calls since the last `watch`, the failed one among them.
    int calls() const { return calls_; }
    /// For the replaced function: counts a call and tells whether to fail it.
    bool nextFails() { return watched_ && ++calls_ == failing_; }

private:
    std::atomic<bool> watched_ = false;
    std::atomic<int> calls_ = 0;
    std::atomic<int> failing_ = 0;
};

extern CallCounter allocations;
extern CallCounter threadStarts;

/// What `allocations` had counted when a thread start was last made to fail.
extern std::atomic<int> allocationsBeforeFailedStart;

/// Allocations of the program that are not freed yet.
extern std::atomic<long> liveAllocations;

/// A single allocation of more than this always fails, as if the machine had no more memory.
inline constexpr std::size_t kLargestAllocation = std::size_t{1} << 28;  // bytes

/// Watches a counter for the length of a scope.
class Watch {
public:
    explicit Watch(CallCounter& counter, int failing = 0) : counter_(counter) { counter_.watch(failing); }
    ~Watch() { counter_.release(); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

private:
    CallCounter& counter_;
};

#endif  // KORVANE_TESTS_FAULTS_FAILINGCALLS_H
