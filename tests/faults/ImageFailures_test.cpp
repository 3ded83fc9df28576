// What the image methods leave behind where memory ends or a thread cannot start.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <system_error>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "faults/FailingCalls.h"
#include "support/ExitGuard.h"
#include "support/Support.h"

using namespace support;

namespace {

constexpr unsigned char kOld = 7;  // grey value that the caller left in the output
constexpr int kOldLabel = -3;

using Bytes = std::vector<unsigned char>;

/// The code of the std::system_error that a call ends with; none where it returns.
template <class Operation>
std::error_code reasonOfSystemError(Operation operation) {
    try {
        operation();
    } catch (const std::system_error& failure) {
        return failure.code();
    }
    return {};
}

// CalcImageBuffer, on frames of 4 x 4 pixels of one grey value. The previous frame of the process is forgotten before
// every test.

class CalcImageBufferFailure : public testing::Test {
protected:
    void SetUp() override {
        setRoi(algo, 4, 4);
        Image unread(4, 4);
        algo.CalcImageBuffer(unread.data(), unread.data(), false);
    }

    void call(Image& frame, Image& out) {
        setRoi(algo, frame.width(), frame.height());
        algo.CalcImageBuffer(frame.data(), out.data(), true);
    }

    Bytes stabilised(unsigned char grey) {
        Image frame(4, 4, grey);
        Image out(4, 4, kOld);
        call(frame, out);
        return out.pixels();
    }

    KorvaneLaserAlgo algo;
};

/// Two values for the upper and the lower half of a 4 x 4 image.
Bytes halves(unsigned char upper, unsigned char lower) {
    Bytes greys(16, upper);
    std::fill(greys.begin() + 8, greys.end(), lower);
    return greys;
}

// Otsu3, on a frame with a small blob in column 0 and a stripe in row 50.

struct BlobFrame {
    BlobFrame() : src(8, 60), out(8, 60, kOld), labels(8 * 60, kOldLabel) {
        for (int x = 0; x < 8; ++x) src.at(50, x) = 150;
        for (int y = 0; y < 30; ++y) src.at(y, 0) = 200;
    }
    void select() {
        KorvaneLaserAlgo algo;
        setRoi(algo, 8, 60);
        algo.Otsu3(out.data(), labels.data(), src.data());
    }
    bool hasItsBlob() { return src.at(0, 0) == 200 && src.at(29, 0) == 200; }
    bool hasLostItsBlob() { return src.at(0, 0) == 0 && src.at(29, 0) == 0; }
    bool outputsAreUntouched() {
        const Bytes greys = out.pixels();
        return std::all_of(greys.begin(), greys.end(), [](unsigned char grey) { return grey == kOld; }) &&
               std::all_of(labels.data(), labels.data() + labels.size(), [](int label) { return label == kOldLabel; });
    }

    Image src;
    Image out;
    GuardedBuffer<int> labels;
};

BlobFrame* frameOfTerminatedCall = nullptr;  // for the terminate handler of a death test

/// Runs `Otsu3` with a thread start that fails, and reports std::terminate in words.
void selectWithFailingStart(int failing) {
    support::expectProcessEnd();
    std::set_terminate([] {
        std::fputs(frameOfTerminatedCall->hasLostItsBlob() ? "terminated without the blob" : "terminated", stderr);
        std::abort();
    });
    BlobFrame frame;
    frameOfTerminatedCall = &frame;
    const Watch watch(threadStarts, failing);
    try {
        frame.select();
    } catch (...) {
        std::fputs("an exception left", stderr);
    }
}

// AutoExposure, on frames of 4 columns of one bright width.

class AutoExposureFailure : public testing::Test {
protected:
    void SetUp() override { ask(4, 4, 1, 1.0, false); }

    std::vector<double> ask(int width, int height, int brightWidth, double exposure, bool enable = true) {
        Image frame(width, height);
        for (int y = 0; y < brightWidth; ++y) std::fill_n(&frame.at(y, 0), width, static_cast<unsigned char>(255));
        return ask(frame, exposure, enable);
    }

