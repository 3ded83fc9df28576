// Every method, with every one of its allocations made to fail in turn.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include "faults/Calls.h"
#include "faults/FailingCalls.h"
#include "support/ExitGuard.h"
#include "support/Support.h"

namespace {

using namespace faults;

/// The number of allocations of a call that may fail without the end of the process.
int countFailures(const Call& call, KorvaneLaserAlgo& algo) {
    call.prepare(algo);
    Arguments arguments(call.scene);
    const Watch watch(allocations);
    if (call.memory == Memory::kBuffersThenThreads) {
        const Watch starts(threadStarts, 1);
        EXPECT_THROW(call.call(algo, arguments), std::system_error);
        return allocationsBeforeFailedStart;
    }
    call.call(algo, arguments);
    return allocations.calls();
}

class EndOfMemory : public testing::TestWithParam<Call> {
protected:
    EndOfMemory() { configure(algo); }

    /// Fails the n-th allocation of the call; a library that does without that one may return as if undisturbed.
    void fail(int n) {
        const Call& call = GetParam();
        Arguments arguments(call.scene);
        const Bits before = arguments.bits();
        bool failed = false;
        {
            const Watch watch(allocations, n);
            try {
                call.call(algo, arguments);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        EXPECT_GE(allocations.calls(), n);
        EXPECT_TRUE(arguments.guardsIntact());
        if (!failed) {
            EXPECT_TRUE(arguments.bits() == expected) << "a failure that passed unseen";
        } else if (call.afterFailure == AfterFailure::kUnchanged) {
            EXPECT_TRUE(arguments.bits() == before) << "an argument has changed";
        }
    }

    void expectUndisturbedCall() {
        Arguments arguments(GetParam().scene);
        GetParam().call(algo, arguments);
        EXPECT_TRUE(arguments.bits() == expected) << "the next call gives something else";
    }

    const Bits expected = undisturbed(GetParam());
    KorvaneLaserAlgo algo;
};

}  // namespace

TEST_P(EndOfMemory, LeavesAsBadAllocLosesNothingAndTheNextCallWorks) {
    const Call& call = GetParam();
    const int failures = countFailures(call, algo);
    if (call.memory == Memory::kNone) {
        EXPECT_EQ(failures, 0) << "the row says that this call does not allocate";
    } else {
        EXPECT_GE(failures, 1) << "the row says that this call allocates";
    }
    RecordProperty("failed_allocations", failures);

    for (int n = 1; n <= failures && !HasFailure(); ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n));
        call.prepare(algo);
        const long live = liveAllocations;
        fail(n);
        EXPECT_EQ(liveAllocations, live) << "allocations are not freed, or freed twice";
        if (call.afterFailure == AfterFailure::kAnyOutputsAndRecord) call.prepare(algo);
        expectUndisturbedCall();
    }
}

TEST_P(EndOfMemory, IsNotNearedByCallsThatSucceed) {
    const Call& call = GetParam();
    call.prepare(algo);
    const long live = liveAllocations;
    for (int round = 0; round < 3; ++round) {
        call.prepare(algo);
        expectUndisturbedCall();
    }
    call.prepare(algo);
    EXPECT_EQ(liveAllocations, live) << "allocations are not freed, or freed twice";
}

INSTANTIATE_TEST_SUITE_P(Calls, EndOfMemory, testing::ValuesIn(allCalls()), nameOf);

// ---- sizes beyond all memory: no single allocation is greater than kLargestAllocation in this program

namespace {

/// A frame of more columns than memory has points for, and no rows, so that no pixel is read.
class FrameBeyondMemory : public testing::Test {
protected:
    void SetUp() override { support::setRoi(algo, INT_MAX, 0); }

    template <class Operation>
    void expectBadAlloc(Operation operation) {
        const long live = liveAllocations;
        EXPECT_THROW(operation(), std::bad_alloc);
        EXPECT_EQ(liveAllocations, live);
        EXPECT_FALSE(mask[0]);
    }

