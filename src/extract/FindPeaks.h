// The humps of a grey-value profile: local maxima that stand out enough.

#ifndef KORVANE_EXTRACT_FINDPEAKS_H
#define KORVANE_EXTRACT_FINDPEAKS_H

#include <span>
#include <vector>

namespace KORVANELASERALGO::extract {

/// Finds the local maxima that fall by 5 grey levels or more toward their surroundings.
/// @param profile grey values from top to bottom, at least one
/// @param positions, values empty on entry; receive index and grey value of each kept peak, in profile order
void FindPeaks(std::span<const int> profile, std::vector<int>& positions, std::vector<int>& values);

/// Finds the local maxima that fall by 50 grey levels or more on at least one side, and where their descents end.
/// @param profile grey values from top to bottom, at least one
/// @param positions, values, leftFeet, rightFeet empty on entry; receive index, grey value and the indices of both
/// feet of each kept peak, in profile order
void FindPeaksWithFeet(std::span<const int> profile, std::vector<int>& positions, std::vector<int>& values,
                       std::vector<int>& leftFeet, std::vector<int>& rightFeet);

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_FINDPEAKS_H
