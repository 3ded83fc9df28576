// Threads that call at the same time give what a single thread gives: every method beside every other on objects of
// their own, and on one object where the methods read its settings only. Meant for the thread sanitizer above all.

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "faults/Barrier.h"
#include "faults/Calls.h"
#include "support/Support.h"

namespace {

using namespace faults;

constexpr int kRounds = 3;
constexpr int kRoundsBesideItself = 30;  // what a method must not share, it shares with itself above all

bool onlyOneThreadMayRun(const Call& a, const Call& b) {
    return a.sharing == b.sharing && (a.sharing == Sharing::kStabilisation || a.sharing == Sharing::kExposure);
}

/// Two threads that walk through pairs of calls, the first with the first of each pair, and start every pair together.
/// Returns what differed from the undisturbed results.
class TwoThreads {
public:
    using Pair = std::pair<const Call*, const Call*>;

    std::vector<std::string> run(const std::vector<Pair>& pairs, KorvaneLaserAlgo& first, KorvaneLaserAlgo& second) {
        std::vector<std::string> differences;
        std::vector<std::string> differencesOfSecond;
        std::thread other([&] {
            for (const Pair& pair : pairs) repeat(*pair.second, *pair.first, second, differencesOfSecond);
        });
        for (const Pair& pair : pairs) repeat(*pair.first, *pair.second, first, differences);
        other.join();
        differences.insert(differences.end(), differencesOfSecond.begin(), differencesOfSecond.end());
        return differences;
    }

private:
    void repeat(const Call& call, const Call& beside, KorvaneLaserAlgo& algo, std::vector<std::string>& differences) {
        const Bits& expected = expectedOf(call);
        start_.arriveAndWait();
        for (int round = 0; round < (&call == &beside ? kRoundsBesideItself : kRounds); ++round) {
            call.prepare(algo);
            Arguments arguments(call.scene);
            call.call(algo, arguments);
            if (arguments.bits() != expected) differences.push_back(call.name + " beside " + beside.name);
        }
    }

    const Bits& expectedOf(const Call& call) const {
        return expected_.at(static_cast<std::size_t>(&call - allCalls().data()));
    }
    static std::vector<Bits> allExpected() {
        std::vector<Bits> expected;
        for (const Call& call : allCalls()) expected.push_back(undisturbed(call));
        return expected;
    }

    const std::vector<Bits> expected_ = allExpected();
    Barrier start_{2};
};

}  // namespace

TEST(ParallelCalls, EveryMethodRunsBesideEveryOtherOnObjectsOfTheirOwn) {
    std::vector<TwoThreads::Pair> pairs;
    for (const Call& a : allCalls()) {
        for (const Call& b : allCalls()) {
            if (&a <= &b && !onlyOneThreadMayRun(a, b)) pairs.emplace_back(&a, &b);
        }
    }
    KorvaneLaserAlgo first;
    KorvaneLaserAlgo second;
    configure(first);
    configure(second);
    EXPECT_EQ(TwoThreads().run(pairs, first, second), std::vector<std::string>{});
    RecordProperty("pairs", static_cast<int>(pairs.size()));
}

TEST(ParallelCalls, MethodsThatOnlyReadTheSettingsRunBesideOneAnotherOnOneObject) {
    std::vector<TwoThreads::Pair> pairs;
    for (const Call& a : allCalls()) {
        for (const Call& b : allCalls()) {
            if (&a <= &b && a.sharing == Sharing::kSameObject && b.sharing == Sharing::kSameObject)
                pairs.emplace_back(&a, &b);
        }
    }
    KorvaneLaserAlgo shared;
    configure(shared);
    EXPECT_EQ(TwoThreads().run(pairs, shared, shared), std::vector<std::string>{});
    RecordProperty("pairs", static_cast<int>(pairs.size()));
}

