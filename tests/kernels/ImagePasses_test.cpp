// The passes over images beside their plain twins, on images of sizes around the lanes that lie beside inaccessible
// pages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kernels/PassRun.h"

namespace {

using namespace passes;

// 1 for each band and block with a pixel above the floor.
Bytes blocksAbove(Buffer<unsigned char>& image, int width, int height, int floor) {
    Bytes active(sizeOf(bandsOf(height)) * sizeOf(blocksOf(width)), 0);
    for (int r = 0; r < height; ++r) {
        for (int c = 0; c < width; ++c) {
            const std::size_t block = sizeOf(r / kBandRows) * sizeOf(blocksOf(width)) + sizeOf(c / kBlockColumns);
            if (image.data()[sizeOf(r) * sizeOf(width) + sizeOf(c)] > floor) active[block] = 1;
        }
    }
    return active;
}

TEST(FindColumnMaxima, GivesWhatItsTwinGivesAndMissesNoBlock) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> image(random.image(width, height));
        const unsigned char floor =
            static_cast<unsigned char>(std::vector{0, 19, 20, 254, 255}[sizeOf(random.below(5))]);
        const Bytes above = blocksAbove(image, width, height, floor);
        Buffer<unsigned char> maxima(random.greys(sizeOf(width)));
        Buffer<unsigned char> active(random.greys(above.size()));
        set.findColumnMaxima(image.data(), width, height, floor, maxima.data(), active.data());
        for (std::size_t i = 0; i < above.size(); ++i) EXPECT_TRUE(active.data()[i] != 0 || above[i] == 0);
        EXPECT_TRUE(active.guardsIntact());
        Results results;
        results.add(maxima);
        return results;
    });
}

TEST(FindTransitions, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> image(random.image(width, height));
        const int lowest = std::vector{0, 20, 100, 200}[sizeOf(random.below(4))];
        Bytes levels(sizeOf(width));
        for (unsigned char& level : levels) level = static_cast<unsigned char>(lowest + random.below(56));
        Buffer<unsigned char> thresholds(levels);
        Buffer<unsigned char> active(blocksAbove(image, width, height, lowest));
        Buffer<std::uint64_t> state(std::vector<std::uint64_t>(sizeOf(blocksOf(width)), 0));
        const bool known = random.below(2) == 0;

        Results results;
        for (int r = 0; r < height; r += kBandRows) {
            const std::size_t pixels = sizeOf(width) * sizeOf(rowsOfBand(r, height));
            Buffer<Transition> transitions(std::vector<Transition>(pixels, {-1, -1}));
            const unsigned char* ofBand = active.data() + static_cast<std::ptrdiff_t>(r / kBandRows) * blocksOf(width);
            const std::size_t count = set.findTransitions(image.data(), width, height, r, thresholds.data(),
                                                          known ? ofBand : nullptr, state.data(), transitions.data());
            EXPECT_TRUE(transitions.guardsIntact() && state.guardsIntact());
            // Columns come in any order.
            std::stable_sort(transitions.data(), transitions.data() + count,
                             [](const Transition& a, const Transition& b) { return a.column < b.column; });
            for (std::size_t i = 0; i < count; ++i) {
                results.add(transitions.data()[i].column);
                results.add(transitions.data()[i].row);
            }
        }
        return results;
    });
}

TEST(SumAbove, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> image(random.image(width, height));
        Buffer<ColumnSum> sums(std::vector<ColumnSum>(sizeOf(width), {5, 700}));
        set.sumAbove(image.data(), width, height, random.grey(), sums.data());
        EXPECT_TRUE(sums.guardsIntact());
        Results results;
        for (int c = 0; c < width; ++c) {
            results.add(static_cast<double>(sums.data()[c].count));
            results.add(static_cast<double>(sums.data()[c].sum));
        }
        return results;
    });
}

