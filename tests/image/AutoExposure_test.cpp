// The previous frame and the previous exposure belong to the process, not to an object. Every test sets the previous
// exposure by a call and then forgets the previous frame (`enable` false keeps the exposure), so that no test depends
// on what ran before it; the exposure with which a process starts is tested in processes of their own.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/ExitGuard.h"
#include "support/Support.h"

using namespace support;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kUntouched = -12345.0;  // what `newExposure` holds before a call

/// A frame of ten rows whose columns have the given numbers of bright pixels, 206 in the stripe and 205 around it.
Image frameOf(const std::vector<int>& brightCounts) {
    Image frame(static_cast<int>(brightCounts.size()), 10, 205);
    for (int x = 0; x < frame.width(); ++x) {
        const int count = brightCounts[static_cast<std::size_t>(x)];
        for (int i = 0; i < count; ++i) frame.at((x + i) % 10, x) = 206;
    }
    return frame;
}

/// Ten columns with the stripe in all of them, equally wide.
Image frameOfWidth(int brightWidth) {
    return frameOf(std::vector<int>(10, brightWidth));
}

testing::AssertionResult isProposal(const std::optional<double>& answer, double expected) {
    if (!answer) return testing::AssertionFailure() << "there is no proposal";
    return describe(sameBits(*answer, expected), *answer, expected);
}

class AutoExposure : public testing::Test {
protected:
    void SetUp() override {
        ask(frameOfWidth(1), kExposureBefore);
        forget();
    }

    /// The answer to a frame: a proposal or none. Without one, `newExposure` must stay as it was.
    std::optional<double> ask(KorvaneLaserAlgo& object, Image frame, double exposure) {
        setRoi(object, frame.width(), frame.height());
        return askWithinRoi(object, frame, exposure);
    }
    std::optional<double> ask(Image frame, double exposure) { return ask(algo, frame, exposure); }

    std::optional<double> askWithinRoi(KorvaneLaserAlgo& object, Image& frame, double exposure) {
        double proposal = kUntouched;
        if (object.AutoExposure(frame.data(), target, exposure, minExposure, maxExposure, step, true, proposal))
            return proposal;
        EXPECT_SAME_BITS(proposal, kUntouched);
        return std::nullopt;
    }

    /// The answer where the region has no pixels. Nothing stored counts as a frame of its size, so the answer tells how
    /// far the exposure lies from the previous one: a proposal below 0.01, none from 0.01 on.
    std::optional<double> askWithoutPixels(double exposure, int width = 0, int height = 0) {
        Image unread(1, 1);
        setRoi(algo, width, height);
        return askWithinRoi(algo, unread, exposure);
    }

    /// A call with `enable` false.
    void forget(double exposure = 777.0) {
        Image frame = frameOfWidth(1);
        setRoi(algo, frame.width(), frame.height());
        double proposal = kUntouched;
        EXPECT_FALSE(
            algo.AutoExposure(frame.data(), target, exposure, minExposure, maxExposure, step, false, proposal));
        EXPECT_SAME_BITS(proposal, kUntouched);
    }

    /// The exposure at which the line through both frames reaches the target width.
    double fitted(double exposure0, double width0, double exposure1, double width1) const {
        const double slope = (width1 - width0) / ((exposure1 - exposure0) + 1e-10);
        const double intercept = width0 - exposure0 * slope;
        return (target - intercept) / slope;
    }

    static constexpr double kExposureBefore = 500.0;  // the previous exposure at the start of a test

    double target = 5.0;
    double minExposure = 0.0;
    double maxExposure = 1000.0;
    double step = 2.0;
    KorvaneLaserAlgo algo;
};

/// Asks a fresh process without pixels and ends it; the exit status tells whether there was a proposal.
constexpr int kProposed = 3;
constexpr int kNoProposal = 4;
[[noreturn]] void askAndExit(double exposure) {
    support::expectProcessEnd();
    KorvaneLaserAlgo algo;
    Image unread(1, 1);
    double proposal = 0.0;
    const bool proposed = algo.AutoExposure(unread.data(), 5.0, exposure, 0.0, 1000.0, 2.0, true, proposal);
    std::exit(proposed ? kProposed : kNoProposal);
}

}  // namespace

