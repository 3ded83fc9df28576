// Passes over plain arrays, as a table of functions: one table for each instruction set, all with the same results to
// the last bit. This room knows no record and no algorithm, and it alone knows instruction sets.
//
//     lanes/   the passes over lanes of 64 pixels or several numbers, one source for all sets
//     sets/    that source, compiled once for each set
//     plain/   the twin of every pass in plain C++: for processors without a set here, for small images, for tests
//
// Images are row-major bytes with stride = width and are swept along their rows, because walking down a column touches
// a new cache line at every pixel.

#ifndef KORVANE_KERNELS_KERNELS_H
#define KORVANE_KERNELS_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace KORVANELASERALGO::kernels {

/// Rows that sweeps look at together.
inline constexpr int kBandRows = 8;
/// Columns that sweeps look at together.
inline constexpr int kBlockColumns = 64;

/// Behind a list of numbers, so many more may be read and written.
inline constexpr std::size_t kLaneRoom = 32;

inline constexpr int bandsOf(int height) {
    return height / kBandRows + (height % kBandRows != 0 ? 1 : 0);
}
/// Rows of the band that begins at a row.
inline constexpr int rowsOfBand(int row, int endRow) {
    return endRow - row < kBandRows ? endRow - row : kBandRows;
}
inline constexpr int blocksOf(int width) {
    return width / kBlockColumns + (width % kBlockColumns != 0 ? 1 : 0);
}

/// The largest radius of a blur.
inline constexpr int kLargestBlurRadius = 38;  // pixels

/// Words that hold one bit for each of `count` pixels.
inline constexpr std::size_t wordsOf(std::size_t count) {
    return count / 64 + (count % 64 != 0 ? 1 : 0);
}

/// Where a column becomes bright or dark: the first pixel of the new kind. Above row 0 everything is dark.
struct Transition {
    std::int32_t column;
    std::int32_t row;
};

/// Some pixels of a column.
struct ColumnSum {
    std::uint64_t count;
    std::uint64_t sum;  ///< grey levels
};

/// Marks a column in which no stripe starts.
inline constexpr int kNoStripe = -1;

/// Counters of one angle that take votes in turn: points that follow one another often vote for the same distance, and
/// a counter must be written before it can be read again.
inline constexpr int kVoteRows = 4;

/// Neighbouring distances that are bounded together.
inline constexpr int kBucketDistances = 4;
/// Boxes around voting points; in number a multiple of kBoxPoints, those behind the last with no votes.
struct VoteBoxes {
    const float* left;
    const float* right;
    const float* top;
    const float* bottom;
    const std::int32_t* votes;
    std::size_t boxes;
};

/// Points with boxes around every kBoxPoints of them.
inline constexpr int kBoxPoints = 16;
struct BoxedPoints {
    const float* x;  ///< of boxes * kBoxPoints points; those beyond the last are not numbers
    const float* y;
    std::size_t boxes;  ///< a multiple of kBoxPoints; those beyond the last are not numbers
    const float* centreX;
    const float* centreY;
    const float* halfWidth;  ///< of a box, so that no point is farther from its centre
    const float* halfHeight;
};

/// Pixel = focal length * normalised image coordinate + principal point, for x and y.
struct Pinhole {
    double fx, cx;
    double fy, cy;
};

/// Brown-Conrady: radial k1, k2, k3, tangential p1, p2.
struct LensDistortion {
    double k1, k2, p1, p2, k3;
};

/// Of the iteration that inverts the distortion. Fixed, so that the cost of a point is constant; nothing tests for
/// convergence. This is meant.
inline constexpr int kUndistortRounds = 5;

/// From pixels to points of an output frame: a line of sight meets a light surface at a depth Z in the camera frame.
struct LightSheet {
    Pinhole camera;
    double lowerBound;  ///< of x, pixels; a point at or below it is rejected
    double upperBound;  ///< of x, pixels; a point at or above it is rejected
    double surface[6];  ///< Z = c0 + c1 X + c2 Y + c3 X^2 + c4 X Y + c5 Y^2
    double rt[12];      ///< a rotation row by row, then a translation
};

/// The first depth of a second-order surface is taken up to here, in single precision; length units.
inline constexpr float kLargestDepth = 3500.0f;

struct KernelSet {
    const char* name;

    // ---- columns of an image ----

    /// The largest pixel of each column, and where in the image something is.
    /// @param floor pixels up to it are not told apart
    /// @param maxima receives one per column, at least `floor`
    /// @param active receives one byte per band and block, row-major: 0 only where the block has no pixel above
    /// `floor`
    void (*findColumnMaxima)(const unsigned char* image, int width, int height, unsigned char floor,
                             unsigned char* maxima, unsigned char* active);

    /// Lists the transitions in the band that begins at `firstRow`. Bands are swept downwards from row 0; transitions
    /// of one column come in the order of their rows.
    /// @param thresholds one per column; a brighter pixel is bright
    /// @param active null, or one byte per block: 0 where it has no bright pixel in this band
    /// @param state one word per block, 0 before the first band, kept from band to band
    /// @param transitions has room for one per pixel of the band
    /// @return their number
    std::size_t (*findTransitions)(const unsigned char* image, int width, int height, int firstRow,
                                   const unsigned char* thresholds, const unsigned char* active, std::uint64_t* state,
                                   Transition* transitions);

