// The plain twins, for the table and for what lanes leave to them: images narrower than a lane.

#ifndef KORVANE_KERNELS_PLAIN_PLAIN_H
#define KORVANE_KERNELS_PLAIN_PLAIN_H

#include "kernels/kernels.h"

namespace KORVANELASERALGO::kernels::plain {

void findColumnMaxima(const unsigned char* image, int width, int height, unsigned char floor, unsigned char* maxima,
                      unsigned char* active);
std::size_t findTransitions(const unsigned char* image, int width, int height, int firstRow,
                            const unsigned char* thresholds, const unsigned char* active, std::uint64_t* state,
                            Transition* transitions);
void sumAbove(const unsigned char* image, int width, int height, unsigned char level, ColumnSum* sums);
void findStripeStarts(const unsigned char* image, int width, int firstColumn, int endColumn, int firstRow, int endRow,
                      const int* thresholds, int* starts);
void cutAndSum(unsigned char* image, int width, int height, int threshold, std::uint32_t* sums, float* moments);
void copyAbove(const unsigned char* image, int stride, int columns, int rows, const unsigned char* thresholds,
               unsigned char* out, int* labels);
void widenRanges(const unsigned char* image, int stride, int columns, int rows, unsigned char* smallest,
                 unsigned char* largest);
void copyWithMaxima(const unsigned char* image, int width, int height, unsigned char* out, unsigned char* maxima);
void subtractChange(const unsigned char* current, std::size_t count, unsigned char* previous, unsigned char* out);
void blurRows(const unsigned char* image, int width, int rows, const double* weights, int radius, unsigned char* out);
void blurColumns(const unsigned char* image, int width, int rows, const double* weights, int radius,
                 unsigned char* out);
void markAbove(const unsigned char* pixels, std::size_t count, unsigned char level, std::uint64_t* marks);
std::uint64_t countMarks(const std::uint64_t* marks, int width, int height, std::uint64_t* columns);
void castVotes(const float* x, const float* y, std::size_t count, float cosine, float sine, std::int32_t* votes,
               std::ptrdiff_t stride);
std::int32_t sumVotes(std::int32_t* votes, std::ptrdiff_t stride, std::ptrdiff_t count, std::int32_t* sums);
std::int32_t boundVotes(const VoteBoxes& boxes, float cosine, float sine, std::int32_t middle, std::int32_t* changes);
std::size_t findNearLine(const BoxedPoints& points, float cosine, float sine, float distance, float tolerance,
                         float slack, std::size_t* indices);
void undistort(const Pinhole& camera, const LensDistortion& lens, double* points, std::size_t count);
void meetPlane(const LightSheet& sheet, const bool* found, const double* points, std::size_t count, double* points3d);
void meetSurface(const LightSheet& sheet, const bool* found, const double* points, std::size_t count, double* points3d);

std::size_t listHeights(const double* points, std::size_t count, double* heights);
std::size_t storeHeights(double* points, std::size_t count, const double* heights);
bool findMedians(const double* heights, std::size_t count, int r, double* medians);
void smoothHeights(const double* heights, std::size_t count, const double* weights, std::size_t reach, double step,
                   double* smoothed);
std::size_t listUsable(const double* points, std::size_t first, std::size_t end, double* x, double* z,
                       std::int32_t* positions);
std::size_t keepOutliers(const double* x, const double* z, std::size_t count, std::size_t w, double threshold,
                         double slopeBound, double* slopes, std::int32_t* positions);
std::size_t countFollowers(const double* points, std::size_t count, double limit);
std::size_t numberBuckets(const double* points, std::size_t count, double width, std::int32_t* buckets);

extern const KernelSet kTable;

}  // namespace KORVANELASERALGO::kernels::plain

#endif  // KORVANE_KERNELS_PLAIN_PLAIN_H