// First frames

TEST_F(AutoExposure, FirstFrameGivesNoProposal) {
    EXPECT_EQ(ask(frameOfWidth(3), 10.0), std::nullopt);
    EXPECT_NE(ask(frameOfWidth(3), 10.0), std::nullopt);
}

TEST_F(AutoExposure, FirstFrameAfterADisabledCallGivesNoProposal) {
    ask(frameOfWidth(3), 10.0);
    forget();
    EXPECT_EQ(ask(frameOfWidth(3), 10.0), std::nullopt);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 12.0));
}

TEST_F(AutoExposure, FirstFrameAfterAChangeOfTheRoiSizeGivesNoProposalAndStores) {
    ask(frameOfWidth(2), 10.0);
    EXPECT_EQ(ask(frameOf({4, 4, 4}), 20.0), std::nullopt);
    EXPECT_TRUE(isProposal(ask(frameOf({6, 6, 6}), 30.0), fitted(20.0, 4.0, 30.0, 6.0)));
}

TEST_F(AutoExposure, DisabledCallKeepsThePreviousExposure) {
    ask(frameOfWidth(3), 10.0);
    forget(99.0);  // neither this exposure nor a start value takes its place
    EXPECT_TRUE(isProposal(askWithoutPixels(10.0), 12.0));
    forget(99.0);
    EXPECT_EQ(askWithoutPixels(99.0), std::nullopt);
}

TEST_F(AutoExposure, DisabledCallLeavesTheProposalAlone) {
    ask(frameOfWidth(3), 10.0);
    forget(10.0);  // checks it
}

// The exposure that a process starts with

TEST(AutoExposureInAFreshProcessDeathTest, PreviousExposureStartsAt1) {
    EXPECT_EXIT(askAndExit(1.0), testing::ExitedWithCode(kProposed), "");
}

TEST(AutoExposureInAFreshProcessDeathTest, ExposuresNear1AreNoChange) {
    EXPECT_EXIT(askAndExit(1.009), testing::ExitedWithCode(kProposed), "");
    EXPECT_EXIT(askAndExit(0.991), testing::ExitedWithCode(kProposed), "");
}

TEST(AutoExposureInAFreshProcessDeathTest, ExposuresOtherThan1AreAChange) {
    EXPECT_EXIT(askAndExit(1.011), testing::ExitedWithCode(kNoProposal), "");
    EXPECT_EXIT(askAndExit(0.989), testing::ExitedWithCode(kNoProposal), "");
    EXPECT_EXIT(askAndExit(0.0), testing::ExitedWithCode(kNoProposal), "");
}

// Steps, at an exposure that has not changed

TEST_F(AutoExposure, TwoFramesAtTheSameExposureTooNarrowProposeOneStepMore) {
    ask(frameOfWidth(3), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 10.0 + step));
}

TEST_F(AutoExposure, TooWideProposesOneStepLess) {
    ask(frameOfWidth(7), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(7), 10.0), 10.0 - step));
}

TEST_F(AutoExposure, Width5Point1AgainstTarget5InMoreThanHalfTheColumnsKeepsTheExposure) {
    const std::vector<int> counts = {5, 5, 5, 5, 5, 5, 5, 5, 5, 6, 0, 0, 0, 0};  // 51 / 10, in 10 of 14 columns
    ask(frameOf(counts), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf(counts), 10.0), 10.0));
}

TEST_F(AutoExposure, KeptExposureIsClampedToo) {
    ask(frameOfWidth(5), 10.0);
    minExposure = 11.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(5), 10.0), 11.0));
    minExposure = 0.0;
    maxExposure = 9.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(5), 10.0), 9.0));
}

TEST_F(AutoExposure, StripeInExactlyHalfTheColumnsCountsAsTooFewAndRaisesTheExposure) {
    const std::vector<int> half = {5, 5, 5, 5, 5, 0, 0, 0, 0, 0};
    ask(frameOf(half), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf(half), 10.0), 10.0 + step));

    const std::vector<int> more = {5, 5, 5, 5, 5, 5, 0, 0, 0, 0};
    EXPECT_TRUE(isProposal(ask(frameOf(more), 10.0), 10.0));
}

