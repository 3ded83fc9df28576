// What the tests of the line-selecting methods share: bright runs drawn into a frame, their centres, and what a frame
// must give.

#ifndef KORVANE_TESTS_EXTRACT_FRAMES_H
#define KORVANE_TESTS_EXTRACT_FRAMES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "extract/Extraction.h"
#include "support/CheckedBuffer.h"
#include "support/Support.h"

namespace frames {

using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Point2d;
using support::Points2d;

/// The row of a column without a stripe.
constexpr double kNone = 0.0;

/// Grey-weighted mean row of a run that begins at `firstRow`.
inline double centroid(int firstRow, const std::vector<int>& greys) {
    double moment = 0.0;
    int sum = 0;
    for (int row = firstRow; int grey : greys) {
        moment += row * grey;
        sum += grey;
        ++row;
    }
    return moment / sum;
}

inline void drawRun(Image& image, int column, int firstRow, const std::vector<int>& greys) {
    for (int row = firstRow; int grey : greys) {
        image.at(row, column) = static_cast<unsigned char>(grey);
        ++row;
    }
}

inline std::vector<int> flatRun(int rows, int grey) {
    return std::vector<int>(static_cast<std::size_t>(rows), grey);
}

/// A run of three rows with its centre on `row` exactly. It falls by 20 grey levels on both sides: a hump for a method
/// that asks for 5, one whole run for a method that asks for 50.
inline void drawSpot(Image& image, int column, int row, int grey = 200) {
    drawRun(image, column, row - 1, {grey - 20, grey, grey - 20});
}

/// A spot in every column from the first to the last.
inline void drawStripe(Image& image, int firstColumn, int lastColumn, int row) {
    for (int column = firstColumn; column <= lastColumn; ++column) drawSpot(image, column, row);
}

/// A line selection; as it stands it accepts every candidate, and takes the first where none is near.
struct Select {
    int grayMin = 0;
    int grayMax = 255;
    int widthMin = 0;
    int widthMax = 100;
    int mode = 3;
};

using ExtractionMethod = void (KorvaneLaserAlgo::*)(bool*, unsigned char*, Points2d&);

/// Hands a frame to a method, with its own size as the ROI's, at offset (0, 0). Behind its last pixel an inaccessible
/// page begins.
inline extraction::Extraction extract(ExtractionMethod method, Image& image, const Select& select) {
    KorvaneLaserAlgo algo;
    support::setRoi(algo, image.width(), image.height());
    support::setLineSelect(algo, select.grayMin, select.grayMax, select.widthMin, select.widthMax, select.mode);
    Mask mask(image.width());
    extraction::Extraction result;
    support::BufferRoom::place(support::Placement::kAtPageEnd);
    support::CheckedBuffer<unsigned char> frame(image.pixels());
    support::BufferRoom::place(support::Placement::kBetweenGuardBytes);
    (algo.*method)(mask.data(), frame.data(), result.points);
    EXPECT_TRUE(frame.guardsIntact()) << "something was written outside the image";
    std::copy_n(frame.data(), frame.size(), image.data());
    result.marked = mask.marked();
    return result;
}

/// Whether a frame gives these rows, column by column: kNone, and every column beyond the list, for a column without a
/// stripe. Points and mask must say the same.
inline testing::AssertionResult givesRows(const extraction::Extraction& result, const std::vector<double>& rows) {
    for (std::size_t i = 0; i < result.points.size(); ++i) {
        const int column = static_cast<int>(i);
        const double row = i < rows.size() ? rows[i] : kNone;
        const testing::AssertionResult asExpected =
            row == kNone ? extraction::notFound(result, column) : extraction::foundAt(result, column, row);
        if (!asExpected) return testing::AssertionFailure() << asExpected.message() << " in column " << column;
    }
    return testing::AssertionSuccess() << result.points.size() << " columns as expected";
}

}  // namespace frames

#endif  // KORVANE_TESTS_EXTRACT_FRAMES_H
