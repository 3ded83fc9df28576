// An upper bound for the votes of an angle of the Hough transform, at a fraction of the cost of counting them.

#ifndef KORVANE_EXTRACT_VOTEBOUNDS_H
#define KORVANE_EXTRACT_VOTEBOUNDS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "extract/FindLineSegments.h"
#include "kernels/kernels.h"

namespace KORVANELASERALGO::extract {

/// Tells for most angles that none of their cells can have the votes of a peak, without counting the votes. Points that
/// lie close together share a box; a box casts all of its votes for every bucket of cells that one of them may meet.
class VoteBounds {
public:
    /// @param points the voting points by column, then row; at least one
    /// @param distances number of cells of an angle, the middle one at distance 0
    VoteBounds(std::span<const VotePoint> points, int distances)
        : middle_((distances - 1) / 2), changes_(static_cast<std::size_t>(distances / kernels::kBucketDistances) + 2) {
        std::size_t firstOfStrip = 0;  // boxes from here on share their columns
        for (const VotePoint& point : points) {
            const std::size_t boxes = votes_.size();
            if (boxes == 0 || static_cast<float>(point.x) - left_[firstOfStrip] >= kBoxSide) firstOfStrip = boxes;
            add(point, std::max(firstOfStrip, boxes - std::min(boxes, kOpenBoxes)));
        }
        pays_ = points.size() >= kLeastPointsOfBox * votes_.size();

        // What follows the last box to a full lane is the same without votes.
        constexpr std::size_t kLane = kernels::kBoxPoints;
        const std::size_t lanes = (votes_.size() + kLane - 1) / kLane * kLane;
        for (auto* list : {&left_, &right_, &top_, &bottom_}) list->resize(lanes, list->back());
        votes_.resize(lanes);
    }

    /// False where none of the angle's cells, trunc(x * cosine + y * sine + 0.5), can have this many votes.
    bool mayReach(std::int32_t votes, float cosine, float sine) {
        if (!pays_) return true;
        const kernels::VoteBoxes boxes = {left_.data(),   right_.data(), top_.data(),
                                          bottom_.data(), votes_.data(), votes_.size()};
        return kernels::active().boundVotes(boxes, cosine, sine, middle_, changes_.data()) >= votes;
    }

private:
    static constexpr float kBoxSide = 16.0f;             // pixels; a box is less wide and high
    static constexpr std::size_t kOpenBoxes = 8;         // so many of the last boxes may take a point
    static constexpr std::size_t kLeastPointsOfBox = 4;  // on average; else counting the votes costs less

    // Into the first box from `open` on that stays small enough, or into a new one.
    void add(const VotePoint& point, std::size_t open) {
        const float x = static_cast<float>(point.x);
        const float y = static_cast<float>(point.y);
        std::size_t box = open;
        while (box < votes_.size() && (y - top_[box] >= kBoxSide || bottom_[box] - y >= kBoxSide)) ++box;
        if (box == votes_.size()) {
            for (auto* list : {&left_, &right_}) list->push_back(x);
            for (auto* list : {&top_, &bottom_}) list->push_back(y);
            votes_.push_back(0);
        }
        right_[box] = x;
        top_[box] = std::min(top_[box], y);
        bottom_[box] = std::max(bottom_[box], y);
        ++votes_[box];
    }

    int middle_;                                      // index of distance 0
    std::vector<std::int32_t> changes_;               // of the votes from a bucket to the next; 0 between calls
    std::vector<float> left_, right_, top_, bottom_;  // of the boxes, pixels
    std::vector<std::int32_t> votes_;                 // likewise
    bool pays_;                                       // else every angle may reach any number
};

}  // namespace KORVANELASERALGO::extract

#endif  // KORVANE_EXTRACT_VOTEBOUNDS_H