TEST_F(AutoExposure, HalfOfAnOddWidthIsNotRoundedUp) {
    ask(frameOf({5, 5, 0, 0, 0}), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf({5, 5, 0, 0, 0}), 10.0), 10.0 + step));  // 2 of 2.5
    EXPECT_TRUE(isProposal(ask(frameOf({5, 5, 5, 0, 0}), 10.0), 10.0));         // 3 of 2.5
}

TEST_F(AutoExposure, StripeInTheOnlyColumnIsMoreThanHalf) {
    ask(frameOf({5}), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf({5}), 10.0), 10.0));
}

TEST_F(AutoExposure, TooWideStripeInTooFewColumnsLowersTheExposure) {
    ask(frameOf({7, 0, 0, 0}), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf({7, 0, 0, 0}), 10.0), 10.0 - step));
}

TEST_F(AutoExposure, SlightlyTooWideStripeInTooFewColumnsRaisesTheExposure) {
    target = 4.9;
    ask(frameOf({5, 0, 0, 0}), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf({5, 0, 0, 0}), 10.0), 10.0 + step));
}

TEST_F(AutoExposure, DarkFrameRaisesTheExposure) {
    ask(frameOfWidth(0), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(0), 10.0), 10.0 + step));
}

TEST_F(AutoExposure, DarkFrameHasWidth0AndIsNeverRight) {
    target = 0.0;  // met exactly, but in no column
    ask(frameOfWidth(0), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(0), 10.0), 10.0 + step));
    target = -1.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(0), 10.0), 10.0 - step));
}

TEST_F(AutoExposure, WidthExactly0Point2AboveTheTargetLowersTheExposure) {
    target = -0.2;
    ask(frameOfWidth(0), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(0), 10.0), 10.0 - step));
    target = std::nextafter(-0.2, 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(0), 10.0), 10.0 + step));
}

TEST_F(AutoExposure, WidthIsRightWithinLessThan0Point2) {
    ask(frameOfWidth(1), 10.0);

    target = 0.8;
    ASSERT_LT(1.0 - target, 0.2);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(1), 10.0), 10.0));
    target = std::nextafter(0.8, 0.0);
    ASSERT_GT(1.0 - target, 0.2);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(1), 10.0), 10.0 - step));

    target = 1.2;
    ASSERT_GT(1.0 - target, -0.2);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(1), 10.0), 10.0));
    target = std::nextafter(1.2, 2.0);
    ASSERT_LT(1.0 - target, -0.2);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(1), 10.0), 10.0 + step));
}

TEST_F(AutoExposure, StepsAreClamped) {
    ask(frameOfWidth(3), 10.0);
    maxExposure = 11.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 11.0));
    maxExposure = 1000.0;
    minExposure = 9.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(7), 10.0), 9.0));
}

TEST_F(AutoExposure, StepBranchStoresTheFrameAndTheExposure) {
    ask(frameOfWidth(2), 10.0);
    ASSERT_TRUE(ask(frameOfWidth(3), 10.005).has_value());
    // 10.012 lies less than 0.01 from the stored 10.005, though more from the 10.0 before it.
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.012), 10.012 + step));
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 20.0), fitted(10.012, 3.0, 20.0, 4.0)));
}

TEST_F(AutoExposure, WidthIsMeasuredInTheCurrentFrame) {
    ask(frameOfWidth(3), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(8), 10.0), 10.0 - step));
}

// What counts as bright

TEST_F(AutoExposure, Pixel206CountsAndPixel205DoesNot) {
    Image frame(3, 4);
    frame.drawLine(0, {206, 205, 255, 204});  // 2 bright pixels
    target = 2.0;
    ask(frame, 10.0);
    EXPECT_TRUE(isProposal(ask(frame, 10.0), 10.0));
}

TEST_F(AutoExposure, FirstAndLastRowAndColumnCount) {
    Image frame(3, 4);
    frame.at(0, 0) = frame.at(3, 0) = 255;
    frame.at(0, 2) = frame.at(3, 2) = 255;
    target = 2.0;  // in two of three columns
    ask(frame, 10.0);
    EXPECT_TRUE(isProposal(ask(frame, 10.0), 10.0));
}