    KorvaneLaserAlgo algo;
    bool mask[1] = {false};
    unsigned char pixel[1] = {0};
};

}  // namespace

TEST_F(FrameBeyondMemory, LeavesExtractionAsBadAllocAndTheMaskAsItWas) {
    support::Points2d points;
    expectBadAlloc([&] { algo.Cal2DPoint1(mask, pixel, points, 0); });
    expectBadAlloc([&] { algo.Cal2DPoint1_1(mask, pixel, points); });
    expectBadAlloc([&] { algo.Cal2DPoint2(mask, pixel, points); });
    expectBadAlloc([&] { algo.Cal2DPoint2_1(mask, pixel, points); });
    expectBadAlloc([&] { algo.Cal2DPoint3(mask, pixel, points, 60); });
    expectBadAlloc([&] { algo.Cal2DPoint4(mask, pixel, points, 60); });
}

TEST_F(FrameBeyondMemory, LeavesConversionAsBadAlloc) {
    const support::Points2d points2d;
    support::Profile points3d;
    expectBadAlloc([&] { algo.Cal3DPoint1(mask, points2d, points3d); });
    expectBadAlloc([&] { algo.Cal3DPoint2(mask, points2d, points3d); });
}

TEST_F(FrameBeyondMemory, LeavesMergingAndThresholdingAsBadAlloc) {
    int label = 0;
    expectBadAlloc([&] { algo.MergeImg(pixel, pixel, pixel); });
    expectBadAlloc([&] { algo.Otsu3(pixel, &label, pixel); });
}

// A weight 39 pixels out is 0 in double precision, so no larger kernel needs more memory or gives anything else.
TEST(SizesBeyondMemory, KernelOfABlurNeedsNoMoreMemoryThanItsWeights) {
    KorvaneLaserAlgo algo;
    support::Image src(8, 8, 100);
    src.at(3, 4) = 255;
    support::Image smallest(8, 8);
    support::Image dst(8, 8);
    support::setRoi(algo, 8, 8);
    algo.GaussianBlur(src.data(), smallest.data(), 2 * 39 + 1);
    algo.GaussianBlur(src.data(), dst.data(), INT_MAX);
    EXPECT_EQ(dst.pixels(), smallest.pixels());
    EXPECT_NE(dst.pixels(), src.pixels());
}

TEST(SizesBeyondMemory, DegreeOfAPolynomialLeavesAsBadAllocBeforeAnyMemoryIsFilled) {
    KorvaneLaserAlgo algo;
    const std::vector<double> samples = {1.0};
    for (const int degree : {40000, INT_MAX - 1}) {
        const Watch watch(allocations);
        EXPECT_THROW((void)algo.polynomialFit(samples, samples, degree), std::bad_alloc) << degree;
        EXPECT_LE(allocations.calls(), 1) << "degree " << degree << ": the first allocation must be the one that fails";
    }
}

// ---- a failure that no exception can leave: threads are running already

namespace {

void thresholdWithFailingAllocation(int n) {
    support::expectProcessEnd();
    std::set_terminate([] {
        std::fputs("terminated\n", stderr);
        std::abort();
    });
    KorvaneLaserAlgo algo;
    configure(algo);
    Arguments arguments(Scene::kManyStripes);
    const Watch watch(allocations, n);
    try {
        algo.Otsu3(arguments.out.data(), arguments.labels.data(), arguments.image.data());
    } catch (...) {
        std::fputs("an exception left", stderr);
    }
}

const Call& callNamed(const std::string& name) {
    return *std::find_if(allCalls().begin(), allCalls().end(), [&](const Call& call) { return call.name == name; });
}

}  // namespace

TEST(EndOfMemoryDeathTest, AfterTheFirstThreadOfOtsu3HasStartedEndsTheProcessThroughTerminate) {
    KorvaneLaserAlgo algo;
    configure(algo);
    const int untilFirstThread = countFailures(callNamed("Otsu3"), algo);
    EXPECT_DEATH(thresholdWithFailingAllocation(untilFirstThread + 1), "^terminated\n");
}
