// Exceptions that the library throws, in the hands of a host: caught by their types, and over once they are caught.

#include <gtest/gtest.h>

#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "boundary/ThreadShortage.h"

using namespace KORVANELASERALGO;

namespace {

constexpr int kWidth = 8;
constexpr int kHeight = 60;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kRefusesByEnding = true;
#else
constexpr bool kRefusesByEnding = false;
#endif

/// A kernel of impossible size.
void failWithoutMemory() {
    KorvaneLaserAlgo algo;
    std::vector<tagKorvaneLaserPoint3d> profile;
    algo.Gaussianfilter(profile, -1);
}

/// A matrix of 200 terabytes, which no system has addresses for: here `operator new` fails.
void failToAllocate() {
    KorvaneLaserAlgo algo;
    (void)algo.polynomialFit({1.0}, {1.0}, 5'000'000);
}

void failWithImpossibleLength() {
    KorvaneLaserAlgo algo;
    (void)algo.polynomialFit({1.0}, {1.0}, -2);
}

/// A profile that runs backwards, over more than one bucket.
void failWithBackwardProfile() {
    KorvaneLaserAlgo algo;
    std::vector<tagKorvaneLaserPoint3d> profile;
    for (int i = 0; i < 20; ++i) profile.push_back({200.0 - 5.0 * i, 0.0, 1.0});
    std::vector<tagKorvaneLaserPoint3d> out;
    int count = 0;
    algo.Downsample(profile, 1.0F, out, count);
}

/// A host with a black frame.
struct BlackFrame {
    BlackFrame() {
        tagKorvaneLaserAlgoROIInfo roi{0, 0, kWidth, kHeight};
        algo.SetROIInfo(&roi);
    }

    KorvaneLaserAlgo algo;
    std::vector<unsigned char> frame = std::vector<unsigned char>(kWidth * kHeight);
    std::vector<unsigned char> out = std::vector<unsigned char>(kWidth * kHeight);
};

/// `Otsu3` on a black frame.
void startThreadsOfOtsu3() {
    BlackFrame host;
    std::vector<int> labels(kWidth * kHeight);
    host.algo.Otsu3(host.out.data(), labels.data(), host.frame.data());
}

/// `CalcImageBuffer` with a frame as large as the one before it. The first frame of all needs no thread.
void startThreadsOfCalcImageBuffer() {
    BlackFrame host;
    host.algo.CalcImageBuffer(host.frame.data(), host.out.data(), true);
    host.algo.CalcImageBuffer(host.frame.data(), host.out.data(), true);
}

template <class Operation>
void withoutThreads(Operation operation) {
    const boundary::ThreadShortage shortage;
    operation();
}

void failWithoutThreads() {
    withoutThreads(startThreadsOfOtsu3);
}

/// The last of these that fits: the type by which a handler catches what the operation throws.
template <class Operation>
std::string caughtAs(Operation operation) {
    try {
        operation();
    } catch (const std::bad_alloc&) {
        return "std::bad_alloc";
    } catch (const std::length_error& failure) {
        return std::string("std::length_error ") + failure.what();
    } catch (const std::system_error&) {
        return "std::system_error";
    } catch (const std::exception& failure) {
        return std::string("std::exception ") + failure.what();
    } catch (...) {
        return "something else";
    }
    return "nothing";
}

}  // namespace

TEST(ExceptionsOfTheLibrary, AreCaughtByTheirTypes) {
    EXPECT_EQ(caughtAs(failWithoutMemory), "std::bad_alloc");
    EXPECT_EQ(caughtAs(failWithImpossibleLength), "std::length_error vector too long");
    EXPECT_EQ(caughtAs(failWithBackwardProfile), "std::length_error vector too long");
}

TEST(ExceptionsOfTheLibrary, OfTheAllocatorAreCaughtByTheirType) {
    if (kRefusesByEnding) GTEST_SKIP() << "the sanitizer ends a process that asks for so much";
    EXPECT_EQ(caughtAs(failToAllocate), "std::bad_alloc");
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

TEST(ExceptionsOfTheLibrary, AreCaughtByTheirBases) {
    EXPECT_THROW(failWithImpossibleLength(), std::logic_error);
    EXPECT_THROW(failWithImpossibleLength(), std::exception);
    EXPECT_THROW(failWithoutMemory(), std::exception);
}

TEST(ExceptionsOfTheLibrary, AreOverOnceTheyAreCaught) {
    for (int round = 0; round < 3; ++round) {
        caughtAs(failWithoutMemory);
        EXPECT_EQ(std::uncaught_exceptions(), 0);
        caughtAs(failWithImpossibleLength);
        EXPECT_EQ(std::uncaught_exceptions(), 0);
        EXPECT_EQ(std::current_exception(), nullptr);
    }
}

TEST(ExceptionsOfTheLibrary, AreTheCurrentExceptionOfTheirHandler) {
    try {
        failWithImpossibleLength();
        FAIL() << "no exception";
    } catch (...) {
        EXPECT_NE(std::current_exception(), nullptr);
        EXPECT_EQ(std::uncaught_exceptions(), 0);
    }
}

TEST(ExceptionsOfTheLibrary, MayBeThrownAgainAndAreTheSame) {
    const auto again = [] {
        try {
            failWithImpossibleLength();
        } catch (...) {
            throw;
        }
    };
    EXPECT_EQ(caughtAs(again), "std::length_error vector too long");
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

TEST(ExceptionsOfTheLibrary, MayBeKeptAndThrownOnAnotherThread) {
    std::exception_ptr kept;
    std::thread([&] {
        try {
            failWithImpossibleLength();
        } catch (...) {
            kept = std::current_exception();
        }
    }).join();
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(caughtAs([&] { std::rethrow_exception(kept); }), "std::length_error vector too long");
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

TEST(ExceptionsOfTheLibrary, MayMeetTheHostsOwnWhileItUnwinds) {
    struct CallsTheLibrary {
        ~CallsTheLibrary() {
            before = std::uncaught_exceptions();
            caughtAs(failWithoutMemory);
            after = std::uncaught_exceptions();
        }
        int& before;
        int& after;
    };
    int before = -1;
    int after = -1;
    const auto unwindThroughTheLibrary = [&] {
        const CallsTheLibrary atTheEnd{before, after};
        throw std::length_error("the host's own");
    };
    EXPECT_EQ(caughtAs(unwindThroughTheLibrary), "std::length_error the host's own");
    EXPECT_EQ(before, 1);
    EXPECT_EQ(after, 1);
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

TEST(ThreadsOfTheLibrary, ThatCannotStartLeaveAsSystemErrorWithTheReason) {
    if (!boundary::ThreadShortage::isPossible()) GTEST_SKIP() << "threads always start here";
    EXPECT_EQ(caughtAs(failWithoutThreads), "std::system_error");
    startThreadsOfCalcImageBuffer();
    EXPECT_EQ(caughtAs([] { withoutThreads(startThreadsOfCalcImageBuffer); }), "std::system_error");
    EXPECT_EQ(std::uncaught_exceptions(), 0);

    try {
        failWithoutThreads();
        FAIL() << "no exception";
    } catch (const std::system_error& failure) {
        EXPECT_EQ(failure.code(), std::errc::resource_unavailable_try_again);
        EXPECT_EQ(failure.code().category(), std::generic_category());
        EXPECT_STREQ(failure.code().category().name(), "generic");
    }
    startThreadsOfOtsu3();  // and the next call works
    startThreadsOfCalcImageBuffer();
}