TEST_F(AutoExposure, BrightPixelsOfAColumnNeedNotBeNeighbours) {
    Image frame(2, 7);
    frame.drawLine(0, {206, 0, 206, 0, 0, 206, 0});
    target = 3.0;
    ask(frame, 10.0);
    EXPECT_TRUE(isProposal(ask(frame, 10.0), 10.0));
}

// The line through two frames, at an exposure that has changed

TEST_F(AutoExposure, ExposureFrom10To20WithWidths2And4AndTarget6Proposes30) {
    target = 6.0;
    ask(frameOfWidth(2), 10.0);
    const double proposal = ask(frameOfWidth(4), 20.0).value();
    EXPECT_SAME_BITS(proposal, fitted(10.0, 2.0, 20.0, 4.0));
    EXPECT_NEAR(proposal, 30.0, 1e-8);
}

TEST_F(AutoExposure, ProposalOfTheLineIsClamped) {
    target = 6.0;
    ask(frameOfWidth(2), 10.0);
    maxExposure = 25.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 20.0), 25.0));  // instead of 30

    target = 1.0;
    minExposure = 8.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(2), 10.0), 8.0));  // instead of 5
}

TEST_F(AutoExposure, ProposalBelowMinExposureYieldsMinExposureAndAboveMaxExposureMaxExposure) {
    ask(frameOfWidth(3), 10.0);
    minExposure = 12.5;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 12.5));
    minExposure = 0.0;
    maxExposure = 11.5;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 11.5));
}

TEST_F(AutoExposure, ProposalEqualToABoundStays) {
    ask(frameOfWidth(3), 10.0);
    minExposure = 12.0;
    maxExposure = 12.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 12.0));
}

TEST_F(AutoExposure, OfContradictoryBoundsTheSmallestIsAskedFirst) {
    minExposure = 50.0;
    maxExposure = 20.0;
    ask(frameOfWidth(3), 28.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 28.0), 50.0));  // 30 is below the one and above the other
    ask(frameOfWidth(3), 58.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 58.0), 20.0));  // 60 is only above the other
}

TEST_F(AutoExposure, EqualWidthsAtTwoExposuresGiveNoProposal) {
    ask(frameOfWidth(3), 10.0);
    EXPECT_EQ(ask(frameOfWidth(3), 20.0), std::nullopt);
}

TEST_F(AutoExposure, FallingExposureFitsALineToo) {
    ask(frameOfWidth(4), 20.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(2), 10.0), fitted(20.0, 4.0, 10.0, 2.0)));
}

TEST_F(AutoExposure, WidthThatFallsWithRisingExposureIsFittedAllTheSame) {
    ask(frameOfWidth(6), 10.0);
    const double proposal = ask(frameOfWidth(4), 20.0).value();
    EXPECT_SAME_BITS(proposal, fitted(10.0, 6.0, 20.0, 4.0));
    EXPECT_NEAR(proposal, 15.0, 1e-8);
}

TEST_F(AutoExposure, WidthIsTheMeanOverTheStripeColumnsOfEachFrame) {
    const double width0 = (1.0 + 2.0 + 4.0) / 3.0;
    const double width1 = (3.0 + 4.0 + 4.0 + 5.0 + 7.0 + 8.0 + 9.0) / 7.0;
    ask(frameOf({1, 0, 2, 0, 0, 4, 0, 0, 0, 0}), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOf({3, 4, 4, 5, 0, 7, 8, 9, 0, 0}), 20.0), fitted(10.0, width0, 20.0, width1)));
}

TEST_F(AutoExposure, GuardIsAddedToTheChangeOfExposure) {
    ask(frameOfWidth(2), 0.0);
    const double withGuard = fitted(0.0, 2.0, 0.02, 3.0);
    const double withoutGuard = (target - 2.0) / ((3.0 - 2.0) / 0.02);
    ASSERT_NE(withGuard, withoutGuard);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 0.02), withGuard));
}

TEST_F(AutoExposure, ChangeOfExactly0Point01FitsALine) {
    ask(frameOfWidth(2), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 0.01), fitted(0.0, 2.0, 0.01, 3.0)));

    minExposure = -1000.0;
    ask(frameOfWidth(3), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(2), -0.01), fitted(0.0, 3.0, -0.01, 2.0)));
}