    /// The proposal, or nothing.
    std::vector<double> ask(Image& frame, double exposure, bool enable = true) {
        setRoi(algo, frame.width(), frame.height());
        double proposal = 0.0;
        if (algo.AutoExposure(frame.data(), 6.0, exposure, 0.0, 1000.0, 2.0, enable, proposal)) return {proposal};
        return {};
    }

    KorvaneLaserAlgo algo;
};

}  // namespace

// GaussianBlur

TEST(GaussianBlurFailure, EndOfMemoryLeavesAsBadAllocAndTheDestinationAsACopyOfTheSource) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 8, 8);
    Image src(8, 8, 100);
    Image dst(8, 8, kOld);
    int failures = 0;
    for (bool done = false; !done;) {
        const Watch watch(allocations, failures + 1);
        try {
            algo.GaussianBlur(src.data(), dst.data(), 5);
            done = true;
        } catch (const std::bad_alloc&) {
            ++failures;
            EXPECT_EQ(dst.pixels(), Bytes(64, 100));
            std::fill_n(dst.data(), 64, kOld);
        }
    }
    EXPECT_GE(failures, 1);
    EXPECT_EQ(src.pixels(), Bytes(64, 100));
}

// Otsu3

TEST(Otsu3Failure, EndOfMemoryForTheMaskComesBeforeAnythingIsChanged) {
    BlobFrame frame;
    {
        const Watch watch(allocations, 1);
        EXPECT_THROW(frame.select(), std::bad_alloc);
    }
    EXPECT_TRUE(frame.hasItsBlob());
    EXPECT_TRUE(frame.outputsAreUntouched());
}

TEST(Otsu3Failure, FailureOfTheFirstThreadLeavesAsSystemErrorAndTheSourceHasLostItsBlob) {
    BlobFrame frame;
    {
        const Watch watch(threadStarts, 1);
        EXPECT_THROW(frame.select(), std::system_error);
    }
    EXPECT_EQ(threadStarts.calls(), 1);
    EXPECT_TRUE(frame.hasLostItsBlob());
    EXPECT_TRUE(frame.outputsAreUntouched());

    frame.select();  // and the next call works
    EXPECT_EQ(frame.out.at(50, 7), 150);
}

TEST(Otsu3Failure, FailureOfTheFirstThreadTellsItsReasonAndLosesNoMemory) {
    BlobFrame frame;
    const long live = liveAllocations;
    {
        const Watch watch(threadStarts, 1);
        EXPECT_EQ(reasonOfSystemError([&] { frame.select(); }), std::errc::resource_unavailable_try_again);
    }
    EXPECT_EQ(liveAllocations, live);
}

TEST(Otsu3FailureDeathTest, FailureOfALaterThreadEndsTheProcessThroughTerminate) {
    EXPECT_DEATH(selectWithFailingStart(2), "terminated without the blob");
    EXPECT_DEATH(selectWithFailingStart(3), "terminated without the blob");
    EXPECT_DEATH(selectWithFailingStart(4), "terminated without the blob");
}

TEST(Otsu3Failure, FourThreadsAreStarted) {
    BlobFrame frame;
    const Watch watch(threadStarts);
    frame.select();
    EXPECT_EQ(threadStarts.calls(), 4);
    EXPECT_EQ(frame.out.at(50, 0), 150);
    EXPECT_EQ(frame.out.at(50, 7), 150);
}

// CalcImageBuffer

TEST_F(CalcImageBufferFailure, TwoThreadsAreStartedForEveryFrameButTheFirst) {
    const Watch watch(threadStarts);
    stabilised(100);
    EXPECT_EQ(threadStarts.calls(), 0);
    stabilised(100);
    EXPECT_EQ(threadStarts.calls(), 2);
    stabilised(100);
    EXPECT_EQ(threadStarts.calls(), 4);
}

