// The check build's kernels (KORVANE_CHECK_KERNELS): each pass runs as the active set has it and as its plain twin, on
// copies of what it writes, and the process ends where the two differ. Twice the work and allocations of its own, so it
// is for tests only.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <type_traits>
#include <vector>

#include "kernels/check/check.h"
#include "kernels/plain/plain.h"

namespace KORVANELASERALGO::kernels::check {
namespace {

[[noreturn]] void fail(const char* pass) {
    std::fprintf(stderr, "The %s kernel of %s differs from its plain twin.\n", chosen().name, pass);
    std::abort();
}

void require(bool same, const char* pass) {
    if (!same) fail(pass);
}

// The same bits; one not-a-number is as good as another.
template <class T>
bool sameValue(const T& a, const T& b) {
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
        return a == b && std::signbit(a) == std::signbit(b);
    } else {
        return std::memcmp(&a, &b, sizeof(T)) == 0;
    }
}

// A copy of what a pass is going to write, for the twin to work on.
template <class T>
class Copy {
public:
    Copy(const T* values, std::size_t count) : values_(values), copy_(values, values + count) {}

    T* data() { return copy_.data(); }

    void mustEqual(const char* pass) const {
        for (std::size_t i = 0; i < copy_.size(); ++i) require(sameValue(values_[i], copy_[i]), pass);
    }

private:
    const T* values_;
    std::vector<T> copy_;
};

template <class T>
Copy(T*, std::size_t) -> Copy<T>;

// The same of a part of an image; other threads may be writing beside it.
template <class T>
class PartCopy {
public:
    PartCopy(const T* values, int stride, int columns, int rows) : values_(values), stride_(stride), columns_(columns) {
        for (int r = 0; r < rows && values != nullptr; ++r) copy_.insert(copy_.end(), row(r), row(r) + columns);
    }

    // Its stride is the number of columns.
    T* data() { return values_ == nullptr ? nullptr : copy_.data(); }

    void mustEqual(const char* pass) const {
        for (std::size_t i = 0; i < copy_.size(); ++i) {
            const std::size_t columns = static_cast<std::size_t>(columns_);
            require(sameValue(row(static_cast<int>(i / columns))[i % columns], copy_[i]), pass);
        }
    }

private:
    const T* row(int r) const { return values_ + static_cast<std::ptrdiff_t>(r) * stride_; }

