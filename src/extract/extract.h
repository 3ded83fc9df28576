// From a frame to one sub-pixel 2D point per column: the six methods, as the public header describes them.

#ifndef KORVANE_EXTRACT_EXTRACT_H
#define KORVANE_EXTRACT_EXTRACT_H

#include <vector>

#include "algo/AlgoContext.h"

namespace KORVANELASERALGO::extract {

using Points2d = std::vector<tagKorvaneLaserPoint2d>;

void Cal2DPoint1(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points);
void Cal2DPoint1_1(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points);
void Cal2DPoint2(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points);
void Cal2DPoint2_1(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points);
void Cal2DPoint3(const AlgoContext& context, bool* mask, const unsigned char* image, Points2d& points, int cap);
void Cal2DPoint4(const AlgoContext& context, bool* mask, unsigned char* image, Points2d& points, int threshold);

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_EXTRACT_H