TEST_F(AutoExposure, ChangeJustBelow0Point01IsNoChange) {
    const double change = std::nextafter(0.01, 0.0);
    ask(frameOfWidth(2), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), change), change + step));

    minExposure = -1000.0;
    forget();
    ask(frameOfWidth(2), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), -change), -change + step));
}

TEST_F(AutoExposure, SlopeOfExactlyTheGuardFitsALineAndASmallerOneDoesNot) {
    // A rise of one pixel over 1e10, to which the guard adds nothing.
    const double atGuard = 1e10;
    const double beyond = std::nextafter(1e10, kInfinity);
    ASSERT_EQ(1.0 / (atGuard + 1e-10), 1e-10);
    ASSERT_LT(1.0 / (beyond + 1e-10), 1e-10);
    maxExposure = kInfinity;

    ask(frameOfWidth(2), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), atGuard), fitted(0.0, 2.0, atGuard, 3.0)));

    forget();
    ask(frameOfWidth(2), 0.0);
    EXPECT_EQ(ask(frameOfWidth(3), beyond), std::nullopt);

    // A falling line has the same limit.
    minExposure = -kInfinity;
    forget();
    ask(frameOfWidth(3), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(2), atGuard), fitted(0.0, 3.0, atGuard, 2.0)));
    forget();
    ask(frameOfWidth(3), 0.0);
    EXPECT_EQ(ask(frameOfWidth(2), beyond), std::nullopt);
}

TEST_F(AutoExposure, FrameWithoutAStripeGivesNoLine) {
    ask(frameOfWidth(2), 10.0);
    EXPECT_EQ(ask(frameOfWidth(0), 20.0), std::nullopt);  // the current one is dark
    EXPECT_EQ(ask(frameOfWidth(3), 30.0), std::nullopt);  // the previous one is dark
    EXPECT_EQ(ask(frameOfWidth(0), 40.0), std::nullopt);
    EXPECT_EQ(ask(frameOfWidth(0), 50.0), std::nullopt);  // both are
}

// What the line-fit branch stores

TEST_F(AutoExposure, ProposalOfTheLineStoresTheFrameAndTheExposure) {
    ask(frameOfWidth(2), 10.0);
    ASSERT_TRUE(ask(frameOfWidth(3), 20.0).has_value());
    EXPECT_TRUE(isProposal(ask(frameOfWidth(6), 40.0), fitted(20.0, 3.0, 40.0, 6.0)));
}

TEST_F(AutoExposure, EqualWidthsStoreTheFrameAndTheExposure) {
    ask(frameOf({3, 3, 3, 3}), 10.0);
    ASSERT_EQ(ask(frameOf({0, 2, 0, 4}), 20.0), std::nullopt);
    EXPECT_TRUE(isProposal(ask(frameOf({2, 2, 2, 2}), 20.0), 20.0 + step));  // no change since 20

    ASSERT_EQ(ask(frameOf({0, 2, 0, 2}), 30.0), std::nullopt);
    EXPECT_TRUE(isProposal(ask(frameOf({4, 4, 4, 4}), 40.0), fitted(30.0, 2.0, 40.0, 4.0)));
}

TEST_F(AutoExposure, DarkFrameStoresTheFrameAndTheExposure) {
    ask(frameOfWidth(2), 10.0);
    ASSERT_EQ(ask(frameOfWidth(0), 20.0), std::nullopt);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 20.0), 20.0 + step));  // no change since 20
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 30.0), fitted(20.0, 3.0, 30.0, 4.0)));
}

TEST_F(AutoExposure, StoredFrameIsACopyOfTheCallersBuffer) {
    Image frame = frameOfWidth(2);
    setRoi(algo, frame.width(), frame.height());
    askWithinRoi(algo, frame, 10.0);
    std::fill_n(frame.data(), 100, static_cast<unsigned char>(255));
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 20.0), fitted(10.0, 2.0, 20.0, 4.0)));
}

// Numbers that are none