    const T* values_;
    int stride_;
    int columns_;
    std::vector<T> copy_;
};

std::size_t sizeOf(int count) {
    return static_cast<std::size_t>(count > 0 ? count : 0);
}

std::size_t pixelsOf(int width, int height) {
    return sizeOf(width) * sizeOf(height);
}

// ---- columns of an image ----

// Which blocks are active is up to the set, as long as none with a brighter pixel is missed.
void findColumnMaxima(const unsigned char* image, int width, int height, unsigned char floor, unsigned char* maxima,
                      unsigned char* active) {
    chosen().findColumnMaxima(image, width, height, floor, maxima, active);
    Copy twin(maxima, sizeOf(width));
    std::vector<unsigned char> twinActive(sizeOf(bandsOf(height)) * sizeOf(blocksOf(width)));
    plain::findColumnMaxima(image, width, height, floor, twin.data(), twinActive.data());
    twin.mustEqual("findColumnMaxima");
    for (std::size_t i = 0; i < twinActive.size(); ++i)
        require(active[i] != 0 || twinActive[i] == 0, "findColumnMaxima, active");
}

// The order within a band is up to the set, but for that of a column.
std::size_t findTransitions(const unsigned char* image, int width, int height, int firstRow,
                            const unsigned char* thresholds, const unsigned char* active, std::uint64_t* state,
                            Transition* transitions) {
    const std::size_t count =
        chosen().findTransitions(image, width, height, firstRow, thresholds, active, state, transitions);
    std::vector<Transition> twin(pixelsOf(width, rowsOfBand(firstRow, height)));
    const std::size_t twinCount =
        plain::findTransitions(image, width, height, firstRow, thresholds, active, state, twin.data());
    require(count == twinCount, "findTransitions, count");
    const auto rowsByColumn = [width](const Transition* list, std::size_t size) {
        std::vector<std::vector<int>> rows(sizeOf(width));
        for (std::size_t i = 0; i < size; ++i) rows[static_cast<std::size_t>(list[i].column)].push_back(list[i].row);
        return rows;
    };
    require(rowsByColumn(transitions, count) == rowsByColumn(twin.data(), count), "findTransitions");
    return count;
}

void sumAbove(const unsigned char* image, int width, int height, unsigned char level, ColumnSum* sums) {
    Copy twin(sums, sizeOf(width));
    chosen().sumAbove(image, width, height, level, sums);
    plain::sumAbove(image, width, height, level, twin.data());
    twin.mustEqual("sumAbove");
}

void findStripeStarts(const unsigned char* image, int width, int firstColumn, int endColumn, int firstRow, int endRow,
                      const int* thresholds, int* starts) {
    Copy twin(starts, sizeOf(width));
    chosen().findStripeStarts(image, width, firstColumn, endColumn, firstRow, endRow, thresholds, starts);
    plain::findStripeStarts(image, width, firstColumn, endColumn, firstRow, endRow, thresholds, twin.data());
    twin.mustEqual("findStripeStarts");
}

void cutAndSum(unsigned char* image, int width, int height, int threshold, std::uint32_t* sums, float* moments) {
    Copy twinImage(image, pixelsOf(width, height));
    Copy twinSums(sums, sizeOf(width));
    Copy twinMoments(moments, sizeOf(width));
    chosen().cutAndSum(image, width, height, threshold, sums, moments);
    plain::cutAndSum(twinImage.data(), width, height, threshold, twinSums.data(), twinMoments.data());
    twinImage.mustEqual("cutAndSum, image");
    twinSums.mustEqual("cutAndSum, sums");
    twinMoments.mustEqual("cutAndSum, moments");
}

// ---- a part of an image, or an image to an image ----

void copyAbove(const unsigned char* image, int stride, int columns, int rows, const unsigned char* thresholds,
               unsigned char* out, int* labels) {
    PartCopy<unsigned char> source(image, stride, columns, rows);  // `out` may be `image`
    PartCopy<unsigned char> twinOut(out, stride, columns, rows);
    PartCopy<int> twinLabels(labels, stride, columns, rows);
    chosen().copyAbove(image, stride, columns, rows, thresholds, out, labels);
    plain::copyAbove(source.data(), columns, columns, rows, thresholds, twinOut.data(), twinLabels.data());
    twinOut.mustEqual("copyAbove");
    twinLabels.mustEqual("copyAbove, labels");
}

void widenRanges(const unsigned char* image, int stride, int columns, int rows, unsigned char* smallest,
                 unsigned char* largest) {
    Copy twinSmallest(smallest, sizeOf(columns));
    Copy twinLargest(largest, sizeOf(columns));
    chosen().widenRanges(image, stride, columns, rows, smallest, largest);
    plain::widenRanges(image, stride, columns, rows, twinSmallest.data(), twinLargest.data());
    twinSmallest.mustEqual("widenRanges, smallest");
    twinLargest.mustEqual("widenRanges, largest");
}

void copyWithMaxima(const unsigned char* image, int width, int height, unsigned char* out, unsigned char* maxima) {
    Copy twinOut(out, pixelsOf(width, height));
    Copy twinMaxima(maxima, sizeOf(width));
    chosen().copyWithMaxima(image, width, height, out, maxima);
    plain::copyWithMaxima(image, width, height, twinOut.data(), twinMaxima.data());
    twinOut.mustEqual("copyWithMaxima");
    twinMaxima.mustEqual("copyWithMaxima, maxima");
}

void subtractChange(const unsigned char* current, std::size_t count, unsigned char* previous, unsigned char* out) {
    Copy source(current, count);  // `out` may be `current`
    Copy twinPrevious(previous, count);
    Copy twinOut(out, count);
    chosen().subtractChange(current, count, previous, out);
    plain::subtractChange(source.data(), count, twinPrevious.data(), twinOut.data());
    twinPrevious.mustEqual("subtractChange, previous");
    twinOut.mustEqual("subtractChange");
}

// ---- marks ----

void markAbove(const unsigned char* pixels, std::size_t count, unsigned char level, std::uint64_t* marks) {
    Copy twin(marks, wordsOf(count));
    chosen().markAbove(pixels, count, level, marks);
    plain::markAbove(pixels, count, level, twin.data());
    twin.mustEqual("markAbove");
}

std::uint64_t countMarks(const std::uint64_t* marks, int width, int height, std::uint64_t* columns) {
    const std::uint64_t count = chosen().countMarks(marks, width, height, columns);
    std::vector<std::uint64_t> twin(sizeOf(blocksOf(width)) + 1);
    require(count == plain::countMarks(marks, width, height, twin.data()), "countMarks, count");
    for (int b = 0; b < blocksOf(width); ++b)
        require(columns[b] == twin[static_cast<std::size_t>(b)], "countMarks, columns");
    return count;
}

// ---- points ----

void undistort(const Pinhole& camera, const LensDistortion& lens, double* points, std::size_t count) {
    Copy twin(points, 2 * count);
    chosen().undistort(camera, lens, points, count);
    plain::undistort(camera, lens, twin.data(), count);
    twin.mustEqual("undistort");
}

void meetPlane(const LightSheet& sheet, const bool* found, const double* points, std::size_t count, double* points3d) {
    chosen().meetPlane(sheet, found, points, count, points3d);
    Copy twin(points3d, 3 * count);
    plain::meetPlane(sheet, found, points, count, twin.data());
    twin.mustEqual("meetPlane");
}

void meetSurface(const LightSheet& sheet, const bool* found, const double* points, std::size_t count,
                 double* points3d) {
    chosen().meetSurface(sheet, found, points, count, points3d);
    Copy twin(points3d, 3 * count);
    plain::meetSurface(sheet, found, points, count, twin.data());
    twin.mustEqual("meetSurface");
}

// ---- a blurred image ----

void blurRows(const unsigned char* image, int width, int rows, const double* weights, int radius, unsigned char* out) {
    Copy twin(out, pixelsOf(width, rows));
    chosen().blurRows(image, width, rows, weights, radius, out);
    plain::blurRows(image, width, rows, weights, radius, twin.data());
    twin.mustEqual("blurRows");
}

void blurColumns(const unsigned char* image, int width, int rows, const double* weights, int radius,
                 unsigned char* out) {
    Copy twin(out, pixelsOf(width, rows));
    chosen().blurColumns(image, width, rows, weights, radius, out);
    plain::blurColumns(image, width, rows, weights, radius, twin.data());
    twin.mustEqual("blurColumns");
}

// ---- points and lines ----

// In which of its rows a set counts is its own business.
void castVotes(const float* x, const float* y, std::size_t count, float cosine, float sine, std::int32_t* votes,
               std::ptrdiff_t stride) {
    const auto votesAt = [&](std::ptrdiff_t distance) {
        std::int32_t sum = 0;
        for (int row = 0; row < kVoteRows; ++row) sum += votes[row * stride + distance];
        return sum;
    };
    std::map<std::ptrdiff_t, std::int32_t> expected;
    for (std::size_t k = 0; k < count; ++k) {
        const std::ptrdiff_t distance = static_cast<std::ptrdiff_t>(x[k] * cosine + y[k] * sine + 0.5f);
        ++expected.try_emplace(distance, votesAt(distance)).first->second;
    }
    chosen().castVotes(x, y, count, cosine, sine, votes, stride);
    for (const auto& [distance, sum] : expected) require(votesAt(distance) == sum, "castVotes");
}

std::int32_t sumVotes(std::int32_t* votes, std::ptrdiff_t stride, std::ptrdiff_t count, std::int32_t* sums) {
    Copy twinVotes(votes, static_cast<std::size_t>((kVoteRows - 1) * stride + count));
    Copy twinSums(sums, static_cast<std::size_t>(count));
    const std::int32_t largest = chosen().sumVotes(votes, stride, count, sums);
    require(largest == plain::sumVotes(twinVotes.data(), stride, count, twinSums.data()), "sumVotes, largest");
    twinSums.mustEqual("sumVotes");
    for (int row = 0; row < kVoteRows; ++row) {
        for (std::ptrdiff_t i = 0; i < count; ++i) require(votes[row * stride + i] == 0, "sumVotes, votes");
    }
    return largest;
}

std::int32_t boundVotes(const VoteBoxes& boxes, float cosine, float sine, std::int32_t middle, std::int32_t* changes) {
    const std::int32_t most = chosen().boundVotes(boxes, cosine, sine, middle, changes);
    // The pass leaves zeros, which are what the twin needs.
    require(most == plain::boundVotes(boxes, cosine, sine, middle, changes), "boundVotes");
    return most;
}

std::size_t findNearLine(const BoxedPoints& points, float cosine, float sine, float distance, float tolerance,
                         float slack, std::size_t* indices) {
    std::vector<std::size_t> twin(points.boxes * kBoxPoints);
    const std::size_t count = chosen().findNearLine(points, cosine, sine, distance, tolerance, slack, indices);
    const std::size_t twinCount = plain::findNearLine(points, cosine, sine, distance, tolerance, slack, twin.data());
    require(count == twinCount && std::equal(indices, indices + count, twin.begin()), "findNearLine");
    return count;
}

// ---- points of a profile ----

std::size_t listHeights(const double* points, std::size_t count, double* heights) {
    std::vector<double> twin(count + kLaneRoom);
    const std::size_t listed = chosen().listHeights(points, count, heights);
    require(listed == plain::listHeights(points, count, twin.data()), "listHeights, count");
    for (std::size_t i = 0; i < listed; ++i) require(sameValue(heights[i], twin[i]), "listHeights");
    return listed;
}

std::size_t storeHeights(double* points, std::size_t count, const double* heights) {
    Copy twin(points, 3 * count);
    const std::size_t stored = chosen().storeHeights(points, count, heights);
    require(stored == plain::storeHeights(twin.data(), count, heights), "storeHeights, count");
    twin.mustEqual("storeHeights");
    return stored;
}

// The plain twin finds none; here, every window is sorted.
bool findMedians(const double* heights, std::size_t count, int r, double* medians) {
    if (!chosen().findMedians(heights, count, r, medians)) return false;
    std::vector<float> window;
    for (std::size_t j = 0; j < count; ++j) {
        const double* first = heights + j + 1;
        window.assign(2 * static_cast<std::size_t>(r) + 1, 0.0f);
        for (std::size_t k = 0; k < window.size(); ++k) window[k] = static_cast<float>(first[k]);
        std::sort(window.begin(), window.end());
        require(sameValue(medians[j], static_cast<double>(window[static_cast<std::size_t>(r)])), "findMedians");
    }
    return true;
}

void smoothHeights(const double* heights, std::size_t count, const double* weights, std::size_t reach, double step,
                   double* smoothed) {
    std::vector<double> twin(count + kLaneRoom);
    chosen().smoothHeights(heights, count, weights, reach, step, smoothed);
    plain::smoothHeights(heights, count, weights, reach, step, twin.data());
    for (std::size_t j = 0; j < count; ++j) require(sameValue(smoothed[j], twin[j]), "smoothHeights");
}

std::size_t listUsable(const double* points, std::size_t first, std::size_t end, double* x, double* z,
                       std::int32_t* positions) {
    const std::size_t room = end - first + kLaneRoom;
    std::vector<double> twinX(room);
    std::vector<double> twinZ(room);
    std::vector<std::int32_t> twinPositions(room);
    const std::size_t count = chosen().listUsable(points, first, end, x, z, positions);
    require(count == plain::listUsable(points, first, end, twinX.data(), twinZ.data(), twinPositions.data()),
            "listUsable, count");
    for (std::size_t i = 0; i < count; ++i) {
        require(sameValue(x[i], twinX[i]) && sameValue(z[i], twinZ[i]), "listUsable");
        require(positions[i] == twinPositions[i], "listUsable, positions");
    }
    return count;
}

std::size_t keepOutliers(const double* x, const double* z, std::size_t count, std::size_t w, double threshold,
                         double slopeBound, double* slopes, std::int32_t* positions) {
    Copy twin(positions, count);
    std::vector<double> twinSlopes(count + kLaneRoom);
    const std::size_t kept = chosen().keepOutliers(x, z, count, w, threshold, slopeBound, slopes, positions);
    require(kept == plain::keepOutliers(x, z, count, w, threshold, slopeBound, twinSlopes.data(), twin.data()),
            "keepOutliers, count");
    require(std::equal(positions, positions + kept, twin.data()), "keepOutliers");
    return kept;
}

std::size_t countFollowers(const double* points, std::size_t count, double limit) {
    const std::size_t followers = chosen().countFollowers(points, count, limit);
    require(followers == plain::countFollowers(points, count, limit), "countFollowers");
    return followers;
}

std::size_t numberBuckets(const double* points, std::size_t count, double width, std::int32_t* buckets) {
    std::vector<std::int32_t> twin(count);
    const std::size_t valid = chosen().numberBuckets(points, count, width, buckets);
    require(valid == plain::numberBuckets(points, count, width, twin.data()), "numberBuckets, count");
    require(std::equal(twin.begin(), twin.end(), buckets), "numberBuckets");
    return valid;
}

}  // namespace

const KernelSet kTable = {
    .name = "check",
    .findColumnMaxima = findColumnMaxima,
    .findTransitions = findTransitions,
    .sumAbove = sumAbove,
    .findStripeStarts = findStripeStarts,
    .cutAndSum = cutAndSum,
    .copyAbove = copyAbove,
    .widenRanges = widenRanges,
    .copyWithMaxima = copyWithMaxima,
    .subtractChange = subtractChange,
    .blurRows = blurRows,
    .blurColumns = blurColumns,
    .markAbove = markAbove,
    .countMarks = countMarks,
    .castVotes = castVotes,
    .sumVotes = sumVotes,
    .boundVotes = boundVotes,
    .findNearLine = findNearLine,
    .undistort = undistort,
    .meetPlane = meetPlane,
    .meetSurface = meetSurface,
    .listHeights = listHeights,
    .storeHeights = storeHeights,
    .findMedians = findMedians,
    .smoothHeights = smoothHeights,
    .listUsable = listUsable,
    .keepOutliers = keepOutliers,
    .countFollowers = countFollowers,
    .numberBuckets = numberBuckets,
};

}  // namespace KORVANELASERALGO::kernels::check