Results stripeStarts(const KernelSet& set, Random& random, int columns, int rows) {
    const int width = columns + 1;
    const int height = rows + 2;
    Buffer<unsigned char> image(random.image(width, height));
    std::vector<int> levels(sizeOf(width));
    for (int& level : levels) level = random.below(260) - 2;
    Buffer<int> thresholds(levels);
    Buffer<int> starts(std::vector<int>(sizeOf(width), -7));
    const int first = random.below(columns);
    set.findStripeStarts(image.data(), width, first, width - 1, 1, height - 1, thresholds.data(), starts.data());
    Results results;
    results.add(starts);
    return results;
}

TEST(FindStripeStarts, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages(stripeStarts);
}

TEST(FindStripeStarts, GivesWhatItsTwinGivesInWideImages) {
    for (const int columns : {4095, 4096, 4097, 8191, 8257}) {
        expectTwinsAgree(std::to_string(columns), [columns](const KernelSet& set, Random& random) {
            return stripeStarts(set, random, columns, 20);
        });
    }
}

TEST(CutAndSum, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> image(random.image(width, height));
        Buffer<std::uint32_t> sums(std::vector<std::uint32_t>(sizeOf(width), 9));
        Buffer<float> moments(std::vector<float>(sizeOf(width), 0.5f));
        const int threshold = std::vector{-256, -1, 0, 1, 20, 200, 254, 255, 256, 300}[sizeOf(random.below(10))];
        set.cutAndSum(image.data(), width, height, threshold, sums.data(), moments.data());
        Results results;
        results.add(image);
        results.add(sums);
        results.add(moments);
        return results;
    });
}

// A part of an image whose last pixel is the last one of the buffer, and whose first is the first.
struct Part {
    int stride;
    std::size_t pixels;

    Part(Random& random, int columns, int rows)
        : stride(columns + random.below(40)), pixels(sizeOf(rows - 1) * sizeOf(stride) + sizeOf(columns)) {}
    Bytes from(const Bytes& image) const { return Bytes(image.begin(), image.begin() + static_cast<int>(pixels)); }
};

TEST(CopyAbove, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int columns, int rows) {
        const Part part(random, columns, rows);
        Buffer<unsigned char> image(part.from(random.image(part.stride, rows)));
        Buffer<unsigned char> out(random.greys(part.pixels));
        Buffer<int> labels(std::vector<int>(part.pixels, -4));
        Buffer<unsigned char> thresholds(random.greys(sizeOf(columns)));
        unsigned char* target = random.below(2) == 0 ? out.data() : image.data();
        set.copyAbove(image.data(), part.stride, columns, rows, thresholds.data(), target,
                      random.below(3) == 0 ? nullptr : labels.data());
        Results results;
        results.add(image);
        results.add(out);
        results.add(labels);
        return results;
    });
}

TEST(WidenRanges, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int columns, int rows) {
        const Part part(random, columns, rows);
        Buffer<unsigned char> image(part.from(random.image(part.stride, rows)));
        Buffer<unsigned char> smallest(random.greys(sizeOf(columns)));
        Buffer<unsigned char> largest(random.greys(sizeOf(columns)));
        set.widenRanges(image.data(), part.stride, columns, rows, smallest.data(), largest.data());
        Results results;
        results.add(smallest);
        results.add(largest);
        return results;
    });
}

TEST(CopyWithMaxima, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> image(random.image(width, height));
        Buffer<unsigned char> out(random.greys(image.size()));
        Buffer<unsigned char> maxima(random.greys(sizeOf(width)));
        set.copyWithMaxima(image.data(), width, height, out.data(), maxima.data());
        Results results;
        results.add(out);
        results.add(maxima);
        return results;
    });
}

TEST(SubtractChange, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> current(random.image(width, height));
        Buffer<unsigned char> previous(random.image(width, height));
        Buffer<unsigned char> out(random.greys(current.size()));
        unsigned char* target = random.below(2) == 0 ? out.data() : current.data();
        set.subtractChange(current.data(), current.size(), previous.data(), target);
        Results results;
        results.add(current);
        results.add(previous);
        results.add(out);
        return results;
    });
}

