// Library against twin on a fixed, bounded number of random cases per room.

#include <gtest/gtest.h>

#include "fuzz/Checks.h"
#include "fuzz/FuzzInput.h"

namespace {

constexpr std::uint64_t kSeed = 20240229;

// Debug and sanitizer builds and emulated processors are many times slower.
#if defined(NDEBUG) && !defined(KORVANE_EMULATED_PROCESSOR)
constexpr int kShare = 1;
#else
constexpr int kShare = 8;
#endif

void expectNoDifference(const fuzz::Room& room) {
    for (int i = 0; i < room.casesInTests / kShare; ++i) {
        const fuzz::Bytes input = fuzz::randomInput(kSeed, static_cast<std::uint64_t>(i));
        ASSERT_EQ(room.check(input.data(), input.size()), "") << "case " << i;
    }
}

TEST(LibraryAgainstTwin, AgreesOnExtraction) {
    expectNoDifference(fuzz::kRooms[0]);
}

TEST(LibraryAgainstTwin, AgreesOnCalibration) {
    expectNoDifference(fuzz::kRooms[1]);
}

TEST(LibraryAgainstTwin, AgreesOnProfileFilters) {
    expectNoDifference(fuzz::kRooms[2]);
}

TEST(LibraryAgainstTwin, AgreesOnImageOperations) {
    expectNoDifference(fuzz::kRooms[3]);
}

TEST(LibraryAgainstTwin, AgreesOnTheWholeChain) {
    expectNoDifference(fuzz::kRooms[4]);
}

}  // namespace