TEST_F(CalcImageBufferFailure, FailureOfTheFirstThreadLeavesAsSystemErrorAndNothingIsDone) {
    stabilised(100);
    Image frame(4, 4, 150);
    Image out(4, 4, kOld);
    {
        const Watch watch(threadStarts, 1);
        EXPECT_THROW(call(frame, out), std::system_error);
    }
    EXPECT_EQ(threadStarts.calls(), 1);
    EXPECT_EQ(out.pixels(), Bytes(16, kOld));
    EXPECT_EQ(stabilised(120), Bytes(16, 100));  // compared with 100 still
}

TEST_F(CalcImageBufferFailure, FailureOfTheSecondThreadLeavesAsSystemErrorAfterTheFirstHasDoneItsHalf) {
    stabilised(100);
    Image frame(4, 4, 150);
    Image out(4, 4, kOld);
    {
        const Watch watch(threadStarts, 2);
        EXPECT_THROW(call(frame, out), std::system_error);
    }
    EXPECT_EQ(threadStarts.calls(), 2);
    EXPECT_EQ(out.pixels(), halves(100, kOld));
    EXPECT_EQ(stabilised(170), halves(150, 100));  // the upper half is compared with 150, the lower with 100 still
}

TEST_F(CalcImageBufferFailure, EndOfMemoryWhileAFrameOfAnotherSizeIsStoredLeavesThePreviousFrameAsItWas) {
    stabilised(100);
    Image large(64, 64, 200);  // stored nowhere else in this program, so its memory is not there yet
    Image out(64, 64, kOld);
    {
        const Watch watch(allocations, 1);
        EXPECT_THROW(call(large, out), std::bad_alloc);
    }
    EXPECT_EQ(stabilised(150), Bytes(16, 100));
}

TEST_F(CalcImageBufferFailure, EndOfMemoryWhileAFirstFrameIsStoredLeavesNoFrame) {
    Image large(64, 64, 200);
    Image out(64, 64, kOld);
    {
        const Watch watch(allocations, 1);
        EXPECT_THROW(call(large, out), std::bad_alloc);
    }
    EXPECT_EQ(stabilised(150), Bytes(16, 150));
}

TEST_F(CalcImageBufferFailure, FailureOfAThreadTellsItsReasonAndLosesNoMemory) {
    Image frame(4, 4, 150);
    Image out(4, 4, kOld);
    for (const int failing : {1, 2}) {
        stabilised(100);
        const long live = liveAllocations;
        {
            const Watch watch(threadStarts, failing);
            EXPECT_EQ(reasonOfSystemError([&] { call(frame, out); }), std::errc::resource_unavailable_try_again);
        }
        EXPECT_EQ(liveAllocations, live) << "thread " << failing;
    }
}

// AutoExposure

TEST_F(AutoExposureFailure, EndOfMemoryWhileAFrameOfAnotherSizeIsStoredLeavesThePreviousFrameAndExposureAsTheyWere) {
    ask(4, 8, 2, 10.0);
    Image large(64, 64, 255);  // stored nowhere else in this program, so its memory is not there yet
    {
        const Watch watch(allocations, 1);
        EXPECT_THROW(ask(large, 20.0), std::bad_alloc);
    }
    // Widths 2 and 4 at 10 and 20 reach 6 at 30; with 20 stored there would be a step to 22, with the large frame
    // stored no proposal.
    const std::vector<double> proposal = ask(4, 8, 4, 20.0);
    ASSERT_EQ(proposal.size(), 1u);
    EXPECT_NEAR(proposal[0], 30.0, 1e-8);
}

TEST_F(AutoExposureFailure, EndOfMemoryWhileAFirstFrameIsStoredLeavesNoFrameAndThePreviousExposureAsItWas) {
    ask(4, 8, 2, 10.0);
    ask(4, 8, 2, 10.0, false);
    Image large(64, 64, 255);
    {
        const Watch watch(allocations, 1);
        EXPECT_THROW(ask(large, 20.0), std::bad_alloc);
    }
    // A region without pixels meets the empty frame as equal and tells the previous exposure: a step from 10.
    EXPECT_EQ(ask(0, 0, 0, 10.0), std::vector<double>{12.0});
}
