// From a profile to a profile: the filters, as the public header describes them.

#ifndef KORVANE_PROFILE_PROFILE_H
#define KORVANE_PROFILE_PROFILE_H

#include <vector>

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO::profile {

using Profile = std::vector<tagKorvaneLaserPoint3d>;

void Outlierdetect1(Profile& profile, int halfWidth, float threshold);
void Outlierdetect2(Profile& profile, int halfWidth, float threshold);
void medianfilter(Profile& profile, int halfWindow);
void Gaussianfilter(Profile& profile, int halfWindow);
void Downsample(const Profile& in, float step, Profile& out, int& count);

}  // namespace KORVANELASERALGO::profile

#endif  // KORVANE_PROFILE_PROFILE_H
