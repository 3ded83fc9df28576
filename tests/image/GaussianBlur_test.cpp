#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "kernels/kernels.h"
#include "support/Support.h"

using namespace support;

namespace {

constexpr unsigned char kOld = 7;  // grey value that the caller left in the destination

using Bytes = std::vector<unsigned char>;
using Weights = std::vector<double>;

/// Taps -r .. r of a Gaussian of sigma 1, divided by their sum.
Weights weightsOf(int ksize) {
    const int r = ksize / 2;
    Weights weights;
    double sum = 0.0;
    for (int i = -r; i <= r; ++i) {
        weights.push_back(std::exp(static_cast<double>(-(i * i)) * 0.5));
        sum += weights.back();
    }
    for (double& weight : weights) weight /= sum;
    return weights;
}

/// Grey values under the taps, in their order, summed up and truncated.
int blurred(const std::vector<int>& greys, const Weights& weights) {
    double sum = 0.0;
    for (std::size_t k = 0; k < weights.size(); ++k) sum += greys[k] * weights[k];
    return static_cast<int>(sum);
}

double tapSum(int grey, const Weights& weights) {
    double sum = 0.0;
    for (double weight : weights) sum += grey * weight;
    return sum;
}

Image blur(Image& src, int ksize) {
    KorvaneLaserAlgo algo;
    setRoi(algo, src.width(), src.height());
    Image dst(src.width(), src.height(), kOld);
    algo.GaussianBlur(src.data(), dst.data(), ksize);
    return dst;
}

/// One row with the given grey values.
Image rowOf(const std::vector<int>& greys) {
    Image image(static_cast<int>(greys.size()), 1);
    for (int column = 0; column < image.width(); ++column)
        image.at(0, column) = static_cast<unsigned char>(greys[static_cast<std::size_t>(column)]);
    return image;
}

/// An image without any regularity.
Image textureOf(int width, int height) {
    Image image(width, height);
    unsigned state = 12345;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            image.at(y, x) = static_cast<unsigned char>(state >> 24);
        }
    }
    return image;
}

/// The two passes, pixel by pixel: the rows are filtered in place, the rows above and below the image are not.
Image expectedBlur(Image& src, int ksize) {
    const int width = src.width();
    const int height = src.height();
    const int r = ksize / 2;
    const Weights weights = weightsOf(ksize);

    Image filtered = src;
    std::vector<int> taps(weights.size());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int k = -r; k <= r; ++k) {
                const int column = x + k;
                taps[static_cast<std::size_t>(k + r)] = column < 0        ? src.at(y, 0)
                                                        : column >= width ? src.at(y, width - 1)
                                                                          : filtered.at(y, column);
            }
            filtered.at(y, x) = static_cast<unsigned char>(blurred(taps, weights));
        }
    }

    Image dst(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int k = -r; k <= r; ++k) {
                const int row = y + k;
                taps[static_cast<std::size_t>(k + r)] = row < 0         ? src.at(0, x)
                                                        : row >= height ? src.at(height - 1, x)
                                                                        : filtered.at(row, x);
            }
            dst.at(y, x) = static_cast<unsigned char>(blurred(taps, weights));
        }
    }
    return dst;
}

/// Five pixels above one another, for each column of an image. Above and below are rows without ties, because kernels
/// give up integers where ties are many.
class Columns {
public:
    void add(int a0, int a1, int a2, int a3, int a4) {
        for (std::size_t row = 0; row < kRows; ++row) rows_[row].push_back(row % 2 == 0 ? 10 : 200);
        for (const int grey : {a0, a1, a2, a3, a4})
            rows_[row_++ % 5 + kRowsAbove].back() = static_cast<unsigned char>(grey);
    }

    /// Expects the truncated sums of all columns, added from top to bottom in double precision.
    void expectSums(const Weights& weights) const {
        const std::size_t width = rows_[0].size();
        Bytes image;
        for (const Bytes& row : rows_) image.insert(image.end(), row.begin(), row.end());
        Bytes sums((kRows - 4) * width);
        KORVANELASERALGO::kernels::active().blurColumns(image.data(), static_cast<int>(width), kRows - 4,
                                                        weights.data() + 2, 2, sums.data());
        for (std::size_t x = 0; x < width; ++x) {
            double sum = 0.0;
            for (std::size_t k = 0; k < 5; ++k) sum += rows_[kRowsAbove + k][x] * weights[k];
            ASSERT_EQ(sums[kRowsAbove * width + x], static_cast<int>(sum))
                << "middle " << int{rows_[kRowsAbove + 2][x]} << ", column " << x;
        }
    }

private:
    static constexpr std::size_t kRowsAbove = 12;
    static constexpr std::size_t kRows = kRowsAbove + 5 + 12;
    Bytes rows_[kRows];
    std::size_t row_ = 0;
};

}  // namespace