TEST_F(AutoExposure, InfiniteProposalOfTheLineBecomesTheExposure) {
    ask(frameOfWidth(2), 10.0);
    target = kInfinity;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 20.0), 20.0));
    target = -kInfinity;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(6), 30.0), 30.0));
}

TEST_F(AutoExposure, ProposalOfTheLineThatOverflowsBecomesTheExposureAndIsClamped) {
    target = 1e300;
    maxExposure = 1e9;
    ask(frameOfWidth(2), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 1e10), 1e9));  // 1e300 / 1e-10
    maxExposure = kInfinity;
    forget();
    ask(frameOfWidth(2), 0.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 1e10), 1e10));
}

TEST_F(AutoExposure, ProposalOfTheLineThatIsNotANumberBecomesTheExposure) {
    ask(frameOfWidth(2), 10.0);
    target = kNotANumber;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 20.0), 20.0));
}

TEST_F(AutoExposure, ExposureThatIsNotANumberTakesTheLineFitBranch) {
    ask(frameOfWidth(2), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), kNotANumber), kNotANumber));
    // The change since not-a-number is not a number either; the line gives none, so the exposure stays.
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 10.0));
}

TEST_F(AutoExposure, InfiniteExposureGivesALineWithoutSlope) {
    ask(frameOfWidth(2), 10.0);
    EXPECT_EQ(ask(frameOfWidth(3), kInfinity), std::nullopt);
}

TEST_F(AutoExposure, TargetThatIsNotANumberRaisesTheExposure) {
    ask(frameOfWidth(5), 10.0);
    target = kNotANumber;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(5), 10.0), 10.0 + step));
}

TEST_F(AutoExposure, BoundsThatAreNotANumberDoNotClamp) {
    minExposure = kNotANumber;
    maxExposure = kNotANumber;
    ask(frameOfWidth(3), 10.0);
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 10.0 + step));
}

// Regions of other shapes and without pixels

TEST_F(AutoExposure, RoiOf20x10MeetsAStored10x20FrameAndCountsItsColumnsWithTheNewWidth) {
    // Four bright pixels one under the other in a width of 10 are two and two in a width of 20.
    Image upright(10, 20);
    upright.drawColumn(0, 0, {255, 255, 255, 255});
    ask(upright, 10.0);

    Image lying(20, 10);
    lying.drawColumn(7, 3, {255, 255, 255});
    EXPECT_TRUE(isProposal(ask(lying, 20.0), fitted(10.0, 2.0, 20.0, 3.0)));
}

TEST_F(AutoExposure, RegionWithOnePixelMoreOrLessIsAnotherSize) {
    Image eleven(11, 1, 255);
    Image twelve(6, 2, 255);
    ask(twelve, 10.0);
    EXPECT_EQ(ask(eleven, 10.0), std::nullopt);
    EXPECT_EQ(ask(twelve, 10.0), std::nullopt);
}

TEST_F(AutoExposure, RegionWithoutPixelsMeetsTheEmptyStoredFrameAsEqual) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 4}, {4, 0}, {-4, -4}, {-4, 4}, {4, -4}, {-1, -1}}) {
        forget();
        askWithoutPixels(10.0, width, height);
        EXPECT_EQ(askWithoutPixels(20.0, width, height), std::nullopt) << width << " x " << height;
        EXPECT_TRUE(isProposal(askWithoutPixels(20.0, width, height), 22.0)) << width << " x " << height;
    }
}

TEST_F(AutoExposure, RegionWithoutPixelsIsNeverRight) {
    // No column of none is not more than half of them, for a negative width neither.
    target = 0.0;
    for (int width : {0, -1, -100}) {
        askWithoutPixels(10.0, width, 4);
        EXPECT_TRUE(isProposal(askWithoutPixels(10.0, width, 4), 12.0)) << "width " << width;
    }
}

TEST_F(AutoExposure, RegionWithoutPixelsAfterAFrameStoresNothingAsTheFrame) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 10}, {10, 0}, {-10, -10}, {-10, 10}, {10, -10}}) {
        forget();
        ask(frameOfWidth(2), 10.0);
        EXPECT_EQ(askWithoutPixels(10.0, width, height), std::nullopt) << width << " x " << height;
        EXPECT_TRUE(isProposal(askWithoutPixels(10.0, width, height), 12.0)) << width << " x " << height;
        EXPECT_EQ(ask(frameOfWidth(2), 10.0), std::nullopt) << width << " x " << height;
    }
}

