// The previous frame belongs to the process, not to an object. Every test forgets it first, by a call with `enable`
// false, so that no test depends on what ran before it; the very first call of a process is tested in a process of its
// own.

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/ExitGuard.h"
#include "support/Support.h"

using namespace support;

namespace {

constexpr unsigned char kOld = 7;  // grey value that the caller left in the output

using Bytes = std::vector<unsigned char>;

class CalcImageBuffer : public testing::Test {
protected:
    void SetUp() override { forget(); }

    /// A call with `enable` false.
    void forget() {
        Image frame(1, 1);
        Image out(1, 1);
        setRoi(algo, 1, 1);
        algo.CalcImageBuffer(frame.data(), out.data(), false);
    }

    /// The output of an enabled call, from a buffer full of the old grey value.
    Image stabilised(Image& frame) {
        setRoi(algo, frame.width(), frame.height());
        Image out(frame.width(), frame.height(), kOld);
        algo.CalcImageBuffer(frame.data(), out.data(), true);
        return out;
    }

    /// The output for a frame of 2 x 2 pixels of one grey value; all four outputs must agree.
    int stabilised(int grey) {
        Image frame(2, 2, static_cast<unsigned char>(grey));
        const Bytes out = stabilised(frame).pixels();
        EXPECT_EQ(out, Bytes(4, out[0]));
        return out[0];
    }

    KorvaneLaserAlgo algo;
};

/// An image without any regularity, another one for every seed.
Image textureOf(int width, int height, unsigned seed) {
    Image image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            image.at(y, x) = static_cast<unsigned char>(seed >> 24);
        }
    }
    return image;
}

/// The current value less the absolute change, at least 0.
unsigned char weakened(int previous, int current) {
    return static_cast<unsigned char>(std::max(current - std::abs(current - previous), 0));
}

/// The threaded path over pixels of equal index; from `untouchedFrom` on the output is the old one.
Bytes weakened(const Bytes& previous, const Bytes& current, std::size_t untouchedFrom) {
    Bytes out(current.size(), kOld);
    for (std::size_t i = 0; i < untouchedFrom; ++i) out[i] = weakened(previous[i], current[i]);
    return out;
}

}  // namespace

// A first call

TEST_F(CalcImageBuffer, FirstEnabledCallCopiesTheFrame) {
    Image frame = textureOf(5, 4, 1);
    EXPECT_EQ(stabilised(frame).pixels(), frame.pixels());
}

TEST(CalcImageBufferInAFreshProcessDeathTest, FirstCallOfAllCopiesTheFrame) {
    constexpr int kCopied = 3;  // exit status
    constexpr int kOther = 4;
    const auto callAndExit = [] {
        support::expectProcessEnd();
        KorvaneLaserAlgo algo;
        setRoi(algo, 3, 3);
        Image frame = textureOf(3, 3, 1);
        Image out(3, 3, kOld);
        algo.CalcImageBuffer(frame.data(), out.data(), true);
        std::exit(out.pixels() == frame.pixels() ? kCopied : kOther);
    };
    EXPECT_EXIT(callAndExit(), testing::ExitedWithCode(kCopied), "");
}

TEST_F(CalcImageBuffer, FirstCallCopiesTheLastRowOfAnOddHeightToo) {
    Image frame = textureOf(4, 3, 1);
    EXPECT_EQ(stabilised(frame).pixels(), frame.pixels());
}

// Later calls

TEST_F(CalcImageBuffer, SecondCallWithAnIdenticalImageReturnsTheImage) {
    Image frame = textureOf(6, 4, 1);
    stabilised(frame);
    EXPECT_EQ(stabilised(frame).pixels(), frame.pixels());
}

TEST_F(CalcImageBuffer, PixelThatRoseFrom100To150Gives100) {
    stabilised(100);
    EXPECT_EQ(stabilised(150), 100);
}

TEST_F(CalcImageBuffer, PixelThatFellFrom150To100Gives50) {
    stabilised(150);
    EXPECT_EQ(stabilised(100), 50);
}

TEST_F(CalcImageBuffer, PixelThatFellFrom200To50Gives0) {
    stabilised(200);
    EXPECT_EQ(stabilised(50), 0);
}

TEST_F(CalcImageBuffer, PixelThatFellToHalfGives0AndOneLevelAboveHalfGives2) {
    stabilised(200);
    EXPECT_EQ(stabilised(100), 0);
    forget();
    stabilised(200);
    EXPECT_EQ(stabilised(101), 2);  // 101 - 99
    forget();
    stabilised(200);
    EXPECT_EQ(stabilised(99), 0);  // 99 - 101, below the floor
}

TEST_F(CalcImageBuffer, EveryPairOfGreyValuesFollowsTheRule) {
    Image previous(256, 256);
    Image current(256, 256);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            previous.at(y, x) = static_cast<unsigned char>(y);
            current.at(y, x) = static_cast<unsigned char>(x);
        }
    }
    stabilised(previous);
    Image out = stabilised(current);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            const int expected = x >= y ? y : std::max(2 * x - y, 0);
            ASSERT_EQ(out.at(y, x), expected) << "from " << y << " to " << x;
        }
    }
}