    /// Adds, for each column, its pixels above `level`.
    void (*sumAbove)(const unsigned char* image, int width, int height, unsigned char level, ColumnSum* sums);

    /// For each column of [firstColumn, endColumn), finds the first row of [firstRow, endRow) at which a stripe starts:
    /// a pixel above the column's threshold, with another one above it among the three pixels to the right and the two
    /// above and below, and not darker than both its vertical neighbours. All those neighbours must lie inside the
    /// image.
    /// @param thresholds, starts indexed by column
    void (*findStripeStarts)(const unsigned char* image, int width, int firstColumn, int endColumn, int firstRow,
                             int endRow, const int* thresholds, int* starts);

    /// Sets the pixels below `threshold` to 0, and adds, for each column, the other pixels and their moments (row times
    /// grey value, converted to single precision, row by row).
    void (*cutAndSum)(unsigned char* image, int width, int height, int threshold, std::uint32_t* sums, float* moments);

    // ---- a part of an image, or an image to an image ----

    /// Copies the pixels above their column's threshold; other pixels of `out` stay as they were.
    /// @param image, out, labels first pixel of a part of images that are `stride` pixels wide; `out` may be `image`
    /// @param thresholds one per column of the part
    /// @param labels null, or receives 1 for each copied pixel and stays as it was elsewhere
    void (*copyAbove)(const unsigned char* image, int stride, int columns, int rows, const unsigned char* thresholds,
                      unsigned char* out, int* labels);

    /// Widens, for each column of a part of an image that is `stride` pixels wide, a range of grey levels to hold its
    /// pixels.
    /// @param smallest, largest one per column of the part
    void (*widenRanges)(const unsigned char* image, int stride, int columns, int rows, unsigned char* smallest,
                        unsigned char* largest);

    /// Copies an image.
    /// @param maxima receives the largest pixel of each column
    void (*copyWithMaxima)(const unsigned char* image, int width, int height, unsigned char* out,
                           unsigned char* maxima);

    /// Each pixel less its absolute change since the previous frame, at least 0. `out` may be `current`.
    /// @param previous becomes the current frame
    void (*subtractChange)(const unsigned char* current, std::size_t count, unsigned char* previous,
                           unsigned char* out);

    /// Blurs each row from left to right: a pixel becomes the truncated sum of the weighted pixels within `radius`,
    /// added from left to right, those to the left being blurred already. Beyond its ends, a row repeats its first and
    /// last pixel as they were.
    /// @param weights radius + 1, from the pixel itself outwards to both sides: those of a Gaussian of sigma 1 pixel;
    /// in all they are 1
    /// @param radius 1 .. kLargestBlurRadius
    void (*blurRows)(const unsigned char* image, int width, int rows, const double* weights, int radius,
                     unsigned char* out);

    /// Blurs columns: a pixel becomes the truncated sum of the weighted pixels within `radius`, added from top to
    /// bottom.
    /// @param image has `radius` rows before the first and after the last of the `rows` rows of `out`
    /// @param weights, radius as in blurRows
    void (*blurColumns)(const unsigned char* image, int width, int rows, const double* weights, int radius,
                        unsigned char* out);

    // ---- marks: one bit for each pixel of an image, in the order of the pixels, the first one in the lowest bit ----

    /// Marks the pixels above `level`.
    /// @param marks receives wordsOf(count) words; the bits of the last one that belong to no pixel are 0
    void (*markAbove)(const unsigned char* pixels, std::size_t count, unsigned char level, std::uint64_t* marks);

    /// Finds the columns that have a marked pixel.
    /// @param columns receives one bit for each column, as marks do; blocksOf(width) + 1 words
    /// @return the number of marked pixels
    std::uint64_t (*countMarks)(const std::uint64_t* marks, int width, int height, std::uint64_t* columns);

    // ---- points and lines, in single precision ----

    /// Counts every point at its distance trunc(x * cosine + y * sine + 0.5), in any of kVoteRows rows of counters.
    /// @param votes distance 0 of the first row
    /// @param stride from a row to the next
    void (*castVotes)(const float* x, const float* y, std::size_t count, float cosine, float sine, std::int32_t* votes,
                      std::ptrdiff_t stride);

    /// Adds up `count` counters of the rows and sets them to 0.
    /// @return the largest sum, at least 0
    std::int32_t (*sumVotes)(std::int32_t* votes, std::ptrdiff_t stride, std::ptrdiff_t count, std::int32_t* sums);

    /// The most votes that a bucket of kBucketDistances distances can have: those of all boxes with a distance in it.
    /// @param middle index of distance 0 among all distances; buckets begin at index 0
    /// @param changes of the sum of votes from a bucket to the next; 0, and 0 again on return; one bucket more than
    /// boxes lie in
    std::int32_t (*boundVotes)(const VoteBoxes& boxes, float cosine, float sine, std::int32_t middle,
                               std::int32_t* changes);

