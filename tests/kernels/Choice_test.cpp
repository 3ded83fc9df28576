// Which set of kernels runs.

#include <gtest/gtest.h>

#include "kernels/check/check.h"
#include "kernels/kernels.h"

namespace {

using namespace KORVANELASERALGO::kernels;

TEST(SetsOfBuild, BeginWithThePlainOneWhichEveryProcessorHas) {
    const SetsOfBuild sets = setsOfBuild();
    ASSERT_NE(sets.begin(), sets.end());
    EXPECT_STREQ(sets.begin()->set->name, "plain");
    EXPECT_TRUE(sets.begin()->supported);
}

TEST(Activate, MakesEachSetOfTheProcessorTheOneThatRuns) {
    const KernelSet& before = chosen();
    for (const SetOfBuild& candidate : setsOfBuild()) {
        if (!candidate.supported) continue;
        activate(*candidate.set);
        EXPECT_EQ(&chosen(), candidate.set) << candidate.set->name;
    }
    activate(before);
    EXPECT_EQ(&chosen(), &before);
}

}  // namespace
