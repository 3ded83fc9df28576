// FindPeaks and FindPeaksWithFeet: the humps of a grey-value profile that stand out enough.

#include "extract/FindPeaks.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

namespace {

using Ints = std::vector<int>;

struct Peaks {
    Ints positions;
    Ints values;

    friend bool operator==(const Peaks&, const Peaks&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Peaks& peaks) {
        return out << "positions " << testing::PrintToString(peaks.positions) << ", values "
                   << testing::PrintToString(peaks.values);
    }
};

struct PeaksWithFeet {
    Ints positions;
    Ints values;
    Ints leftFeet;
    Ints rightFeet;

    friend bool operator==(const PeaksWithFeet&, const PeaksWithFeet&) = default;
    friend std::ostream& operator<<(std::ostream& out, const PeaksWithFeet& peaks) {
        return out << "positions " << testing::PrintToString(peaks.positions) << ", values "
                   << testing::PrintToString(peaks.values) << ", left feet " << testing::PrintToString(peaks.leftFeet)
                   << ", right feet " << testing::PrintToString(peaks.rightFeet);
    }
};

Peaks findPeaks(const Ints& profile) {
    Peaks peaks;
    KORVANELASERALGO::extract::FindPeaks(profile, peaks.positions, peaks.values);
    return peaks;
}

PeaksWithFeet findPeaksWithFeet(const Ints& profile) {
    PeaksWithFeet peaks;
    KORVANELASERALGO::extract::FindPeaksWithFeet(profile, peaks.positions, peaks.values, peaks.leftFeet,
                                                 peaks.rightFeet);
    return peaks;
}

// ---- What both count as a peak

TEST(FindPeaks, ProfilesOfOneOrTwoValuesHaveNoPeak) {
    for (const Ints& profile : {Ints{200}, Ints{0, 200}, Ints{200, 0}, Ints{200, 200}}) {
        EXPECT_EQ(findPeaks(profile), Peaks{});
        EXPECT_EQ(findPeaksWithFeet(profile), PeaksWithFeet{});
    }
}

TEST(FindPeaks, StrictlyMonotoneProfileHasNoPeak) {
    for (const Ints& profile : {Ints{0, 60, 120, 180, 240}, Ints{240, 180, 120, 60, 0}, Ints{0, 100, 200}}) {
        EXPECT_EQ(findPeaks(profile), Peaks{});
        EXPECT_EQ(findPeaksWithFeet(profile), PeaksWithFeet{});
    }
}

TEST(FindPeaks, FlatProfileHasNoPeak) {
    EXPECT_EQ(findPeaks({200, 200, 200, 200}), Peaks{});
    EXPECT_EQ(findPeaksWithFeet({200, 200, 200, 200}), PeaksWithFeet{});
}

TEST(FindPeaks, FirstAndLastValueAreNoPeaks) {
    EXPECT_EQ(findPeaks({250, 100, 50, 100, 250}), Peaks{});
    EXPECT_EQ(findPeaksWithFeet({250, 100, 50, 100, 250}), PeaksWithFeet{});
}

TEST(FindPeaks, MiddleOfThreeValuesCanBeAPeak) {
    EXPECT_EQ(findPeaks({10, 200, 20}), (Peaks{{1}, {200}}));
    EXPECT_EQ(findPeaksWithFeet({10, 200, 20}), (PeaksWithFeet{{1}, {200}, {0}, {2}}));
}

TEST(FindPeaks, SecondAndLastButOneValueCanBePeaks) {
    EXPECT_EQ(findPeaks({10, 200, 20, 210, 30}), (Peaks{{1, 3}, {200, 210}}));
    EXPECT_EQ(findPeaksWithFeet({10, 200, 20, 210, 30}), (PeaksWithFeet{{1, 3}, {200, 210}, {0, 2}, {2, 4}}));
}

TEST(FindPeaks, FlatTopCountsOnceAtItsFirstSample) {
    EXPECT_EQ(findPeaks({10, 80, 80, 80, 10}), (Peaks{{1}, {80}}));
    EXPECT_EQ(findPeaksWithFeet({10, 80, 80, 80, 10}), (PeaksWithFeet{{1}, {80}, {0}, {4}}));
}

TEST(FindPeaks, FlatTopThatReachesTheEndIsAPeak) {
    EXPECT_EQ(findPeaks({10, 80, 80}), (Peaks{{1}, {80}}));
    EXPECT_EQ(findPeaksWithFeet({10, 80, 80}), (PeaksWithFeet{{1}, {80}, {0}, {2}}));
}

TEST(FindPeaks, FlatTopThatStartsTheProfileIsNoPeak) {
    EXPECT_EQ(findPeaks({80, 80, 10}), Peaks{});
    EXPECT_EQ(findPeaksWithFeet({80, 80, 10}), PeaksWithFeet{});
}

TEST(FindPeaks, StepOfARisingFlankIsAPeak) {
    EXPECT_EQ(findPeaks({10, 80, 80, 150, 10}), (Peaks{{1, 3}, {80, 150}}));
    EXPECT_EQ(findPeaksWithFeet({10, 80, 80, 150, 10}), (PeaksWithFeet{{1, 3}, {80, 150}, {0, 2}, {2, 4}}));
}

TEST(FindPeaks, StepOfAFallingFlankIsNoPeak) {
    EXPECT_EQ(findPeaks({10, 150, 80, 80, 10}), (Peaks{{1}, {150}}));
    EXPECT_EQ(findPeaksWithFeet({10, 150, 80, 80, 10}), (PeaksWithFeet{{1}, {150}, {0}, {4}}));
}

TEST(FindPeaks, NegativeValuesAreCompared) {
    EXPECT_EQ(findPeaks({-60, -5, -60}), (Peaks{{1}, {-5}}));
    EXPECT_EQ(findPeaksWithFeet({-60, -5, -60}), (PeaksWithFeet{{1}, {-5}, {0}, {2}}));
}

// ---- FindPeaks: the fall is carried from the left walk into the right walk

TEST(FindPeaks, RightWalkStopsAtASampleThatTheLeftWalkWentBelow) {
    // From 200 the left walk falls to 90; on the right 150 is not below 90. The fall is 110.
    EXPECT_EQ(findPeaks({100, 90, 200, 150, 300, 100}), (Peaks{{2, 4}, {200, 300}}));
}

TEST(FindPeaks, DeepLeftSideKeepsAPeakThatHardlyFallsOnItsRight) {
    EXPECT_EQ(findPeaks({90, 200, 198, 199, 210}), (Peaks{{1}, {200}}));
}

TEST(FindPeaks, ShallowLeftSideBlocksADeepRightSide) {
    // The left walk falls by 3 to 197; 198 and 197 stop the right walk before it reaches 100.
    EXPECT_EQ(findPeaks({197, 200, 198, 100}), Peaks{});
    EXPECT_EQ(findPeaks({197, 200, 197, 100}), Peaks{});
    EXPECT_EQ(findPeaks({197, 200, 196, 100}), (Peaks{{1}, {200}}));
}

TEST(FindPeaks, FallOf5IsKeptAndFallOf4IsRemoved) {
    EXPECT_EQ(findPeaks({195, 200, 200}), (Peaks{{1}, {200}}));
    EXPECT_EQ(findPeaks({196, 200, 200}), Peaks{});
    EXPECT_EQ(findPeaks({199, 200, 195}), (Peaks{{1}, {200}}));
    EXPECT_EQ(findPeaks({199, 200, 196}), Peaks{});
}

TEST(FindPeaks, LeftWalkStopsAtAFlatStretch) {
    // The step at 1 is a peak; the one at 3 falls by 3 only.
    EXPECT_EQ(findPeaks({100, 197, 197, 200, 200}), (Peaks{{1}, {197}}));
    EXPECT_EQ(findPeaks({100, 196, 197, 200, 200}), (Peaks{{3}, {200}}));
}

TEST(FindPeaks, RightWalkStopsAtAFlatStretch) {
    EXPECT_EQ(findPeaks({198, 200, 197, 197, 100}), Peaks{});
    EXPECT_EQ(findPeaks({198, 200, 197, 196, 100}), (Peaks{{1}, {200}}));
}

TEST(FindPeaks, WalksStopAtARise) {
    // In both the peak of 200 falls by 3 only.
    EXPECT_EQ(findPeaks({100, 198, 197, 200, 200}), (Peaks{{1}, {198}}));
    EXPECT_EQ(findPeaks({199, 200, 197, 198, 100}), (Peaks{{3}, {198}}));
}

TEST(FindPeaks, WalksReachBothEndsOfTheProfile) {
    EXPECT_EQ(findPeaks({195, 197, 199, 200, 200}), (Peaks{{3}, {200}}));
    EXPECT_EQ(findPeaks({199, 200, 198, 197, 195}), (Peaks{{1}, {200}}));
}

TEST(FindPeaks, KeptPeaksStayInProfileOrder) {
    // Falls: 100, 3 (removed), 3 (removed), 147, 1 (removed).
    const Ints profile{100, 200, 198, 200, 197, 200, 200, 50, 147, 20, 0, 1, 1};
    EXPECT_EQ(findPeaks(profile), (Peaks{{1, 8}, {200, 147}}));
}

TEST(FindPeaks, AllPeaksCanBeRemoved) {
    EXPECT_EQ(findPeaks({198, 200, 199, 201, 199, 200, 198}), Peaks{});
}

// ---- FindPeaksWithFeet: the left walk is strict, the right walk is not

TEST(FindPeaksWithFeet, RightFootPassesTheEqualSampleOfThePlateau) {
    EXPECT_EQ(findPeaksWithFeet({10, 80, 80, 10}), (PeaksWithFeet{{1}, {80}, {0}, {3}}));
}

TEST(FindPeaksWithFeet, HumpThatFallsBy20OnBothSidesIsRemoved) {
    EXPECT_EQ(findPeaksWithFeet({100, 120, 100}), PeaksWithFeet{});
}

TEST(FindPeaksWithFeet, FallOf50OnTheLeftIsEnough) {
    EXPECT_EQ(findPeaksWithFeet({150, 200, 200}), (PeaksWithFeet{{1}, {200}, {0}, {2}}));
    EXPECT_EQ(findPeaksWithFeet({151, 200, 200}), PeaksWithFeet{});
}

TEST(FindPeaksWithFeet, FallOf50OnTheRightIsEnough) {
    EXPECT_EQ(findPeaksWithFeet({199, 200, 150}), (PeaksWithFeet{{1}, {200}, {0}, {2}}));
    EXPECT_EQ(findPeaksWithFeet({199, 200, 151}), PeaksWithFeet{});
}

TEST(FindPeaksWithFeet, FallsOfBothSidesAreNotAdded) {
    EXPECT_EQ(findPeaksWithFeet({151, 200, 151}), PeaksWithFeet{});
}

TEST(FindPeaksWithFeet, FallOfTheRightSideDoesNotDependOnTheLeftSide) {
    EXPECT_EQ(findPeaksWithFeet({197, 200, 198, 100}), (PeaksWithFeet{{1}, {200}, {0}, {3}}));
}

TEST(FindPeaksWithFeet, FallIsMeasuredAtTheFeet) {
    // Both descents go through two steps of less than 50.
    EXPECT_EQ(findPeaksWithFeet({150, 175, 200, 180, 160}), (PeaksWithFeet{{2}, {200}, {0}, {4}}));
}

TEST(FindPeaksWithFeet, LeftWalkStopsAtAFlatStretch) {
    EXPECT_EQ(findPeaksWithFeet({40, 60, 60, 200, 20}), (PeaksWithFeet{{3}, {200}, {2}, {4}}));
    // The step at 1 is a peak; the one at 3 falls by 30 and 20 only.
    EXPECT_EQ(findPeaksWithFeet({100, 170, 170, 200, 180}), (PeaksWithFeet{{1}, {170}, {0}, {2}}));
}

TEST(FindPeaksWithFeet, RightWalkGoesOnThroughFlatStretches) {
    EXPECT_EQ(findPeaksWithFeet({20, 200, 60, 60, 40, 40}), (PeaksWithFeet{{1}, {200}, {0}, {5}}));
    EXPECT_EQ(findPeaksWithFeet({180, 200, 170, 170, 100}), (PeaksWithFeet{{1}, {200}, {0}, {4}}));
}

TEST(FindPeaksWithFeet, WalksStopAtARise) {
    EXPECT_EQ(findPeaksWithFeet({10, 30, 20, 200, 50, 60, 11}), (PeaksWithFeet{{3}, {200}, {2}, {4}}));
}

TEST(FindPeaksWithFeet, WalksReachBothEndsOfTheProfile) {
    EXPECT_EQ(findPeaksWithFeet({10, 20, 30, 200, 90, 80, 70}), (PeaksWithFeet{{3}, {200}, {0}, {6}}));
}

TEST(FindPeaksWithFeet, NeighbouringHumpsShareTheValleyBetweenThem) {
    EXPECT_EQ(findPeaksWithFeet({10, 200, 50, 210, 20}), (PeaksWithFeet{{1, 3}, {200, 210}, {0, 2}, {2, 4}}));
}

TEST(FindPeaksWithFeet, FlatValleyBelongsToTheLeftHumpButForItsLastSample) {
    EXPECT_EQ(findPeaksWithFeet({10, 200, 50, 50, 50, 210, 20}), (PeaksWithFeet{{1, 5}, {200, 210}, {0, 4}, {4, 6}}));
}

TEST(FindPeaksWithFeet, RemovalKeepsAllSequencesAligned) {
    // Humps at 1 (falls 10, 10: removed), 3 (10, 100: kept), 5 (20, 20: removed), 7 (5, 95: kept), 9 (5, 5: removed).
    const Ints profile{190, 200, 190, 200, 100, 120, 100, 105, 10, 15, 10};
    EXPECT_EQ(findPeaksWithFeet(profile), (PeaksWithFeet{{3, 7}, {200, 105}, {2, 6}, {4, 8}}));
}

TEST(FindPeaksWithFeet, NeighbouringHumpsCanBothBeRemoved) {
    // Falls: 100 (kept), then 20 and 20, then 30 and 30 (both removed), then 90 (kept).
    const Ints profile{20, 120, 100, 120, 100, 130, 100, 190, 189};
    EXPECT_EQ(findPeaksWithFeet(profile), (PeaksWithFeet{{1, 7}, {120, 190}, {0, 6}, {2, 8}}));
}

}  // namespace
