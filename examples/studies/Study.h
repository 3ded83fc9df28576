/// @file Study.h
/// @brief What the studies share: the library on frames of the simulated sensor, scores against the truth, numbers as
/// text.

#ifndef KORVANE_STUDIES_STUDY_H
#define KORVANE_STUDIES_STUDY_H

#include <CLI/CLI.hpp>
#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "common/Image.h"
#include "scenes/SimulatedSensor.h"

namespace studies {

using Pixels = std::vector<unsigned char>;
using Points2d = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>;
using Profile = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d>;

/// What the six extraction methods can be told.
struct MethodSettings {
    KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo lineSelect{140, 255, 3, 40, 1};  ///< brighter than a reflection
    int cap = 200;        ///< of Cal2DPoint3, grey levels
    int threshold = 150;  ///< of Cal2DPoint4, grey levels
};

/// One of the six, by name.
struct Method {
    const char* name;
    void (*extract)(KORVANELASERALGO::KorvaneLaserAlgo& library, bool* mask, unsigned char* image, Points2d& points,
                    const MethodSettings& settings);
};

/// All six, in the order of the header.
extern const std::array<Method, 6> kMethods;
/// Throws `std::invalid_argument` for a name that is none of theirs.
const Method& methodNamed(const std::string& name);

/// What a method found in one frame.
struct Stripe {
    std::vector<bool> found;  ///< per column
    Points2d points;          ///< per column: full-sensor pixels, whichever the method
    double seconds = 0.0;     ///< time within the library
};

/// The library, set up for one simulated sensor.
class Instrument {
public:
    Instrument(const scenes::Sensor& sensor, const MethodSettings& settings);

    /// Takes a copy of the frame, because Cal2DPoint4 changes what it is given.
    Stripe extract(const Method& method, Pixels frame);
    /// Distortion removed, intersected with the light plane; one point per column.
    Profile profile(const Stripe& stripe);

    /// For the methods that a study is about.
    KORVANELASERALGO::KorvaneLaserAlgo& library() { return library_; }

private:
    KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo roi_;
    MethodSettings settings_;
    KORVANELASERALGO::KorvaneLaserAlgo library_;
    std::unique_ptr<bool[]> mask_;  // a plain array: std::vector<bool> has no bool*
};

/// A found row that is farther from the truth belongs to something else: a reflection, a speck.
inline constexpr double kOnStripe = 3.0;  // rows

/// Measured less true; percentile and maximum without the sign.
struct ErrorSummary {
    double bias;
    double rms;
    double percentile95;
    double maximum;
};

/// Not-a-number throughout where there is no error.
ErrorSummary summarize(const std::vector<double>& errors);

/// Found columns against the truth, over any number of frames.
struct StripeScore {
    long long visible = 0;             ///< columns that show the stripe
    long long wrong = 0;               ///< of the found ones: not within `kOnStripe` rows of the truth
    long long falseColumns = 0;        ///< columns without a stripe in which something was found
    std::vector<double> rowErrors;     ///< of every found column that shows the stripe, rows
    std::vector<double> rowsOnStripe;  ///< of those within `kOnStripe`, rows
    std::vector<double> zErrors;       ///< of all with a 3D point, micrometres
    std::vector<double> zOnStripe;     ///< of those within `kOnStripe`, micrometres

    void add(const Stripe& stripe, const Profile& profile, const std::vector<scenes::TruePoint>& truth);
    double foundShare() const;  ///< of the visible columns
    double wrongShare() const;  ///< of the found ones among them
};

/// printf for one number.
std::string formatted(const char* format, double value);
/// A row of a Markdown table.
std::string tableRow(const std::vector<std::string>& cells);

/// Adds the option that every study has: where its pictures go; without it there are none.
void addPicturesOption(CLI::App& app, std::filesystem::path& folder);
/// Makes sure that the folder exists where one is asked for; throws `Failure`.
void preparePicturesFolder(const std::filesystem::path& folder);

}  // namespace studies

#endif  // KORVANE_STUDIES_STUDY_H
