#include "studies/Study.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <system_error>

#include "common/Failure.h"
#include "common/Measured.h"

namespace studies {

using examples::Failure;
using examples::isMeasured;
using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserPoint2d;

namespace {

constexpr double kMicrometres = 1000.0;  // in a millimetre

using Library = KorvaneLaserAlgo;
using Settings = MethodSettings;

void callCal2DPoint1(Library& library, bool* mask, unsigned char* image, Points2d& points, const Settings&) {
    library.Cal2DPoint1(mask, image, points, 0);
}

void callCal2DPoint1_1(Library& library, bool* mask, unsigned char* image, Points2d& points, const Settings&) {
    library.Cal2DPoint1_1(mask, image, points);
}

void callCal2DPoint2(Library& library, bool* mask, unsigned char* image, Points2d& points, const Settings&) {
    library.Cal2DPoint2(mask, image, points);
}

void callCal2DPoint2_1(Library& library, bool* mask, unsigned char* image, Points2d& points, const Settings&) {
    library.Cal2DPoint2_1(mask, image, points);
}

void callCal2DPoint3(Library& library, bool* mask, unsigned char* image, Points2d& points, const Settings& settings) {
    library.Cal2DPoint3(mask, image, points, settings.cap);
}

void callCal2DPoint4(Library& library, bool* mask, unsigned char* image, Points2d& points, const Settings& settings) {
    library.Cal2DPoint4(mask, image, points, settings.threshold);
    // The one method that answers in pixels of the ROI.
    for (tagKorvaneLaserPoint2d& point : points) {
        point.x += library.GetROIInfoOffsetX();
        point.y += library.GetROIInfoOffsetY();
    }
}

}  // namespace

const std::array<Method, 6> kMethods{{{"Cal2DPoint1", callCal2DPoint1},
                                      {"Cal2DPoint1_1", callCal2DPoint1_1},
                                      {"Cal2DPoint2", callCal2DPoint2},
                                      {"Cal2DPoint2_1", callCal2DPoint2_1},
                                      {"Cal2DPoint3", callCal2DPoint3},
                                      {"Cal2DPoint4", callCal2DPoint4}}};

const Method& methodNamed(const std::string& name) {
    for (const Method& method : kMethods)
        if (method.name == name) return method;
    throw std::invalid_argument("there is no method called " + name);
}

Instrument::Instrument(const scenes::Sensor& sensor, const MethodSettings& settings)
    : roi_(sensor.roi), settings_(settings), mask_(std::make_unique<bool[]>(static_cast<std::size_t>(roi_.Width))) {
    auto calibration = sensor.calibration;
    library_.SetROIInfo(&roi_);
    library_.SetCalibrationInfo(&calibration);
    library_.SetLineSelectInfo(&settings_.lineSelect);
}

Stripe Instrument::extract(const Method& method, Pixels frame) {
    Stripe stripe;
    std::fill_n(mask_.get(), roi_.Width, false);
    const auto start = std::chrono::steady_clock::now();
    method.extract(library_, mask_.get(), frame.data(), stripe.points, settings_);
    stripe.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    stripe.found.assign(mask_.get(), mask_.get() + roi_.Width);
    return stripe;
}

Profile Instrument::profile(const Stripe& stripe) {
    Points2d points = stripe.points;
    Profile profile;
    std::copy(stripe.found.begin(), stripe.found.end(), mask_.get());
    library_.undistortPoints2(points);
    library_.Cal3DPoint1(mask_.get(), points, profile);
    return profile;
}

ErrorSummary summarize(const std::vector<double>& errors) {
    if (errors.empty()) {
        constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
        return {kNone, kNone, kNone, kNone};
    }
    double sum = 0.0;
    double sumOfSquares = 0.0;
    std::vector<double> sizes;
    for (const double error : errors) {
        sum += error;
        sumOfSquares += error * error;
        sizes.push_back(std::abs(error));
    }
    std::sort(sizes.begin(), sizes.end());
    const double count = static_cast<double>(sizes.size());
    const auto rank95 = static_cast<std::size_t>(std::ceil(0.95 * count)) - 1;
    return {sum / count, std::sqrt(sumOfSquares / count), sizes[rank95], sizes.back()};
}

void StripeScore::add(const Stripe& stripe, const Profile& profile, const std::vector<scenes::TruePoint>& truth) {
    for (std::size_t i = 0; i < truth.size(); ++i) {
        if (!truth[i].visible) {
            falseColumns += stripe.found[i] ? 1 : 0;
            continue;
        }
        ++visible;
        if (!stripe.found[i]) continue;
        const double rowError = stripe.points[i].y - truth[i].row;
        const bool onStripe = std::abs(rowError) <= kOnStripe;
        rowErrors.push_back(rowError);
        if (onStripe)
            rowsOnStripe.push_back(rowError);
        else
            ++wrong;
        if (!isMeasured(profile[i])) continue;
        const double zError = (profile[i].z - truth[i].point.z) * kMicrometres;
        zErrors.push_back(zError);
        if (onStripe) zOnStripe.push_back(zError);
    }
}

double StripeScore::foundShare() const {
    return static_cast<double>(rowErrors.size()) / static_cast<double>(visible);
}

double StripeScore::wrongShare() const {
    return static_cast<double>(wrong) / static_cast<double>(rowErrors.size());
}

std::string formatted(const char* format, double value) {
    if (std::isnan(value)) return "-";
    char text[64];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

std::string tableRow(const std::vector<std::string>& cells) {
    std::string row = "|";
    for (const std::string& cell : cells) row += " " + cell + " |";
    return row + "\n";
}

void addPicturesOption(CLI::App& app, std::filesystem::path& folder) {
    app.add_option("--pictures", folder, "Folder for the pictures; without it there are none")->option_text("FOLDER");
}

void preparePicturesFolder(const std::filesystem::path& folder) {
    if (folder.empty()) return;
    std::error_code refused;
    std::filesystem::create_directories(folder, refused);
    if (refused) throw Failure(folder.string() + ": cannot be created: " + refused.message());
}

}  // namespace studies