TEST(GaussianBlur, Size1CopiesTheSource) {
    Image src = textureOf(5, 4);
    EXPECT_EQ(blur(src, 1).pixels(), src.pixels());
}

TEST(GaussianBlur, UniformImageStaysUniformWhereTheTapsAddUpToItsGreyValueOrMore) {
    int held = 0;
    for (int ksize : {1, 3, 5, 7, 9, 11}) {
        const Weights weights = weightsOf(ksize);
        for (int grey = 0; grey < 256; ++grey) {
            if (tapSum(grey, weights) < grey) continue;
            ++held;
            Image src(4, 3, static_cast<unsigned char>(grey));
            ASSERT_EQ(blur(src, ksize).pixels(), src.pixels()) << "size " << ksize << ", grey " << grey;
        }
    }
    EXPECT_GT(held, 6);  // more than the black images
}

TEST(GaussianBlur, UniformImageLosesOneGreyLevelWhereRoundingMakesTheSumSlightlyLess) {
    int lowered = 0;
    for (int ksize : {3, 5, 7, 9, 11}) {
        const Weights weights = weightsOf(ksize);
        for (int grey = 1; grey < 256; ++grey) {
            if (tapSum(grey, weights) >= grey) continue;
            ++lowered;
            // The rows are lowered; up and down, unfiltered rows above and below keep the sum over the lowered value.
            Image src(4, 2, static_cast<unsigned char>(grey));
            ASSERT_EQ(blur(src, ksize).pixels(), Bytes(4 * 2, static_cast<unsigned char>(grey - 1)))
                << "size " << ksize << ", grey " << grey;
        }
    }
    EXPECT_GT(lowered, 0);
}

TEST(GaussianBlur, BothPassesMayLowerAUniformImage) {
    // Far from the border all taps of the second pass read filtered rows.
    for (int ksize : {3, 5, 7}) {
        const Weights weights = weightsOf(ksize);
        for (int grey = 0; grey < 256; ++grey) {
            const int once = static_cast<int>(tapSum(grey, weights));
            const int twice = static_cast<int>(tapSum(once, weights));
            Image src(3, 2 * ksize + 1, static_cast<unsigned char>(grey));
            ASSERT_EQ(blur(src, ksize).at(ksize, 1), twice) << "size " << ksize << ", grey " << grey;
        }
    }
}

TEST(GaussianBlur, SumOf254Point9999Gives254) {
    // Only the outermost of nine taps reads 254: the sum is 255 - exp(-8) / 2.5066, less than 254.9999.
    const Weights weights = weightsOf(9);
    EXPECT_GT(255.0 - weights[8], 254.999);
    EXPECT_LT(255.0 - weights[8], 254.9999);
    Image src = rowOf({255, 255, 255, 255, 254});

    // In the second pass the centre tap reads the first pass's 254, the unfiltered rows above and below read 255.
    const int first = 254;
    EXPECT_EQ(blur(src, 9).at(0, 0), blurred({255, 255, 255, 255, first, 255, 255, 255, 255}, weights));
}

TEST(GaussianBlur, HorizontalSumsAreNeverRoundedUp) {
    // 255 - 0.27 = 254.73 is stored as 254, not as 255, which the second pass shows: a stored 255 would stay 255.
    const Weights weights = weightsOf(3);
    Image src = rowOf({255, 255, 254});
    EXPECT_EQ(blur(src, 3).at(0, 1), blurred({255, 254, 255}, weights));
    EXPECT_EQ(blur(src, 3).at(0, 1), 254);
}

TEST(GaussianBlur, VerticalSumsAreNeverRoundedUp) {
    // 203 * 0.2741 is 55.64 and 202 * 0.2741 is 55.36, 203 * 0.4519 is 91.73 and 202 * 0.4519 is 91.28: whether the
    // first pass keeps 203 or truncates to 202, the second gives 55 and 91.
    Image src(1, 5);
    src.at(2, 0) = 203;
    EXPECT_EQ(blur(src, 3).pixels(), (Bytes{0, 55, 91, 55, 0}));
}