TEST_F(AutoExposure, OffsetsOfTheRegionDoNotMatter) {
    ask(frameOfWidth(2), 10.0);
    setRoi(algo, 10, 10, INT_MAX, INT_MIN);
    Image frame = frameOfWidth(4);
    EXPECT_TRUE(isProposal(askWithinRoi(algo, frame, 20.0), fitted(10.0, 2.0, 20.0, 4.0)));
}

// One frame and one exposure for the whole process

TEST_F(AutoExposure, ObjectsShareThePreviousFrameAndExposure) {
    KorvaneLaserAlgo other;
    EXPECT_EQ(ask(other, frameOfWidth(2), 10.0), std::nullopt);
    EXPECT_TRUE(isProposal(ask(algo, frameOfWidth(4), 20.0), fitted(10.0, 2.0, 20.0, 4.0)));
    EXPECT_TRUE(isProposal(ask(other, frameOfWidth(4), 20.0), 20.0 + step));
}

TEST_F(AutoExposure, PreviousFrameOutlivesTheObjectThatStoredIt) {
    auto shortLived = std::make_unique<KorvaneLaserAlgo>();
    ask(*shortLived, frameOfWidth(2), 10.0);
    shortLived.reset();
    EXPECT_TRUE(isProposal(ask(frameOfWidth(4), 20.0), fitted(10.0, 2.0, 20.0, 4.0)));
}

TEST_F(AutoExposure, DisabledCallOfOneObjectForgetsTheFrameOfAll) {
    KorvaneLaserAlgo other;
    ask(other, frameOfWidth(3), 10.0);
    forget();
    EXPECT_EQ(ask(other, frameOfWidth(3), 10.0), std::nullopt);
}

TEST_F(AutoExposure, StabilisationBufferKeepsAFrameOfItsOwn) {
    Image frame = frameOfWidth(3);
    Image out(10, 10);
    ask(frame, 10.0);
    algo.CalcImageBuffer(frame.data(), out.data(), false);
    EXPECT_TRUE(isProposal(ask(frame, 10.0), 10.0 + step));
}

// Arguments

TEST_F(AutoExposure, ProposalMayBeWrittenIntoTheExposureVariable) {
    double exposure = 10.0;
    const auto propose = [&](Image frame) {
        setRoi(algo, frame.width(), frame.height());
        return algo.AutoExposure(frame.data(), target, exposure, minExposure, maxExposure, step, true, exposure);
    };

    EXPECT_FALSE(propose(frameOfWidth(3)));
    EXPECT_SAME_BITS(exposure, 10.0);
    EXPECT_TRUE(propose(frameOfWidth(3)));
    EXPECT_SAME_BITS(exposure, 12.0);

    // The exposure of the last frame, 10, has been stored, not the proposal.
    EXPECT_TRUE(propose(frameOfWidth(4)));
    const double first = fitted(10.0, 3.0, 12.0, 4.0);
    EXPECT_SAME_BITS(exposure, first);
    EXPECT_NEAR(exposure, 14.0, 1e-8);

    // And again after a line: the frame before was taken with 12.
    EXPECT_TRUE(propose(frameOfWidth(6)));
    EXPECT_SAME_BITS(exposure, fitted(12.0, 4.0, first, 6.0));
}

TEST_F(AutoExposure, ImageIsOnlyRead) {
    Image frame = frameOf({1, 2, 3, 0});
    const Bytes before = frame.pixels();
    setRoi(algo, frame.width(), frame.height());
    for (double exposure : {10.0, 10.0, 20.0}) askWithinRoi(algo, frame, exposure);
    EXPECT_EQ(frame.pixels(), before);
}

TEST_F(AutoExposure, SettingsMayChangeFromCallToCall) {
    ask(frameOfWidth(3), 10.0);
    step = 0.5;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 10.5));
    target = 1.0;
    EXPECT_TRUE(isProposal(ask(frameOfWidth(3), 10.0), 9.5));
}
