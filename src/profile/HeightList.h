// The heights of a profile's valid points as a list without gaps, and a list of new ones that go back to their places.
// The filters count neighbours along this list, across the gaps that empty points leave.

#ifndef KORVANE_PROFILE_HEIGHTLIST_H
#define KORVANE_PROFILE_HEIGHTLIST_H

#include <cstddef>
#include <memory>

#include "kernels/kernels.h"
#include "profile/profile.h"

namespace KORVANELASERALGO::profile {

class HeightList {
public:
    /// @param margin values on either side, for what stands in place of neighbours that the ends do not have
    HeightList(const Profile& profile, std::size_t margin)
        : margin_(margin),
          capacity_(margin + profile.size() + margin + kernels::kLaneRoom),
          memory_(std::make_unique_for_overwrite<double[]>(capacity_ + profile.size() + kernels::kLaneRoom)),
          size_(kernels::active().listHeights(&profile.data()->x, profile.size(), begin())) {}

    std::size_t size() const { return size_; }

    /// The heights, with the margins before and behind them.
    double* begin() { return memory_.get() + margin_; }
    const double* begin() const { return memory_.get() + margin_; }
    const double* withMargins() const { return memory_.get(); }

    /// Sets the margins; whoever reads beyond them reads the same values.
    /// @param valueAt of the first, second, ... value outward from either end
    template <class Function>
    void fillMargins(Function valueAt) {
        for (std::size_t i = 0; i < margin_; ++i) *(begin() - 1 - i) = valueAt(i);
        for (std::size_t i = 0; i < margin_ + kernels::kLaneRoom; ++i) *(begin() + size_ + i) = valueAt(i);
    }

    /// For one new height per height.
    double* results() { return memory_.get() + capacity_; }

    /// Gives the valid points the new heights.
    void storeResults(Profile& profile) {
        kernels::active().storeHeights(&profile.data()->x, profile.size(), results());
    }

private:
    std::size_t margin_;
    std::size_t capacity_;
    std::unique_ptr<double[]> memory_;
    std::size_t size_;
};

}  // namespace KORVANELASERALGO::profile

#endif  // KORVANE_PROFILE_HEIGHTLIST_H
