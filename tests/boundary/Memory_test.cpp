// Memory that one side allocates and the other frees or grows.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"

#if defined(_WIN32)
#include <malloc.h>
#endif

using namespace KORVANELASERALGO;

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 48;
constexpr int kRounds = 200;  // so that freed blocks are used again

#if defined(_WIN32)

/// Blocks of the C library's heap that are in use; it is whole.
int liveBlocks() {
    EXPECT_EQ(_heapchk(), _HEAPOK);
    int count = 0;
    _HEAPINFO entry{};
    int status = _heapwalk(&entry);
    for (; status == _HEAPOK; status = _heapwalk(&entry)) count += entry._useflag == _USEDENTRY ? 1 : 0;
    EXPECT_EQ(status, _HEAPEND);
    EXPECT_GT(count, 0);
    return count;
}

#else

/// The address sanitizer's business.
int liveBlocks() {
    return 0;
}

#endif

/// A host with a frame whose stripe covers the rows 20 to 22.
class Host : public testing::Test {
protected:
    Host() {
        tagKorvaneLaserAlgoROIInfo roi{0, 0, kWidth, kHeight};
        tagKorvaneLaserAlgoCalibrationInfo calibration = {{2000, 0, 320, 0, 2000, 24, 0, 0, 1},
                                                          {0, 0, 0, 0, 0},
                                                          {300, 0, 0, 0, 0, 0},
                                                          {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}};
        algo.SetROIInfo(&roi);
        algo.SetCalibrationInfo(&calibration);
        for (int row = 20; row <= 22; ++row) std::fill_n(frame.begin() + row * kWidth, kWidth, 200);
    }
    ~Host() override {
        EXPECT_LT(liveBlocks() - liveAtStart, kRounds) << "blocks of one side are not freed by the other";
    }

    void extract(std::vector<tagKorvaneLaserPoint2d>& points) {
        std::fill_n(mask.get(), kWidth, false);
        algo.Cal2DPoint2(mask.get(), frame.data(), points);
    }

    KorvaneLaserAlgo algo;
    std::unique_ptr<bool[]> mask{new bool[kWidth]};
    int liveAtStart = liveBlocks();
    std::vector<unsigned char> frame = std::vector<unsigned char>(kWidth * kHeight, 10);
};

using MemoryOfBothSides = Host;

}  // namespace

TEST_F(MemoryOfBothSides, VectorsGrownByTheLibraryAreFreedByTheHost) {
    for (int round = 0; round < kRounds; ++round) {
        std::vector<tagKorvaneLaserPoint2d> points;
        std::vector<tagKorvaneLaserPoint3d> profile;
        extract(points);
        algo.Cal3DPoint1(mask.get(), points, profile);
        ASSERT_EQ(points.size(), std::size_t{kWidth});
        EXPECT_EQ(points.back().y, 21.0);
        ASSERT_EQ(profile.size(), std::size_t{kWidth});
        EXPECT_EQ(profile.back().z, 300.0);
    }
}

TEST_F(MemoryOfBothSides, VectorsGrownByTheHostAreGrownFurtherByTheLibrary) {
    for (int round = 0; round < kRounds; ++round) {
        std::vector<tagKorvaneLaserPoint2d> points(10, {1.0, 2.0});
        extract(points);
        EXPECT_EQ(points.size(), std::size_t{kWidth});
        points.resize(3 * kWidth);
        points.shrink_to_fit();
        extract(points);
        EXPECT_EQ(points.size(), std::size_t{kWidth});
    }
}

TEST_F(MemoryOfBothSides, VectorsReturnedByTheLibraryBelongToTheHost) {
    std::vector<double> kept;
    for (int round = 0; round < kRounds; ++round) {
        std::vector<double> coefficients = algo.polynomialFit({0.0, 1.0, 2.0}, {1.0, 3.0, 5.0}, 1);
        ASSERT_EQ(coefficients.size(), 2u);
        coefficients.insert(coefficients.end(), 100, 7.0);
        kept = std::move(coefficients);
    }
    EXPECT_EQ(kept.size(), 102u);
}

TEST_F(MemoryOfBothSides, StringsOfAnyLengthAreReplacedByTheLibrary) {
    for (int round = 0; round < kRounds; ++round) {
        for (const std::size_t length : {0u, 3u, 15u, 16u, 1000u}) {
            std::string version(length, 'x');
            algo.GetSdkVersionString(version);
            EXPECT_EQ(version.substr(0, 1), "V");
            version.append(100, 'y');
        }
    }
}