    /// Lists the points with |x * cosine + y * sine - distance| < tolerance.
    /// @param slack bounds the rounding errors of all such distances, and the same for boxes
    /// @param indices has room for boxes * kBoxPoints
    /// @return their number
    std::size_t (*findNearLine)(const BoxedPoints& points, float cosine, float sine, float distance, float tolerance,
                                float slack, std::size_t* indices);

    // ---- points, as x0 y0 x1 y1 ... in pixels ----

    /// Replaces distorted points by undistorted ones, by kUndistortRounds rounds of a fixed-point iteration.
    void (*undistort)(const Pinhole& camera, const LensDistortion& lens, double* points, std::size_t count);

    /// Meets the plane Z = c0 + c1 X + c2 Y. A line of sight in the plane divides by zero: it is not guarded.
    /// @param found one per point; where it is false the point is rejected
    /// @param points3d receives x y z of every point, 0.0 for rejected ones
    void (*meetPlane)(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                      double* points3d);

    /// Meets the second-order surface. Its depths are rounded to single precision, and the second root is taken as it
    /// is when the first lies outside 0 .. kLargestDepth.
    void (*meetSurface)(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                        double* points3d);

    // ---- points of a profile: three doubles x, y, z each, empty where x is 0.0 ----

    /// Lists the heights z of the points that are not empty, in their order.
    /// @param heights has room for `count` and kLaneRoom
    /// @return their number
    std::size_t (*listHeights)(const double* points, std::size_t count, double* heights);

    /// Gives the points that are not empty the heights of a list, in their order.
    /// @param heights one for each such point, and kLaneRoom
    /// @return their number
    std::size_t (*storeHeights)(double* points, std::size_t count, const double* heights);

    /// The median of the 2 r + 1 heights around each of a list, which are rounded to single precision first.
    /// @param heights `count` with r + 1 before and r + 1 + kLaneRoom behind them; from the first of all those
    /// @param medians receives one per height, and has kLaneRoom
    /// @return false where this pass has no network for r, or where a height is not a number or -0.0: then the medians
    /// are undefined
    bool (*findMedians)(const double* heights, std::size_t count, int r, double* medians);

    /// The weighted mean of the heights around each of a list that differ from it by less than `step`.
    /// @param heights `count` with `reach` before and `reach` + kLaneRoom behind them, which are not a number and do
    /// not count; from the first of all those
    /// @param weights 2 reach + 1
    /// @param smoothed receives one per height, and has kLaneRoom
    void (*smoothHeights)(const double* heights, std::size_t count, const double* weights, std::size_t reach,
                          double step, double* smoothed);

    /// Lists the points of [first, end) whose x and z are both not 0.0, in their order.
    /// @param x, z, positions have room for all points and kLaneRoom; a position is a point's index
    /// @return their number
    std::size_t (*listUsable)(const double* points, std::size_t first, std::size_t end, double* x, double* z,
                              std::int32_t* positions);

    /// Moves the positions of outliers to the front. An outlier has, among the points -w .. w - 1 places from it, at
    /// most w with a depth z less than `threshold` from its own, itself included, and at most w others with a direction
    /// near its own. A direction is the slope dx/dz from a point's predecessor; the first two points have none, and a
    /// point whose slope rounds to 0 in single precision is near no other.
    /// @param x one per point, and kLaneRoom
    /// @param z one per point, with w before and w + kLaneRoom behind them, which are not a number
    /// @param slopeBound how far from a point's own slope, rounded to single precision, another one must not be
    /// @param slopes room for one per point, and kLaneRoom
    /// @return their number
    std::size_t (*keepOutliers)(const double* x, const double* z, std::size_t count, std::size_t w, double threshold,
                                double slopeBound, double* slopes, std::int32_t* positions);

    /// How many points in a row are not empty and lie less than `limit` from the point before, in x and in z.
    /// @param points `count`, and one before the first
    std::size_t (*countFollowers)(const double* points, std::size_t count, double limit);

    /// For each point, x over `width`, truncated toward zero; the smallest integer where it has no 32-bit integer.
    /// @return the number of points that are not empty
    std::size_t (*numberBuckets)(const double* points, std::size_t count, double width, std::int32_t* buckets);
};

/// The fastest set that the processor has and the build allows. Always the same one within a process.
const KernelSet& active();

/// All sets of this build, from the plainest to the widest.
struct SetOfBuild {
    const KernelSet* set;
    bool supported;  ///< by this processor
};
struct SetsOfBuild {
    const SetOfBuild* first;
    const SetOfBuild* last;  ///< one past it

    const SetOfBuild* begin() const { return first; }
    const SetOfBuild* end() const { return last; }
};
SetsOfBuild setsOfBuild();

#ifdef KORVANE_SWITCHABLE_KERNELS
/// For tests and the benchmark, between calls: makes another set the active one, here and for all threads.
void activate(const KernelSet& set);
#endif

}  // namespace KORVANELASERALGO::kernels

#endif  // KORVANE_KERNELS_KERNELS_H
