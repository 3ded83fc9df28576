// What an extraction method gave for one frame, and questions about single columns of it.

#ifndef KORVANE_TESTS_EXTRACT_EXTRACTION_H
#define KORVANE_TESTS_EXTRACT_EXTRACTION_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "support/Support.h"

namespace extraction {

using Columns = std::vector<int>;

struct Extraction {
    support::Points2d points;
    Columns marked;  // columns whose mask entry became true
};

inline bool isMarked(const Extraction& extraction, int column) {
    return std::find(extraction.marked.begin(), extraction.marked.end(), column) != extraction.marked.end();
}

/// For a ROI at (0, 0): the column is marked, and its point is (column, row).
inline testing::AssertionResult foundAt(const Extraction& extraction, int column, double row) {
    if (!isMarked(extraction, column)) return testing::AssertionFailure() << "column " << column << " is not marked";
    const support::Point2d& point = extraction.points.at(static_cast<std::size_t>(column));
    const support::Point2d expected{static_cast<double>(column), row};
    return support::describe(support::sameBits(point, expected), point, expected);
}

/// For a ROI at (0, 0): the column is not marked, and its point is (0, 0).
inline testing::AssertionResult notFound(const Extraction& extraction, int column) {
    if (isMarked(extraction, column)) return testing::AssertionFailure() << "column " << column << " is marked";
    const support::Point2d& point = extraction.points.at(static_cast<std::size_t>(column));
    const support::Point2d expected{0.0, 0.0};
    return support::describe(support::sameBits(point, expected), point, expected);
}

}  // namespace extraction

#endif  // KORVANE_TESTS_EXTRACT_EXTRACTION_H