// Of a Gaussian of sigma 1, from the centre outwards.
std::vector<double> gaussian(int radius) {
    std::vector<double> weights;
    for (int i = 0; i <= radius; ++i) weights.push_back(std::exp(i * i * -0.5));
    double sum = weights[0];
    for (int i = 1; i <= radius; ++i) sum += 2.0 * weights[sizeOf(i)];
    for (double& weight : weights) weight /= sum;
    return weights;
}

int blurRadius(Random& random) {
    return std::vector{1, 2, 2, 3, 4, 7, kLargestBlurRadius}[sizeOf(random.below(7))];
}

TEST(BlurRows, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int rows) {
        const int radius = blurRadius(random);
        Buffer<double> weights(gaussian(radius));
        Buffer<unsigned char> image(random.image(width, rows));
        Buffer<unsigned char> out(random.greys(image.size()));
        set.blurRows(image.data(), width, rows, weights.data(), radius, out.data());
        Results results;
        results.add(out);
        return results;
    });
}

TEST(BlurRows, RisesFromBlackAsItsTwinDoes) {
    constexpr int kWidth = 150;
    constexpr int kRows = 256;  // each with another grey value
    const std::vector<double> weights = gaussian(2);
    std::vector<unsigned char> image(kWidth * kRows, 0);
    for (std::size_t row = 0; row < kRows; ++row)
        std::fill_n(image.begin() + static_cast<std::ptrdiff_t>(row) * kWidth + 70, kWidth - 70,
                    static_cast<unsigned char>((row + 1) * 19 % 256));
    std::vector<unsigned char> out(image.size());
    std::vector<unsigned char> expected(image.size());
    active().blurRows(image.data(), kWidth, kRows, weights.data(), 2, out.data());
    setsOfBuild().first->set->blurRows(image.data(), kWidth, kRows, weights.data(), 2, expected.data());
    EXPECT_EQ(out, expected);
}

TEST(BlurColumns, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int rows) {
        const int radius = blurRadius(random);
        Buffer<double> weights(gaussian(radius));
        Buffer<unsigned char> image(random.image(width, rows + 2 * radius));
        Buffer<unsigned char> out(random.greys(sizeOf(width) * sizeOf(rows)));
        set.blurColumns(image.data(), width, rows, weights.data(), radius, out.data());
        Results results;
        results.add(out);
        return results;
    });
}

TEST(MarkAbove, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        Buffer<unsigned char> pixels(random.image(width, height));
        const std::size_t words = wordsOf(pixels.size());
        Buffer<std::uint64_t> marks(std::vector<std::uint64_t>(words, 0x123456789abcdefU));
        set.markAbove(pixels.data(), pixels.size(), random.grey(), marks.data());
        Results results;
        results.addWords(words, marks);
        return results;
    });
}

TEST(CountMarks, GivesWhatItsTwinGives) {
    expectTwinsAgreeOnImages([](const KernelSet& set, Random& random, int width, int height) {
        const std::size_t pixels = sizeOf(width) * sizeOf(height);
        std::vector<std::uint64_t> words(wordsOf(pixels), 0);
        const int rarity = 1 + random.below(300);
        for (std::size_t i = 0; i < pixels; ++i) {
            if (random.below(rarity) == 0) words[i / 64] |= std::uint64_t{1} << i % 64;
        }
        Buffer<std::uint64_t> marks(words);
        Buffer<std::uint64_t> columns(std::vector<std::uint64_t>(sizeOf(blocksOf(width)) + 1, 77));
        Results results;
        results.add(static_cast<double>(set.countMarks(marks.data(), width, height, columns.data())));
        results.addWords(columns.size(), columns);
        return results;
    });
}

}  // namespace