TEST_F(CalcImageBuffer, NextCallComparesWithTheFrameNotWithTheOutput) {
    stabilised(100);
    ASSERT_EQ(stabilised(150), 100);
    EXPECT_EQ(stabilised(150), 150);
    EXPECT_EQ(stabilised(160), 150);
}

TEST_F(CalcImageBuffer, StoredFrameIsACopyOfTheCallersBuffer) {
    Image frame(2, 2, 100);
    stabilised(frame);
    std::fill_n(frame.data(), 4, static_cast<unsigned char>(0));
    EXPECT_EQ(stabilised(150), 100);

    // And the same on the threaded path, which has stored 150.
    EXPECT_EQ(stabilised(200), 150);
}

TEST_F(CalcImageBuffer, BothHalvesOfEveryWidthAndEvenHeightAreDone) {
    for (int height : {2, 4, 6, 10}) {
        for (int width : {1, 2, 3, 15, 16, 17, 31, 32, 33, 63, 64, 65, 97}) {
            forget();
            Image previous = textureOf(width, height, 1);
            Image current = textureOf(width, height, 2);
            stabilised(previous);
            EXPECT_EQ(stabilised(current).pixels(),
                      weakened(previous.pixels(), current.pixels(), current.pixels().size()))
                << width << " x " << height;
        }
    }
}

// The last row of an odd height

TEST_F(CalcImageBuffer, OddHeightLeavesTheLastRowOfTheOutputUntouchedOnTheThreadedPath) {
    for (int height : {3, 5, 7}) {
        forget();
        Image previous = textureOf(4, height, 1);
        Image current = textureOf(4, height, 2);
        stabilised(previous);
        const auto lastRow = static_cast<std::size_t>(4 * (height - 1));
        EXPECT_EQ(stabilised(current).pixels(), weakened(previous.pixels(), current.pixels(), lastRow))
            << "height " << height;
    }
}

TEST_F(CalcImageBuffer, SingleRowIsNeverWrittenOnTheThreadedPath) {
    Image frame(4, 1, 100);
    stabilised(frame);
    EXPECT_EQ(stabilised(frame).pixels(), Bytes(4, kOld));
}

TEST_F(CalcImageBuffer, OddHeightLeavesTheLastRowOfTheStoredFrameAsItWas) {
    // Two frames of 4 x 3 pixels; then the same 12 pixels as 6 x 2, whose rows are all read.
    Image first = textureOf(4, 3, 1);
    Image second = textureOf(4, 3, 2);
    Image third = textureOf(6, 2, 3);
    stabilised(first);
    stabilised(second);

    Bytes stored = second.pixels();
    const Bytes ofFirst = first.pixels();
    std::copy(ofFirst.begin() + 8, ofFirst.end(), stored.begin() + 8);
    ASSERT_NE(stored, second.pixels());
    EXPECT_EQ(stabilised(third).pixels(), weakened(stored, third.pixels(), 12));
}

// Forgetting, and other sizes

TEST_F(CalcImageBuffer, DisabledCallMakesTheNextOneAFirstCall) {
    stabilised(100);
    forget();
    EXPECT_EQ(stabilised(150), 150);
    EXPECT_EQ(stabilised(100), 50);  // and that one stored its frame
}

TEST_F(CalcImageBuffer, DisabledCallLeavesTheOutputAlone) {
    Image frame(4, 4, 100);
    stabilised(frame);
    Image out(4, 4, kOld);
    algo.CalcImageBuffer(frame.data(), out.data(), false);
    EXPECT_EQ(out.pixels(), Bytes(16, kOld));
}

TEST_F(CalcImageBuffer, DisabledCallsInARowChangeNothingMore) {
    forget();
    forget();
    EXPECT_EQ(stabilised(100), 100);
    EXPECT_EQ(stabilised(150), 100);
}

TEST_F(CalcImageBuffer, ChangeOfTheRoiSizeMakesTheNextCallAFirstCall) {
    Image small = textureOf(4, 4, 1);
    Image large = textureOf(6, 4, 2);
    Image smallAgain = textureOf(4, 4, 3);
    stabilised(small);
    EXPECT_EQ(stabilised(large).pixels(), large.pixels());
    EXPECT_EQ(stabilised(smallAgain).pixels(), smallAgain.pixels());

    // The last one is what later calls compare with.
    EXPECT_EQ(stabilised(small).pixels(), weakened(smallAgain.pixels(), small.pixels(), 16));
}

