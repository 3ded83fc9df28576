// Cleaning a profile: what each filter takes away, on a level plate with noise, spikes and a gap, whose truth is known.

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "KorvaneLaserAlgo.h"

using namespace KORVANELASERALGO;
using Profile = std::vector<tagKorvaneLaserPoint3d>;

namespace {

constexpr double kPlate = 100.0;  // mm, the plate's z
constexpr double kNoise = 0.05;   // mm
constexpr double kSpike = 8.0;    // mm
constexpr int kColumns = 399;
constexpr double kPitch = 0.1;  // mm from column to column

/// Columns from x = 1 mm on. A gap of 21; beyond it, a spike every 50 columns: five of them.
Profile measuredPlate() {
    Profile profile;
    for (int i = 0; i < kColumns; ++i) {
        const double noise = i % 3 == 0 ? kNoise : -kNoise / 2.0;
        const double spike = i >= 150 && i % 50 == 25 ? kSpike : 0.0;
        const bool gap = i >= 100 && i < 121;
        profile.push_back(gap ? tagKorvaneLaserPoint3d{0.0, 0.0, 0.0}
                              : tagKorvaneLaserPoint3d{1.0 + kPitch * i, 25.0, kPlate + noise + spike});
    }
    return profile;
}

/// Points, those of them that are off the plate, and the largest error of the others.
void report(const char* stage, const Profile& profile) {
    int points = 0;
    int outliers = 0;
    double largest = 0.0;
    for (const tagKorvaneLaserPoint3d& point : profile) {
        if (point.x == 0.0) continue;
        ++points;
        const double error = std::fabs(point.z - kPlate);
        if (error > 1.0)
            ++outliers;
        else
            largest = std::fmax(largest, error);
    }
    std::printf("%s: %d points, %d outliers, others within %.3f mm\n", stage, points, outliers, largest);
}

}  // namespace

int main() {
    KorvaneLaserAlgo algo;  // the filters read no setting
    Profile profile = measuredPlate();
    report("measured", profile);

    // [filters]
    // Outliers first: every other filter would let them pull their neighbours.
    algo.Outlierdetect1(profile, 5, 0.3F);
    report("Outlierdetect1", profile);

    algo.medianfilter1(profile, 2);
    report("medianfilter1", profile);

    algo.Gaussianfilter(profile, 3);
    report("Gaussianfilter", profile);

    // Into a second vector, of which only the first `count` points mean something. It throws where x falls along the
    // profile: a sensor that is mounted the other way round needs its profile turned first.
    Profile thinned;
    int count = 0;
    try {
        algo.Downsample(profile, 1.0F, thinned, count);
    } catch (const std::length_error&) {
        thinned = profile;
        count = static_cast<int>(profile.size());
    }
    thinned.resize(static_cast<std::size_t>(count));
    report("Downsample", thinned);
    // [/filters]
}