TEST(GaussianBlur, LeftTapsReadValuesThatAreFilteredAlready) {
    // w = 0.2741, 0.4519, 0.2741. First pass, left to right: 100 * 0.2741 = 27; 27 * 0.2741 + 100 * 0.4519 = 52;
    // 52 * 0.2741 = 14; 14 * 0.2741 = 3; 3 * 0.2741 = 0.
    const Weights w = weightsOf(3);
    const int first[] = {0, 27, 52, 14, 3, 0};
    ASSERT_EQ(blurred({0, 0, 100}, w), first[1]);
    ASSERT_EQ(blurred({27, 100, 0}, w), first[2]);
    ASSERT_EQ(blurred({52, 0, 0}, w), first[3]);
    ASSERT_EQ(blurred({14, 0, 0}, w), first[4]);
    ASSERT_EQ(blurred({3, 0, 0}, w), first[5]);

    Image src = rowOf({0, 0, 100, 0, 0, 0});
    Image dst = blur(src, 3);
    for (int x = 0; x < 6; ++x) {
        const int unfiltered = src.at(0, x);  // the rows above and below
        EXPECT_EQ(dst.at(0, x), blurred({unfiltered, first[x], unfiltered}, w)) << "column " << x;
    }
    EXPECT_EQ(dst.pixels(), (Bytes{0, 12, 78, 6, 1, 0}));
}

TEST(GaussianBlur, RowsAboveAndBelowStayUnfiltered) {
    // A single row: the second pass reads the row itself filtered, above and below as it came.
    const Weights w = weightsOf(3);
    Image src = rowOf({200, 0, 0});
    const int first = blurred({200, 200, 0}, w);
    ASSERT_NE(first, 200);
    EXPECT_EQ(blur(src, 3).at(0, 0), blurred({200, first, 200}, w));
}

TEST(GaussianBlur, LeftAndRightBordersRepeatTheEdgePixelNeverZeros) {
    const Weights w = weightsOf(3);
    Image src(2, 3);
    src.drawLine(0, {100, 100, 100});
    for (int y = 0; y < 3; ++y) src.at(y, 1) = 180;
    // Left: its own unfiltered value once more; right likewise, while its left neighbour is filtered already.
    const int left = blurred({100, 100, 180}, w);
    const int right = blurred({left, 180, 180}, w);

    Image dst = blur(src, 3);
    EXPECT_EQ(dst.at(1, 0), blurred({left, left, left}, w));
    EXPECT_EQ(dst.at(1, 1), blurred({right, right, right}, w));
    EXPECT_GT(dst.at(1, 0), 100);  // a border of zeros would make it darker
    EXPECT_GT(dst.at(1, 1), 140);
}

TEST(GaussianBlur, TopAndBottomBordersRepeatTheUnfilteredEdgeRowNeverZeros) {
    const Weights w = weightsOf(3);
    Image src(1, 3);
    src.drawColumn(0, 0, {201, 0, 97});
    const int top = blurred({201, 201, 201}, w);
    const int bottom = blurred({97, 97, 97}, w);
    EXPECT_EQ(blur(src, 3).pixels(), (Bytes{static_cast<unsigned char>(blurred({201, top, 0}, w)),
                                            static_cast<unsigned char>(blurred({top, 0, bottom}, w)),
                                            static_cast<unsigned char>(blurred({0, bottom, 97}, w))}));
}

TEST(GaussianBlur, SigmaIs1WhateverTheSize) {
    // A lone bright row: one row further the response falls by exp(-0.5), two rows further by exp(-2), for any size.
    for (int ksize : {5, 7, 9}) {
        const Weights w = weightsOf(ksize);
        const auto centre = static_cast<std::size_t>(ksize / 2);
        const double sum = 1.0 + 2.0 * std::exp(-0.5) + 2.0 * std::exp(-2.0) +
                           (ksize >= 7 ? 2.0 * std::exp(-4.5) : 0.0) + (ksize >= 9 ? 2.0 * std::exp(-8.0) : 0.0);
        ASSERT_NEAR(w[centre], 1.0 / sum, 1e-15);

        Image src(1, 21);
        src.at(10, 0) = 250;
        const int first = blurred(std::vector<int>(w.size(), 250), w);
        Image dst = blur(src, ksize);
        EXPECT_EQ(dst.at(10, 0), static_cast<int>(first * w[centre])) << "size " << ksize;
        EXPECT_EQ(dst.at(11, 0), static_cast<int>(first * w[centre + 1])) << "size " << ksize;
        EXPECT_EQ(dst.at(8, 0), static_cast<int>(first * w[centre - 2])) << "size " << ksize;
    }
}

