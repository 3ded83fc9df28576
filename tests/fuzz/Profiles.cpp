#include "fuzz/Profiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "fuzz/Settings.h"

namespace fuzz {
namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Differences between neighbours; sums of most of them are exact.
constexpr std::array kStepsOfX = {0.5, 0.25, 1.0, 0.1, 0.3, 2.0, 5.0, 0.0, -0.5, -0.25, 4.75};
constexpr std::array kStepsOfZ = {0.0, 0.25, 1.0, 0.1, 5.0, -5.0, 4.75, 5.25, 0.3, -1.0, 0.5, -0.25};
constexpr std::array kJumps = {5.0, -5.0, 5.25, 4.75, 1.0, 0.5, 10.0, -40.0, 0.25};

// Appends pieces, each from where the one before ended.
class ProfileWriter {
public:
    ProfileWriter(FuzzInput& input, std::size_t size) : input_(input), size_(size) {
        x_ = input_.pick({1.0, -10.0, 0.5, -30.0, 100.0, -1.0, 0.25, 1e6});
        z_ = input_.pick({100.0, 0.0, 5.0, -3.0, 250.0, 1e5});
    }

    Profile write() {
        while (profile_.size() < size_) appendPiece();
        return profile_;
    }

private:
    void append(double x, double z) {
        if (profile_.size() < size_) profile_.push_back({x, 2.0 + 0.5 * z, z});
    }
    void appendEmpty() {
        if (profile_.size() < size_) profile_.push_back({0.0, 0.0, 0.0});
    }

    void appendPiece() {
        const int kind = input_.range(0, 11);
        const int length = input_.oneIn(2) ? input_.range(1, 60) : input_.range(1, 12);
        const double dx = input_.pick(kStepsOfX);
        const double dz = input_.pick(kStepsOfZ);
        Noise noise = input_.noise();

        // The piece begins across a jump.
        if (input_.oneIn(2)) {
            z_ += input_.pick(kJumps);
            x_ += input_.pick({0.0, 0.0, 5.0, 4.75, 0.5});
        }
        for (int i = 0; i < length; ++i) {
            x_ += dx;
            z_ += dz;
            switch (kind) {
                case 3:
                    appendEmpty();
                    break;
                case 4:  // depths around a limit from point to point
                    append(x_, z_ + (i % 2 == 0 ? 0.0 : noise.pick(kJumps)));
                    break;
                case 5:  // directions around a limit
                    append(x_ + 0.05 * noise.range(-6, 6), z_);
                    break;
                case 6:
                    append(x_, z_ + 0.25 * noise.range(-24, 24));
                    break;
                case 7:  // with gaps
                    noise.oneIn(3) ? appendEmpty() : append(x_, z_);
                    break;
                case 8:  // lone values that are special
                    append(noise.oneIn(6) ? drawSpecialNumber(noise) : x_,
                           noise.oneIn(6) ? drawSpecialNumber(noise) : z_);
                    break;
                case 9:  // one coordinate missing
                    append(noise.oneIn(3) ? 0.0 : x_, noise.oneIn(3) ? -0.0 : z_);
                    break;
                case 10:  // equal points
                    x_ -= dx;
                    z_ -= dz;
                    append(x_, z_);
                    break;
                case 11:  // any order
                    append(0.25 * noise.range(-200, 200), 0.25 * noise.range(-60, 60));
                    break;
                default:
                    append(x_, z_);
                    break;
            }
        }
    }

    FuzzInput& input_;
    std::size_t size_;
    Profile profile_;
    double x_;
    double z_;
};

}  // namespace

Profile drawProfile(FuzzInput& input) {
    const int kind = input.range(0, 3);
    const int size = kind == 0 ? input.range(0, 13) : kind == 3 ? input.range(0, 300) : input.range(0, 60);
    return ProfileWriter(input, static_cast<std::size_t>(size)).write();
}

int drawHalfWidth(FuzzInput& input, std::size_t points) {
    const int n = static_cast<int>(points);
    switch (input.range(0, 7)) {
        case 5:
            return (n - 1) / 2 + input.range(-2, 1);
        case 6:
            return input.range(-2, 40);
        case 7:
            return input.pick({-1, kLowest, kHighest, kHighest / 2, kHighest / 2 + 1, 1000, n});
        default:
            return input.range(0, 7);
    }
}

float drawThreshold(FuzzInput& input) {
    return input.pick({5.0f, 0.5f, 1.0f, 0.25f, 0.1f, 4.75f, 0.3f, 2.0f, 0.0f, -1.0f, kInfinity, kNan});
}

float drawStep(FuzzInput& input, const Profile& profile) {
    Profile valid;
    std::copy_if(profile.begin(), profile.end(), std::back_inserter(valid),
                 [](const Point3d& point) { return point.x != 0.0; });
    const double spacing =
        valid.size() < 2 ? 1.0 : (valid.back().x - valid.front().x) / static_cast<double>(valid.size() - 1);
    switch (input.range(0, 7)) {
        case 0:
            return static_cast<float>(spacing);
        case 1:
            return std::nextafter(static_cast<float>(spacing), kInfinity);
        case 2:
        case 3:
            return static_cast<float>(spacing * input.pick({2.0, 1.5, 4.0, 10.0, 1000.0}));
        case 4:
            return input.pick(
                {0.0f, -0.0f, -1.0f, -0.5f, 1e-30f, -1e-30f, 1e-9f, -1e-9f, 1e30f, kInfinity, -kInfinity, kNan});
        default:
            return input.pick({1.0f, 0.5f, 2.0f, 0.25f, 5.0f, 0.1f, 0.3f, 10.0f, 100.0f});
    }
}

}  // namespace fuzz
