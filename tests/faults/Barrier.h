// Where threads wait for one another, again and again. In the place of std::barrier: that of GCC 12 for Windows can
// lose a wake-up, and a thread then waits for ever.

#ifndef KORVANE_TESTS_FAULTS_BARRIER_H
#define KORVANE_TESTS_FAULTS_BARRIER_H

#include <condition_variable>
#include <mutex>

namespace faults {

class Barrier {
public:
    explicit Barrier(int threads) : threads_(threads), missing_(threads) {}

    /// Returns when all threads have come here.
    void arriveAndWait() {
        std::unique_lock lock(mutex_);
        if (--missing_ == 0) {
            missing_ = threads_;
            ++round_;
            allHere_.notify_all();
            return;
        }
        allHere_.wait(lock, [this, round = round_] { return round_ != round; });
    }

private:
    const int threads_;
    int missing_;
    unsigned round_ = 0;
    std::mutex mutex_;
    std::condition_variable allHere_;
};

}  // namespace faults

#endif  // KORVANE_TESTS_FAULTS_BARRIER_H