TEST(GaussianBlur, TexturedImageFollowsBothPassesPixelByPixel) {
    for (int ksize : {3, 5, 7, 9, 15}) {
        Image src = textureOf(13, 9);
        EXPECT_EQ(blur(src, ksize).pixels(), expectedBlur(src, ksize).pixels()) << "size " << ksize;
    }
}

TEST(GaussianBlur, HorizontalTapsAreSummedUpFromTheLeft) {
    // Three taps a, b and 2 b - a add up to b but for the rounding of the sums, which depends on their order.
    const Weights w = weightsOf(3);
    int told = 0;
    for (int edge = 0; edge < 256; ++edge) {
        for (int middle = 0; middle < 256; ++middle) {
            const int left = blurred({edge, edge, middle}, w);  // the edge pixel, filtered already
            const int right = 2 * middle - left;
            if (right < 0 || right > 255) continue;
            const int fromTheLeft = blurred({left, middle, right}, w);
            if (fromTheLeft == blurred({right, middle, left}, w)) continue;
            ++told;
            Image src = rowOf({edge, middle, right});
            ASSERT_EQ(blur(src, 3).at(0, 1), blurred({middle, fromTheLeft, middle}, w)) << edge << ", " << middle;
        }
    }
    EXPECT_GT(told, 0);
}

TEST(GaussianBlur, VerticalTapsAreSummedUpFromTheTop) {
    const Weights w = weightsOf(3);
    int told = 0;
    for (int top = 0; top < 256; ++top) {
        for (int middle = 0; middle < 256; ++middle) {
            const int bottom = 2 * middle - top;
            if (bottom < 0 || bottom > 255) continue;
            // A single column: each row is filtered by itself.
            const int first[] = {blurred({top, top, top}, w), blurred({middle, middle, middle}, w),
                                 blurred({bottom, bottom, bottom}, w)};
            const int fromTheTop = blurred({first[0], first[1], first[2]}, w);
            if (fromTheTop == blurred({first[2], first[1], first[0]}, w)) continue;
            ++told;
            Image src(1, 3);
            src.drawColumn(0, 0, {top, middle, bottom});
            ASSERT_EQ(blur(src, 3).at(1, 0), fromTheTop) << top << ", " << middle;
        }
    }
    EXPECT_GT(told, 0);
}

TEST(GaussianBlur, FiveTapsThatDoNotTieSumUpFarFromEveryInteger) {
    // What the kernels' integers rest on. The sum is a2 + w1 q + w2 p with q = a1 + a3 - 2 a2 and p = a0 + a4 - 2 a2.
    const Weights weights = weightsOf(5);
    double nearest = 1.0;
    for (int q = -510; q <= 510; ++q) {
        for (int p = std::max(-510, q - 510); p <= std::min(510, q + 510); ++p) {
            if (q == 0 && p == 0) continue;
            const double sum = weights[1] * q + weights[0] * p;
            nearest = std::min(nearest, std::abs(sum - std::round(sum)));
        }
    }
    EXPECT_GT(nearest, 6.4e-7);
}

TEST(GaussianBlur, EverySumOfFiveTapsIsTruncatedAsInDoublePrecision) {
    // Of the pixels that yield a pair q, p, some: only these two and the middle pixel matter where they do not tie.
    const Weights weights = weightsOf(5);
    for (int q = -510; q <= 510; ++q) {
        Columns columns;
        for (int p = std::max(-510, q - 510); p <= std::min(510, q + 510); ++p) {
            const int least = std::max({0, (1 - q) / 2, (1 - p) / 2});
            const int most = std::min({255, (510 - q) / 2, (510 - p) / 2});
            for (const int middle : {least, most}) {
                const int inner = q + 2 * middle;
                const int outer = p + 2 * middle;
                columns.add(std::min(outer, 255), inner / 2, middle, inner - inner / 2, outer - std::min(outer, 255));
            }
        }
        columns.expectSums(weights);
        if (HasFatalFailure()) return;
    }
}

