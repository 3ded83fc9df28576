// A pass of the active set beside its plain twin, both on buffers that end where an inaccessible page begins, or begin
// where one ends: what it gives must be the same, and an access beyond a buffer ends the program.

#ifndef KORVANE_TESTS_KERNELS_PASSRUN_H
#define KORVANE_TESTS_KERNELS_PASSRUN_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "kernels/kernels.h"
#include "support/CheckedBuffer.h"
#include "support/Support.h"

namespace passes {

using namespace KORVANELASERALGO::kernels;

template <class T>
using Buffer = support::CheckedBuffer<T>;
using Bytes = std::vector<unsigned char>;

inline std::size_t sizeOf(int count) {
    return static_cast<std::size_t>(count);
}

/// What a pass is given at random.
class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    int below(int end) { return static_cast<int>(engine_() % static_cast<unsigned>(end)); }
    unsigned char grey() { return static_cast<unsigned char>(below(256)); }
    /// A multiple of 1/64 in [low, high).
    double number(int low, int high) { return low + below((high - low) * 64) / 64.0; }

    Bytes greys(std::size_t count) {
        Bytes list(count);
        for (unsigned char& value : list) value = grey();
        return list;
    }

    /// Blocks that are dark, bright, of one grey or of any; half of the images are mostly dark.
    Bytes image(int width, int height) {
        Bytes pixels(sizeOf(width) * sizeOf(height));
        const int kindsOfDark = below(2) == 0 ? 2 : 12;
        for (int r = 0; r < height; r += kBandRows) {
            for (int c = 0; c < width; c += 16) {
                const int kind = below(kindsOfDark + 3) - kindsOfDark;
                const unsigned char one = grey();
                for (int y = r; y < height && y < r + kBandRows; ++y) {
                    for (int x = c; x < width && x < c + 16; ++x) {
                        const int level = kind < 0    ? below(20)
                                          : kind == 0 ? 230 + below(26)
                                          : kind == 1 ? one
                                                      : below(256);
                        pixels[sizeOf(y) * sizeOf(width) + sizeOf(x)] = static_cast<unsigned char>(level);
                    }
                }
            }
        }
        return pixels;
    }

private:
    std::mt19937 engine_;
};

/// What a pass gives, as numbers.
class Results {
public:
    void add(double value) { values_.push_back(value); }
    template <class T>
    void addFirst(std::size_t count, Buffer<T>& buffer) {
        EXPECT_TRUE(buffer.guardsIntact()) << "something was written outside a buffer";
        for (std::size_t i = 0; i < count; ++i) add(static_cast<double>(buffer.data()[i]));
    }
    /// All of a buffer.
    template <class T>
    void add(Buffer<T>& buffer) {
        addFirst(buffer.size(), buffer);
    }
    void addWords(std::size_t count, Buffer<std::uint64_t>& words) {
        EXPECT_TRUE(words.guardsIntact()) << "something was written outside a buffer";
        for (std::size_t i = 0; i < count; ++i) {
            add(static_cast<double>(words.data()[i] & 0xffffffffU));
            add(static_cast<double>(words.data()[i] >> 32));
        }
    }
    const std::vector<double>& values() const { return values_; }

private:
    std::vector<double> values_;
};

/// Runs `pass(set, random)`, which returns the Results, with both sets and the same random numbers.
template <class Pass>
void expectTwinsAgree(const std::string& what, Pass pass) {
    static unsigned seed = 0;
    ++seed;
    for (const support::Placement placement : {support::Placement::kAtPageStart, support::Placement::kAtPageEnd}) {
        support::BufferRoom::place(placement);
        Random random(seed);
        Random sameAgain(seed);
        const Results results = pass(active(), random);
        const Results ofTwin = pass(*setsOfBuild().begin()->set, sameAgain);
        EXPECT_TRUE(support::sameBits(results.values(), ofTwin.values())) << what;
    }
    support::BufferRoom::place(support::Placement::kBetweenGuardBytes);
}

/// For images of sizes around the lanes and the bands.
template <class Pass>
void expectTwinsAgreeOnImages(Pass pass) {
    for (const int width : {1, 2, 5, 15, 16, 17, 31, 32, 33, 47, 63, 64, 65, 80, 96, 127, 128, 129, 150, 192, 200}) {
        for (const int height : {1, 2, 3, 7, 8, 9, 16, 23, 33}) {
            expectTwinsAgree(std::to_string(width) + " x " + std::to_string(height),
                             [&](const KernelSet& set, Random& random) { return pass(set, random, width, height); });
            if (testing::Test::HasFailure()) return;
        }
    }
}

/// For lists of sizes around the lanes and several of them.
template <class Pass>
void expectTwinsAgreeOnLists(Pass pass) {
    std::vector<std::size_t> counts = {95, 96, 97, 127, 128, 129, 255, 256, 257, 300};
    for (std::size_t count = 0; count <= 67; ++count) counts.insert(counts.end(), 2, count);
    for (const std::size_t count : counts) {
        expectTwinsAgree(std::to_string(count),
                         [&](const KernelSet& set, Random& random) { return pass(set, random, count); });
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace passes

#endif  // KORVANE_TESTS_KERNELS_PASSRUN_H