TEST(ParallelCalls, ObjectsAreCreatedConfiguredAndDestroyedByManyThreads) {
    constexpr int kThreads = 6;
    constexpr int kObjects = 50;
    Barrier start(kThreads);
    std::vector<int> foreign(kThreads, 0);  // settings that another thread's object has
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            start.arriveAndWait();
            for (int i = 0; i < kObjects; ++i) {
                KorvaneLaserAlgo algo;
                const bool isNew = algo.GetROIInfoWidth() == 0 && algo.GetROIInfoOffsetY() == 0;
                support::setRoi(algo, 4 + t, 20, i, t);
                support::Image image(4 + t, 20);
                image.drawLine(9, {100, 200, 100});
                support::Mask mask(4 + t);
                support::Points2d points;
                algo.Cal2DPoint2(mask.data(), image.data(), points);
                const bool isOwn = algo.GetROIInfoWidth() == 4 + t && algo.GetROIInfoHeight() == 20 &&
                                   algo.GetROIInfoOffsetX() == i && algo.GetROIInfoOffsetY() == t &&
                                   points.size() == static_cast<std::size_t>(4 + t) &&
                                   support::sameBits(points[0], {0.0 + i, 10.0 + t});
                if (!isNew || !isOwn) ++foreign[static_cast<std::size_t>(t)];
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(foreign, std::vector<int>(kThreads, 0));
}

// Run on its own, this is the first use of both process-wide records.
TEST(ParallelCalls, CalcImageBufferAndAutoExposureDoNotShareARecord) {
    constexpr int kFrames = 20;
    Barrier start(2);
    std::vector<int> steadied;
    std::vector<double> proposals;
    std::thread stabilising([&] {
        KorvaneLaserAlgo algo;
        support::setRoi(algo, 6, 4);
        support::Image out(6, 4);
        start.arriveAndWait();
        algo.CalcImageBuffer(out.data(), out.data(), false);
        for (int i = 0; i < kFrames; ++i) {
            support::Image frame(6, 4, static_cast<unsigned char>(100 + i));
            algo.CalcImageBuffer(frame.data(), out.data(), true);
            steadied.push_back(out.at(3, 5));
        }
    });
    std::thread exposing([&] {
        KorvaneLaserAlgo algo;
        support::setRoi(algo, 4, 6);  // as many pixels
        support::Image frame(4, 6, 0);
        start.arriveAndWait();
        double proposal = 0.0;
        algo.AutoExposure(frame.data(), 3.0, 10.0, 0.0, 1000.0, 2.0, false, proposal);
        for (int i = 0; i < kFrames; ++i) {
            proposal = -1.0;
            algo.AutoExposure(frame.data(), 3.0, 10.0, 0.0, 1000.0, 2.0, true, proposal);
            proposals.push_back(proposal);
        }
    });
    stabilising.join();
    exposing.join();

    // The first frame is copied; each other one lies 1 above its predecessor and loses that.
    std::vector<int> expectedGreys = {100};
    for (int i = 1; i < kFrames; ++i) expectedGreys.push_back(100 + i - 1);
    EXPECT_EQ(steadied, expectedGreys);
    // No proposal for the first frame, then a step up for a dark one.
    std::vector<double> expectedProposals(kFrames, 12.0);
    expectedProposals[0] = -1.0;
    EXPECT_EQ(proposals, expectedProposals);
}

TEST(ParallelCalls, ThreadThatTakesTheStreamOverFindsThePreviousFrameAndExposure) {
    double proposal = 0.0;
    support::Image first(4, 8, 100);
    support::Image out(4, 8);
    first.drawColumn(0, 0, {255, 255});
    const auto onThreadOfItsOwn = [](auto work) { std::thread(work).join(); };
    onThreadOfItsOwn([&] {
        KorvaneLaserAlgo algo;
        support::setRoi(algo, 4, 8);
        algo.CalcImageBuffer(first.data(), out.data(), false);
        algo.CalcImageBuffer(first.data(), out.data(), true);
        algo.AutoExposure(first.data(), 6.0, 10.0, 0.0, 1000.0, 2.0, false, proposal);
        algo.AutoExposure(first.data(), 6.0, 10.0, 0.0, 1000.0, 2.0, true, proposal);
    });
    bool proposed = false;
    onThreadOfItsOwn([&] {
        KorvaneLaserAlgo algo;
        support::setRoi(algo, 4, 8);
        support::Image second(4, 8, 130);
        second.drawColumn(0, 0, {255, 255, 255, 255});
        algo.CalcImageBuffer(second.data(), out.data(), true);
        proposed = algo.AutoExposure(second.data(), 6.0, 20.0, 0.0, 1000.0, 2.0, true, proposal);
    });
    EXPECT_EQ(out.at(7, 3), 100);  // 130 less its change by 30
    EXPECT_TRUE(proposed);
    EXPECT_NEAR(proposal, 30.0, 1e-8);  // widths 2 and 4 at 10 and 20 reach 6 at 30
}