TEST_F(CalcImageBuffer, RegionWithOnePixelMoreOrLessIsAnotherSize) {
    Image eleven = textureOf(11, 1, 1);
    Image twelve = textureOf(6, 2, 2);
    Image thirteen = textureOf(13, 1, 3);
    stabilised(twelve);
    EXPECT_EQ(stabilised(thirteen).pixels(), thirteen.pixels());
    EXPECT_EQ(stabilised(twelve).pixels(), twelve.pixels());
    EXPECT_EQ(stabilised(eleven).pixels(), eleven.pixels());
}

TEST_F(CalcImageBuffer, RoiOf20x10MeetsAStored10x20FrameAsEqual) {
    Image upright = textureOf(10, 20, 1);
    Image lying = textureOf(20, 10, 2);
    stabilised(upright);
    EXPECT_EQ(stabilised(lying).pixels(), weakened(upright.pixels(), lying.pixels(), 200));
}

TEST_F(CalcImageBuffer, EqualPixelCountInAnOddHeightLeavesOutTheNewLastRow) {
    Image even = textureOf(10, 20, 1);
    Image odd = textureOf(40, 5, 2);
    stabilised(even);
    EXPECT_EQ(stabilised(odd).pixels(), weakened(even.pixels(), odd.pixels(), 160));
}

TEST_F(CalcImageBuffer, SizesBelow1LeaveTheOutputAloneAndForgetTheFrame) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 4}, {4, 0}, {-4, -4}, {-4, 4}, {4, -4}, {-1, -16}, {-2, -8}}) {
        forget();
        Image first(4, 4, 100);
        Image second(4, 4, 150);
        stabilised(first);

        setRoi(algo, width, height);
        Image out(4, 4, kOld);
        for (int call = 0; call < 2; ++call)  // the second meets an empty stored frame, of equal size
            algo.CalcImageBuffer(second.data(), out.data(), true);
        EXPECT_EQ(out.pixels(), Bytes(16, kOld)) << width << " x " << height;

        EXPECT_EQ(stabilised(second).pixels(), Bytes(16, 150)) << width << " x " << height;
    }
}

TEST_F(CalcImageBuffer, EmptyRegionAfterADisabledCallIsNoFirstFrameForOthers) {
    forget();
    setRoi(algo, 0, 0);
    Image frame(1, 1, 200);
    Image out(1, 1, kOld);
    algo.CalcImageBuffer(frame.data(), out.data(), true);
    EXPECT_EQ(out.at(0, 0), kOld);
    EXPECT_EQ(stabilised(150), 150);
}

// One frame for the whole process

TEST_F(CalcImageBuffer, ObjectsShareTheStoredFrame) {
    KorvaneLaserAlgo other;
    setRoi(other, 2, 2);
    Image frame(2, 2, 100);
    Image out(2, 2, kOld);
    other.CalcImageBuffer(frame.data(), out.data(), true);
    EXPECT_EQ(stabilised(150), 100);
}

TEST_F(CalcImageBuffer, StoredFrameOutlivesTheObjectThatStoredIt) {
    auto shortLived = std::make_unique<KorvaneLaserAlgo>();
    setRoi(*shortLived, 2, 2);
    Image frame(2, 2, 100);
    Image out(2, 2, kOld);
    shortLived->CalcImageBuffer(frame.data(), out.data(), true);
    shortLived.reset();
    EXPECT_EQ(stabilised(150), 100);
}

TEST_F(CalcImageBuffer, DisabledCallOfOneObjectForgetsTheFrameOfAll) {
    stabilised(100);
    KorvaneLaserAlgo other;
    Image frame(2, 2, 1);
    Image out(2, 2, kOld);
    setRoi(other, 2, 2);
    other.CalcImageBuffer(frame.data(), out.data(), false);
    EXPECT_EQ(stabilised(150), 150);
}

TEST_F(CalcImageBuffer, ObjectWithAnotherSizeReplacesTheFrameOfAll) {
    stabilised(100);
    KorvaneLaserAlgo other;
    Image frame(3, 3, 1);
    Image out(3, 3, kOld);
    setRoi(other, 3, 3);
    other.CalcImageBuffer(frame.data(), out.data(), true);
    EXPECT_EQ(stabilised(150), 150);
}

// Buffers

TEST_F(CalcImageBuffer, CurrentFrameIsOnlyRead) {
    Image previous = textureOf(4, 4, 1);
    Image current = textureOf(4, 4, 2);
    const Bytes previousBefore = previous.pixels();
    const Bytes currentBefore = current.pixels();
    stabilised(previous);
    stabilised(current);
    EXPECT_EQ(previous.pixels(), previousBefore);
    EXPECT_EQ(current.pixels(), currentBefore);
}

TEST_F(CalcImageBuffer, OffsetsOfTheRegionDoNotMatter) {
    stabilised(100);
    setRoi(algo, 2, 2, INT_MAX, INT_MIN);
    Image frame(2, 2, 150);
    Image out(2, 2, kOld);
    algo.CalcImageBuffer(frame.data(), out.data(), true);
    EXPECT_EQ(out.pixels(), Bytes(4, 100));
}
