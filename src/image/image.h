// From a frame to a frame, and from a frame to an exposure, as the public header describes them.

#ifndef KORVANE_IMAGE_IMAGE_H
#define KORVANE_IMAGE_IMAGE_H

#include "algo/AlgoContext.h"

namespace KORVANELASERALGO::image {

void GaussianBlur(const AlgoContext& context, const unsigned char* src, unsigned char* dst, int ksize);
void Otsu2(const AlgoContext& context, int threshold, unsigned char* out, const unsigned char* src);
void Otsu3(const AlgoContext& context, unsigned char* out, int* labels, unsigned char* src);
void MergeImg(const AlgoContext& context, const unsigned char* first, const unsigned char* second, unsigned char* out);
void CalcImageBuffer(const AlgoContext& context, const unsigned char* current, unsigned char* out, bool enable);
bool AutoExposure(const AlgoContext& context, const unsigned char* image, double target, double exposure,
                  double minExposure, double maxExposure, double step, bool enable, double& newExposure);

}  // namespace KORVANELASERALGO::image

#endif  // KORVANE_IMAGE_IMAGE_H