TEST(GaussianBlur, EveryTieOfFiveTapsIsTruncatedAsInDoublePrecision) {
    const Weights weights = weightsOf(5);
    for (int middle = 0; middle < 256; ++middle) {
        Columns columns;
        for (int top = std::max(0, 2 * middle - 255); top <= std::min(255, 2 * middle); ++top) {
            for (int upper = std::max(0, 2 * middle - 255); upper <= std::min(255, 2 * middle); ++upper)
                columns.add(top, upper, middle, 2 * middle - upper, 2 * middle - top);
        }
        columns.expectSums(weights);
        if (HasFatalFailure()) return;
    }
}

TEST(GaussianBlur, ImagesWithManyTiesFollowBothPasses) {
    const int width = 200;
    const int height = 70;
    const auto expectBlurred = [](Image& src, const char* name) {
        EXPECT_EQ(blur(src, 5).pixels(), expectedBlur(src, 5).pixels()) << name;
    };
    for (int amplitude : {0, 1, 2, 7, 30}) {
        Image noise = textureOf(width, height);
        Image ramp(width, height);
        Image stripes(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int random = noise.at(y, x) % (amplitude + 1);
                noise.at(y, x) = static_cast<unsigned char>(x / 64 * 50 + random);
                ramp.at(y, x) = static_cast<unsigned char>(x + amplitude * y / 8);
                stripes.at(y, x) = static_cast<unsigned char>(y % 16 < 8 ? 20 + x / 40 : amplitude);
            }
        }
        expectBlurred(noise, "noise");
        expectBlurred(ramp, "ramp");
        expectBlurred(stripes, "stripes");
    }
}

TEST(GaussianBlur, WidthsAroundVectorLengthsFollowBothPasses) {
    for (int width = 1; width <= 70; ++width) {
        Image src = textureOf(width, 3);
        EXPECT_EQ(blur(src, 5).pixels(), expectedBlur(src, 5).pixels()) << "width " << width;
    }
}

TEST(GaussianBlur, ImageSmallerThanTheKernelRepeatsItsEdges) {
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{{1, 1}, {2, 1}, {1, 2}, {2, 2}, {3, 3}}) {
        Image src = textureOf(width, height);
        EXPECT_EQ(blur(src, 101).pixels(), expectedBlur(src, 101).pixels()) << width << " x " << height;
    }
}

TEST(GaussianBlur, EvenSizeOrSizeBelow1CopiesTheSource) {
    Image src = textureOf(6, 5);
    for (int ksize : {2, 4, 6, 100, INT_MAX - 1, 0, -1, -2, -3, INT_MIN, INT_MIN + 1})
        EXPECT_EQ(blur(src, ksize).pixels(), src.pixels()) << "size " << ksize;
}

TEST(GaussianBlur, SourceIsOnlyRead) {
    Image src = textureOf(6, 5);
    const Bytes before = src.pixels();
    blur(src, 5);
    EXPECT_EQ(src.pixels(), before);
}

TEST(GaussianBlur, SizesBelow1LeaveTheDestinationAlone) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{0, 0}, {0, 4}, {4, 0}, {-4, -4}, {-4, 4}, {4, -4}}) {
        for (int ksize : {-1, 0, 1, 2, 3, 9}) {
            KorvaneLaserAlgo algo;
            setRoi(algo, width, height);
            Image src(4, 4, 200);
            Image dst(4, 4, kOld);
            algo.GaussianBlur(src.data(), dst.data(), ksize);
            EXPECT_EQ(dst.pixels(), Bytes(16, kOld)) << width << " x " << height << ", size " << ksize;
        }
    }
}

TEST(GaussianBlur, OffsetsOfTheRegionDoNotMatter) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 4, 3, INT_MAX, INT_MIN);
    Image src = textureOf(4, 3);
    Image dst(4, 3, kOld);
    algo.GaussianBlur(src.data(), dst.data(), 3);
    EXPECT_EQ(dst.pixels(), expectedBlur(src, 3).pixels());
}

TEST(GaussianBlur, OldContentsOfTheDestinationDoNotMatter) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 4, 3);
    Image src = textureOf(4, 3);
    Image dst(4, 3, 255);
    algo.GaussianBlur(src.data(), dst.data(), 3);
    EXPECT_EQ(dst.pixels(), expectedBlur(src, 3).pixels());
}
