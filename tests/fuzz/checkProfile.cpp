// The profile filters, each on the same profile.

#include "fuzz/Checks.h"
#include "fuzz/Comparison.h"
#include "fuzz/Profiles.h"
#include "fuzz/Twins.h"

namespace fuzz {

std::string checkProfile(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    Comparison comparison("checkProfile", data, size);
    Twins twins(comparison);

    const float threshold = drawThreshold(input);
    FuzzInput window = input.take(4);
    FuzzInput bucket = input.take(4);
    const Profile profile = drawProfile(input);
    const int halfWidth = drawHalfWidth(window, profile.size());
    const float step = drawStep(bucket, profile);
    comparison.remember("std::vector<tagKorvaneLaserPoint3d> profile", profile);
    comparison.remember("const int halfWidth", halfWidth);
    comparison.remember("const float threshold", static_cast<double>(threshold));
    comparison.remember("const float step", static_cast<double>(step));

    Profile filtered = profile;
    twins.Outlierdetect1(filtered, halfWidth, threshold);
    filtered = profile;
    twins.Outlierdetect2(filtered, halfWidth, threshold);
    filtered = profile;
    twins.medianfilter(filtered, halfWidth);
    filtered = profile;
    twins.Gaussianfilter(filtered, halfWidth);

    Profile thinned(2, Point3d{-7.0, -7.0, -7.0});
    int count = -7;
    twins.Downsample(profile, step, thinned, count);
    return comparison.report();
}

}  // namespace fuzz
