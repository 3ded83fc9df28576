// Where the stripe may be: per-column lists of candidates in one flat array, and the nearest of a column to a row.

#ifndef KORVANE_EXTRACT_STRIPECANDIDATES_H
#define KORVANE_EXTRACT_STRIPECANDIDATES_H

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "KorvaneLaserAlgo.h"

namespace KORVANELASERALGO::extract {

/// One possible stripe position in a column.
struct Candidate {
    double centre;  ///< sub-pixel ROI row
    int grey;       ///< grey levels
    int width;      ///< rows
};

inline double centreOf(double centre) {
    return centre;
}
inline double centreOf(const Candidate& candidate) {
    return candidate.centre;
}

/// Lists of the columns 0, 1, ..., one behind the other. They are filled in that order.
template <class Element>
class ColumnLists {
public:
    explicit ColumnLists(int width) {
        ends_.reserve(static_cast<std::size_t>(width) + 1);
        ends_.push_back(0);
    }

    /// Appends to the list of the first column that is not closed yet.
    void add(const Element& element) { elements_.push_back(element); }
    void closeColumn() { ends_.push_back(elements_.size()); }

    std::span<const Element> ofColumn(int column) const {
        const std::size_t c = static_cast<std::size_t>(column);
        return std::span(elements_).subspan(ends_[c], ends_[c + 1] - ends_[c]);
    }

private:
    std::vector<Element> elements_;
    std::vector<std::size_t> ends_;  // ends_[c] is where column c begins and column c - 1 ends
};

/// A candidate lies near a row when it is at most this far from it.
inline constexpr float kTrackingTolerance = 5.0f;  // rows, inclusive

template <class Element>
struct Nearest {
    const Element* candidate;  ///< null where none is nearer than the start value
    float distance;            ///< rows

    bool withinTolerance() const { return candidate != nullptr && distance <= kTrackingTolerance; }
};

/// The first of the candidates nearest to a row. Distances are formed in double and compared in single precision, from
/// a start value on, which differs from method to method.
template <class Element>
Nearest<Element> findNearest(std::span<const Element> candidates, double row, float startDistance) {
    Nearest<Element> nearest = {nullptr, startDistance};
    for (const Element& candidate : candidates) {
        const float distance = static_cast<float>(std::fabs(centreOf(candidate) - row));
        if (distance < nearest.distance) nearest = {&candidate, distance};
    }
    return nearest;
}

/// Is the point of a column farther from a row than a neighbouring column's may be?
inline bool isFarFrom(double row, double neighbour) {
    return std::fabs(row - neighbour) > 5.0;
}

/// The bounds of the line selection, all inclusive.
inline bool passesGreyBounds(const tagKorvaneLaserAlgoLineSelectInfo& bounds, int grey) {
    return bounds.GrayMin <= grey && grey <= bounds.GrayMax;
}
inline bool passesWidthBounds(const tagKorvaneLaserAlgoLineSelectInfo& bounds, int width) {
    return bounds.WidthMin <= width && width <= bounds.WidthMax;
}

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_STRIPECANDIDATES_H
