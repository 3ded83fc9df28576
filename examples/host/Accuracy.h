/// @file Accuracy.h
/// @brief The error of measured profiles against the truth of the simulated sensor.

#ifndef KORVANE_HOST_ACCURACY_H
#define KORVANE_HOST_ACCURACY_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "common/Measured.h"
#include "host/Chain.h"
#include "scenes/SimulatedSensor.h"

namespace host {

/// What is compared: in every column that shows the stripe and was measured, the measured z less the z of the surface
/// point that the stripe in this column comes from. Both stand in the sensor's output frame, z pointing away from the
/// sensor, so a positive error means that the surface was measured too low. Profiles are compared as long as they have
/// one point per column, that is before Downsample.
class Accuracy {
public:
    void add(const Profile& profile, const std::vector<scenes::TruePoint>& truth) {
        for (std::size_t i = 0; i < profile.size(); ++i) {
            if (examples::isMeasured(profile[i]) && truth[i].visible)
                addError(profile[i].z - truth[i].point.z);
            else if (examples::isMeasured(profile[i]))
                ++withoutTruth_;
            else if (truth[i].visible)
                ++missed_;
        }
    }

    long long compared() const { return compared_; }          ///< columns, over all frames
    long long missed() const { return missed_; }              ///< columns that show the stripe but were not measured
    long long withoutTruth() const { return withoutTruth_; }  ///< columns that were measured but show no stripe

    double bias() const { return compared_ > 0 ? sum_ / static_cast<double>(compared_) : kNone; }
    double rms() const { return compared_ > 0 ? std::sqrt(sumOfSquares_ / static_cast<double>(compared_)) : kNone; }
    double maximum() const { return compared_ > 0 ? maximum_ : kNone; }  ///< largest error, without its sign

private:
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

    void addError(double error) {
        ++compared_;
        sum_ += error;
        sumOfSquares_ += error * error;
        maximum_ = std::max(maximum_, std::abs(error));
    }

    long long compared_ = 0;
    long long missed_ = 0;
    long long withoutTruth_ = 0;
    double sum_ = 0.0;
    double sumOfSquares_ = 0.0;
    double maximum_ = 0.0;
};

}  // namespace host

#endif  // KORVANE_HOST_ACCURACY_H
