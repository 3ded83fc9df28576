// The code of docs/numerics.md: what comes out, where a user might expect something else.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "pages/Claim.h"
#include "pages/Inputs.h"

using namespace KORVANELASERALGO;
using namespace pages;

namespace {

void extraction() {
    // [edges]
    Frame frame(8, 60);
    frame.line(20, 200);  // a stripe of one row over all columns
    auto mask = clearMask(8);
    Points2d points;
    Sized(8, 60)->Cal2DPoint1(mask.get(), frame.data(), points, 0);
    claim(!mask[0] && mask[1] && mask[6] && !mask[7]);  // the first and the last column are never searched

    Frame low(8, 60);
    low.line(39, 200);  // only rows 2 .. 38 of 60 can start a stripe
    mask = clearMask(8);
    Sized(8, 60)->Cal2DPoint1(mask.get(), low.data(), points, 0);
    claim(!mask[3]);
    // [/edges]
}

void limits() {
    // [limits]
    Frame frame(8, 60);
    frame.line(19, 60).line(20, 200).line(21, 60);
    auto mask = clearMask(8);
    Points2d points;
    Sized(8, 60)->Cal2DPoint1(mask.get(), frame.data(), points, 0);
    claim(points[1].y == 20.0 + 60.0 / 260.0);  // 60 starts no stripe, but belongs to it: rows 20 and 21
    claim(points[2].y == 20.0);                 // followed, the stripe is averaged upwards too: rows 19 to 21
    // [/limits]
}

void lostTracking() {
    // [lost]
    Frame frame(12, 60);
    frame.line(2, 61, 1, 2).line(1, 61, 2, 2).line(0, 255, 2, 2);  // climbs to row 0 in column 2 ...
    frame.line(30, 200, 3, 10);                                    // ... and goes on at row 30
    auto mask = clearMask(12);
    Points2d points;
    Sized(12, 60)->Cal2DPoint1(mask.get(), frame.data(), points, 0);
    claim(mask[1] && mask[2]);
    claim(std::count(mask.get() + 3, mask.get() + 12, true) == 0);  // nothing after it, in this frame
    // [/lost]
}

void fading() {
    // [fading]
    Frame frame(12, 60);
    frame.line(30, 200, 1, 5).line(30, 180, 6, 10);  // from 200 to 180: 180 is not above 0.9 * 200
    frame.line(10, 100, 6, 10);                      // a reflection above it
    auto mask = clearMask(12);
    Points2d points;
    Sized(12, 60)->Cal2DPoint1(mask.get(), frame.data(), points, 0);
    claim(points[5].y == 30.0 && points[6].y == 10.0);
    // [/fading]
}

void widths() {
    // [widths]
    tagKorvaneLaserAlgoLineSelectInfo select{60, 255, 5, 40, 1};  // at least 5 wide
    const auto finds = [&](Frame frame) {
        auto mask = clearMask(4);
        Points2d points;
        Sized algo(4, 60);
        algo->SetLineSelectInfo(&select);
        algo->Cal2DPoint1_1(mask.get(), frame.data(), points);
        return mask[1];
    };
    Frame stripe(4, 60);
    stripe.line(10, 70).line(11, 150).line(12, 200).line(13, 150).line(14, 70);
    claim(finds(stripe));  // one run of five rows: width 5
    stripe.line(40, 70);   // another run in the column: now the stripe's hump counts, from foot 10 to foot 14
    claim(!finds(stripe));
    select.WidthMin = 4;
    claim(finds(stripe));
    // [/widths]
}

void rowZero() {
    // [row-zero]
    Frame frame(8, 40);
    frame.line(0, 200);
    auto mask = clearMask(8);
    Points2d points;
    Sized(8, 40, 0, 100)->Cal2DPoint2(mask.get(), frame.data(), points);
    claim(!mask[3] && points[3].y == 100.0);  // found at row 0.0, but a row of 0.0 is not marked
    frame.line(1, 200);
    Sized(8, 40, 0, 100)->Cal2DPoint2(mask.get(), frame.data(), points);
    claim(mask[3] && points[3].y == 100.5);
    // [/row-zero]
}

void longRun() {
    // [long-run]
    Frame frame(4, 60);
    for (int r = 10; r < 29; ++r) frame.line(r, 200, 0, 1);  // 19 rows
    for (int r = 10; r < 30; ++r) frame.line(r, 200, 2, 3);  // 20 rows
    auto mask = clearMask(4);
    Points2d points;
    Sized(4, 60)->Cal2DPoint2(mask.get(), frame.data(), points);
    claim(mask[0] && !mask[2]);
    claim(points[0].y == 11.5);  // the mean of three rows to each side of the first maximum, row 10, as far as bright
    // [/long-run]
}

void onlyCandidate() {
    // [only-candidate]
    tagKorvaneLaserAlgoLineSelectInfo select{60, 255, 1, 40, 1};
    Frame frame(8, 60);
    frame.line(10, 200).line(10, 0, 4, 4).line(50, 100, 4, 4);  // a gap in column 4, and a reflection
    auto mask = clearMask(8);
    Points2d points;
    Sized algo(8, 60);
    algo->SetLineSelectInfo(&select);
    algo->Cal2DPoint1_1(mask.get(), frame.data(), points);
    claim(points[3].y == 10.0 && points[4].y == 50.0 && points[5].y == 10.0);
    // [/only-candidate]
}

void longSingleRun() {
    // [long-single-run]
    tagKorvaneLaserAlgoLineSelectInfo select{30, 255, 2, 40, 1};
    Frame frame(8, 80);
    for (int r = 20; r <= 24; ++r) frame.line(r, 40, 0, 0);  // a narrow stripe in column 0,
    for (int r = 10; r <= 34; ++r) frame.line(r, 40, 1, 7);  // a broad one without a hump in the others
    auto mask = clearMask(8);
    Points2d points;
    Sized algo(8, 80);
    algo->SetLineSelectInfo(&select);
    algo->Cal2DPoint2_1(mask.get(), frame.data(), points);
    claim(mask[0] && !mask[1]);  // alone in its column, it is not taken;
    for (int r = 60; r <= 63; ++r) frame.line(r, 100, 1, 7);
    algo->Cal2DPoint2_1(mask.get(), frame.data(), points);
    claim(mask[1] && points[1].y == 22.0);  // beside another run, it is
    // [/long-single-run]
}

void thinStripe() {
    // [two-rows]
    tagKorvaneLaserAlgoLineSelectInfo select{30, 255, 1, 40, 1};
    Frame frame(8, 60);
    frame.line(20, 200).line(21, 200);  // a stripe of two rows, and a weaker reflection of five in column 3
    frame.line(40, 110, 3, 3).line(41, 115, 3, 3).line(42, 120, 3, 3).line(43, 115, 3, 3).line(44, 110, 3, 3);
    auto mask = clearMask(8);
    Points2d points;
    Sized algo(8, 60);
    algo->SetLineSelectInfo(&select);
    algo->Cal2DPoint1_1(mask.get(), frame.data(), points);
    claim(points[2].y == 20.5 && points[3].y == 42.0);
    algo->Cal2DPoint2(mask.get(), frame.data(), points);
    claim(points[2].y == 20.5 && points[3].y == 42.0);
    algo->Cal2DPoint2_1(mask.get(), frame.data(), points);
    claim(points[2].y == 20.5 && points[3].y == 42.0);
    // [/two-rows]
}

void twoHumps() {
    // [two-humps]
    tagKorvaneLaserAlgoLineSelectInfo select{60, 255, 2, 40, 1};
    Frame frame(4, 60);
    frame.line(20, 70).line(21, 150).line(22, 200).line(23, 150).line(24, 70);             // a hump around row 22 ...
    frame.line(25, 150, 1, 3).line(26, 200, 1, 3).line(27, 150, 1, 3).line(28, 70, 1, 3);  // ... and one around 26
    auto mask = clearMask(4);
    Points2d points;
    Sized algo(4, 60);
    algo->SetLineSelectInfo(&select);
    algo->Cal2DPoint1_1(mask.get(), frame.data(), points);
    claim(points[0].y == 22.0 && points[1].y == 24.0);  // 9 rows are below WidthMax: the dark row between them
    algo->Cal2DPoint2_1(mask.get(), frame.data(), points);
    claim(points[1].y == 24.0);  // 9 rows are below 20
    select.WidthMax = 9;
    algo->SetLineSelectInfo(&select);
    algo->Cal2DPoint1_1(mask.get(), frame.data(), points);
    claim(points[1].y == 22.0);  // two candidates now, of which column 0 decides
    // [/two-humps]
}

void selectMode() {
    // [select-mode-2]
    tagKorvaneLaserAlgoLineSelectInfo select{60, 255, 2, 40, 2};  // mode 2
    const auto rowInColumn1 = [&](int width) {
        Frame frame(width, 60);
        for (int r = 5; r <= 7; ++r) frame.line(r, 100, 0, 0);  // one line in column 0, ...
        for (int r = 30; r <= 32; ++r) frame.line(r, 100, 1, width - 1);
        for (int r = 50; r <= 54; ++r) frame.line(r, 90, 1, width - 1);  // ... two others, far from it, in the rest
        auto mask = clearMask(width);
        Points2d points;
        Sized algo(width, 60);
        algo->SetLineSelectInfo(&select);
        algo->Cal2DPoint1_1(mask.get(), frame.data(), points);
        return points[1].y;
    };
    claim(rowInColumn1(128) == 31.0);  // 100 < 128, the width of the ROI: chosen; the limit is then 3, its own width
    claim(rowInColumn1(64) == 0.0);    // neither 100 nor 90 is below 64: none
    // [/select-mode-2]
}

void cap() {
    // [cap]
    Frame frame(8, 60);
    frame.line(19, 50).line(20, 200);
    auto mask = clearMask(8);
    Points2d points;
    Sized(8, 60)->Cal2DPoint3(mask.get(), frame.data(), points, 30);
    claim(points[1].y == 19.8);  // (19 * 50 + 20 * 200) / 250: the cap of 30 has lowered the threshold below 60
    claim(points[2].y == 20.0);  // from the second column on, only what is above half of the peak counts
    // [/cap]
}

void roiPixels() {
    // [roi-pixels]
    Frame frame(4, 40);
    frame.line(37, 200, 1, 3).line(10, 59, 1, 3);
    auto mask = clearMask(4);
    Points2d points;
    Sized(4, 40, 100, 500)->Cal2DPoint4(mask.get(), frame.data(), points, 60);
    claim(points[2].x == 2.0 && points[2].y == 37.0);  // the others would say (102, 537)
    claim(points[0].x == 0.0 && points[0].y == 0.0);   // nothing found: (column, 0), the others (100, 500)
    claim(frame.at(10, 2) == 0);                       // the image has lost what was below the threshold
    // [/roi-pixels]

    // [float-rows]
    Frame tall(1, 1024);
    for (int r = 0; r < 1024; ++r) tall.at(r, 0) = 255;
    auto one = clearMask(1);
    Sized(1, 1024)->Cal2DPoint4(one.get(), tall.data(), points, 60);
    claim(isNear(points[0].y, 511.5012, 1e-4));  // single precision: a thousandth of a row beside 511.5
    // [/float-rows]
}

void calibration() {
    // [missing-columns]
    tagKorvaneLaserAlgoCalibrationInfo calibration{};
    calibration.CameraMatrix[0] = calibration.CameraMatrix[4] = 1000.0;  // fx, fy; the principal point is (0, 0)
    calibration.DistCoeffs[0] = -0.2;                                    // k1
    Sized algo(4, 4, 100, 500);
    algo->SetCalibrationInfo(&calibration);
    Points2d points{{100.0, 500.0}};  // a column without a stripe
    algo->undistortPoints2(points);
    claim(points[0].x > 105.0 && points[0].y > 525.0);  // is moved like any other: only the mask tells
    // [/missing-columns]

    // [five-iterations]
    Points2d edge{{500.0, 0.0}};
    algo->undistortPoints2(edge);
    const double x = edge[0].x / 1000.0;
    const double imaged = 1000.0 * x * (1.0 - 0.2 * x * x);
    claim(isNear(imaged, 500.0, 1e-3) && !isNear(imaged, 500.0, 1e-4));
    // [/five-iterations]
}

void lightSurface() {
    // [flat-in-second-order]
    tagKorvaneLaserAlgoCalibrationInfo calibration{{1000.0, 0.0, 0.0, 0.0, 1000.0, 0.0, 0.0, 0.0, 1.0},
                                                   {0.0, 0.0, 0.0, 0.0, 0.0},
                                                   {300.0, 0.0, 1.0, 0.0, 0.0, 0.0},
                                                   {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0}};
    Sized algo(1, 1);
    algo->SetCalibrationInfo(&calibration);
    bool mask[1] = {true};
    const Points2d points{{0.1, -500.0}};  // x' = 0.0001, y' = -0.5
    Profile profile;
    algo->Cal3DPoint1(mask, points, profile);
    claim(profile[0].z == 200.0);  // 300 / (1 + 0.5)
    algo->Cal3DPoint2(mask, points, profile);
    claim(std::isnan(profile[0].z));  // c3 = c4 = c5 = 0: 0 / 0, and no empty point
    // [/flat-in-second-order]

    // [float-depth]
    calibration.LaserPlane[5] = 1e-3;
    algo->SetCalibrationInfo(&calibration);
    algo->Cal3DPoint2(mask, points, profile);
    const double a = 1e-3 * 0.5 * 0.5;  // a Z^2 - 1.5 Z + 300 = 0 on this line of sight
    const double depth = (1.5 - std::sqrt(1.5 * 1.5 - 4.0 * a * 300.0)) / (2.0 * a);  // 207.2; the other is 5793
    claim(profile[0].z == static_cast<double>(static_cast<float>(depth)));
    claim(profile[0].z != depth);
    // [/float-depth]

    // [missed-surface]
    calibration.LaserPlane[5] = 1.0;
    algo->SetCalibrationInfo(&calibration);
    algo->Cal3DPoint2(mask, points, profile);
    claim(std::isnan(profile[0].x));  // the line of sight misses the surface: not-a-number, no empty point
    // [/missed-surface]
}

void rigidTransform() {
    KorvaneLaserAlgo algo;
    // [plane-y]
    double plane[3] = {100.0, 0.0, 0.5};
    double rt[12];
    algo.CalRT(plane, rt);
    claim(rt[10] == 200.0);                                          // c0 / c2
    const double y = rt[5] * 100.0 + rt[10];                         // of the plane's point (0, 0, 100)
    claim(isNear(y, 100.0 / 0.5 - 100.0 / std::sqrt(1.25), 1e-12));  // 110.6: every point of the plane, and not 0
    // [/plane-y]
}

void polynomials() {
    KorvaneLaserAlgo algo;
    // [polynomials]
    const std::vector<double> x{1.0, 1.0, 1.0};
    const std::vector<double> y{2.0, 4.0, 9.0};
    claim(algo.polynomialFit(x, y, 0)[0] == 5.0);           // degree 0: the mean
    claim(!std::isfinite(algo.polynomialFit(x, y, 1)[1]));  // one position makes no line; nothing is thrown
    claim(algo.polynomialFit(x, y, -1).empty());            // no coefficients, ...
    claim(algo.evaluatePolynomial({}, 7.0) == 0.0);         // ... and what these evaluate to
    // [/polynomials]

    // [centred]
    std::vector<double> columns(50);
    std::vector<double> centred(50);
    std::vector<double> values(50);
    for (std::size_t i = 0; i < 50; ++i) {
        values[i] = static_cast<double>(i);
        columns[i] = 1000.0 + values[i];
        centred[i] = values[i] - 25.0;
    }
    const double far = algo.evaluatePolynomial(algo.polynomialFit(columns, values, 4), 1025.0);
    const double near = algo.evaluatePolynomial(algo.polynomialFit(centred, values, 4), 0.0);
    claim(isNear(near, 25.0, 1e-9));                             // positions around 0: all digits
    claim(isNear(far, 25.0, 1e-3) && !isNear(far, 25.0, 1e-9));  // positions around 1000: the 5th decimal is wrong
    // [/centred]
}

void outlierFilters() {
    KorvaneLaserAlgo algo;
    // [x-zero]
    Profile profile = level(7, 100.0, -3.0);
    profile[3].z = 140.0;  // measured at x = 0.0 exactly
    algo.medianfilter1(profile, 1);
    claim(profile[3].z == 140.0);  // the filters take it for empty
    // [/x-zero]

    // [first-point]
    profile = level(20, 100.0);
    algo.Outlierdetect1(profile, 5, 0.3F);
    claim(isEmpty(profile[0]) && !isEmpty(profile[1]) && !isEmpty(profile[19]));
    // [/first-point]

    // [no-width]
    profile = level(20, 100.0);
    algo.Outlierdetect2(profile, 1, 5.0F);
    claim(std::none_of(profile.begin(), profile.end(), isEmpty));  // 1, 0 or less: nothing is cleared
    algo.Outlierdetect2(profile, 2, 0.0F);
    claim(std::all_of(profile.begin(), profile.end(), isEmpty));  // a threshold of 0 or less: all of it
    profile = level(20, 100.0);
    algo.Outlierdetect1(profile, -1, 0.3F);
    claim(std::none_of(profile.begin(), profile.end(), isEmpty));
    algo.Outlierdetect1(profile, 0, 0.3F);
    claim(std::all_of(profile.begin(), profile.end(), isEmpty));
    // [/no-width]

    // [slope]
    for (int i = 0; i < 20; ++i) profile[static_cast<std::size_t>(i)] = {1.0 + i, 0.0, 100.0 + 10.0 * i};
    algo.Outlierdetect1(profile, 5, 0.3F);
    claim(isEmpty(profile[2]) && !isEmpty(profile[3]) && !isEmpty(profile[18]) && isEmpty(profile[19]));
    // [/slope]

    // [nan]
    profile = level(20, 100.0);
    profile[10].z = std::numeric_limits<double>::quiet_NaN();
    algo.Gaussianfilter(profile, 1);
    claim(std::isnan(profile[10].z) && isNear(profile[9].z, 100.0, 1e-12));  // it stays, and its neighbours keep clear
    algo.Outlierdetect1(profile, 5, 0.3F);
    claim(isEmpty(profile[10]));  // nothing agrees with it
    // [/nan]

    // [run-starts]
    profile = level(10, 100.0);
    const Profile second = level(10, 200.0, 11.0);
    profile.insert(profile.end(), second.begin(), second.end());  // a step of 100 at position 10
    algo.Outlierdetect2(profile, 3, 5.0F);
    claim(isEmpty(profile[0]) && isEmpty(profile[1]) && !isEmpty(profile[2]));
    claim(isEmpty(profile[10]) && isEmpty(profile[11]) && !isEmpty(profile[12]));
    // [/run-starts]

    // [first-run]
    profile = level(10, 100.0);
    profile.insert(profile.begin(), {0.0, 0.0, 0.0});
    algo.Outlierdetect2(profile, 3, 5.0F);
    claim(isEmpty(profile[1]) && !isEmpty(profile[2]));  // one point cleared, not two
    profile = level(10, 100.0);
    algo.Outlierdetect2(profile, 2, 5.0F);
    claim(!isEmpty(profile[0]));  // none cleared, not one
    // [/first-run]

    // [float-threshold]
    profile = level(20, 0.0);
    for (auto& point : profile) point.x *= 0.01;               // close together in x, and
    for (std::size_t i = 10; i < 20; ++i) profile[i].z = 0.1;  // a step of 0.1 at position 10
    algo.Outlierdetect2(profile, 3, 0.1F);
    claim(!isEmpty(profile[10]));  // 0.1 is below 0.1F, so it ends no run
    // [/float-threshold]
}

void medians() {
    KorvaneLaserAlgo algo;
    // [float-heights]
    Profile profile{{1.0, 0.0, 100.1}};
    algo.medianfilter1(profile, 0);  // a window of one point changes nothing but the precision
    claim(profile[0].z == static_cast<double>(100.1F));
    claim(isNear(profile[0].z, 100.1, 2e-6) && profile[0].z != 100.1);
    // [/float-heights]

    // [upper-middle]
    profile = {{1.0, 0.0, 5.0}, {2.0, 0.0, 7.0}, {3.0, 0.0, 6.0}};
    algo.medianfilter1(profile, 1);
    claim(profile[0].z == 7.0);  // of 5 and 7 the upper one, never the mean
    claim(profile[1].z == 6.0);
    claim(profile[2].z == 7.0);
    // [/upper-middle]
}

void gaussian() {
    KorvaneLaserAlgo algo;
    // [steps]
    Profile profile = level(10, 100.0);
    for (std::size_t i = 5; i < 10; ++i) profile[i].z = 105.0;  // a step of 5.0 length units stays, ...
    algo.Gaussianfilter(profile, 2);
    claim(isNear(profile[4].z, 100.0, 1e-12) && isNear(profile[5].z, 105.0, 1e-12));
    for (std::size_t i = 5; i < 10; ++i) profile[i].z = 104.9;  // ... one of 4.9 is rounded
    algo.Gaussianfilter(profile, 2);
    claim(profile[4].z > 101.0 && profile[5].z < 104.0);
    // [/steps]
}

void thinning() {
    KorvaneLaserAlgo algo;
    Profile out;
    int count = 0;
    // [bucket-at-zero]
    Profile profile;
    for (int i = 0; i < 20; ++i) profile.push_back({-4.75 + 0.5 * i, 0.0, 100.0});  // -4.75, -4.25, ... 4.75
    algo.Downsample(profile, 1.0F, out, count);
    claim(count == 9);  // four buckets on each side, two points each, and ...
    claim(out[3].x == -1.5);
    claim(out[4].x == 0.0);  // ... one of four points around x = 0, from -1 to 1 ...
    claim(out[5].x == 1.5);
    claim(out.size() == 20 && isEmpty(out[9]));  // ... and empty points up to the size of the input
    // [/bucket-at-zero]

    // [jump]
    profile = level(12, 100.0);
    for (auto& point : profile) point.x = 1.0 + 0.25 * (point.x - 1.0);  // 1.0, 1.25, ... 3.75: four to a bucket
    profile[2].z = 110.0;                                                // a jump within the first bucket
    profile[3].z = 112.0;
    algo.Downsample(profile, 1.0F, out, count);
    claim(count == 3);
    claim(out[0].z == (110.0 + 110.0 + 112.0) / 3.0);  // the points before it are gone, the first one after it is twice
    // [/jump]

    // [ten-points]
    algo.Downsample(level(10, 100.0), 5.0F, out, count);
    claim(count == 10 && out.size() == 10);  // ten points or fewer are passed on as they are
    // [/ten-points]

    // [float-step]
    profile = level(20, 100.0);
    for (auto& point : profile) point.x = 1.0 + 0.05 * (point.x - 1.0);  // 1.0, 1.05, ... 1.95: two to a bucket of 0.1
    algo.Downsample(profile, 0.1F, out, count);
    claim(out[0].x == 1.0 && isNear(out[1].x, 1.075, 1e-12));  // 1.0 / 0.1F is below 10: alone in bucket 9
    // [/float-step]

    // [backward]
    profile = level(20, 100.0);
    for (auto& point : profile) point.x = 100.0 - point.x;  // 99, 98, ... 80
    bool thrown = false;
    try {
        algo.Downsample(profile, 2.0F, out, count);
    } catch (const std::length_error&) {
        thrown = true;
    }
    claim(thrown);
    // [/backward]
}

void blur() {
    // [blur]
    Frame frame(7, 3);
    for (int r = 0; r < 3; ++r) frame.at(r, 3) = 255;  // a bright column
    Frame out(7, 3);
    Sized(7, 3)->GaussianBlur(frame.data(), out.data(), 3);
    const Image expected{0, 0, 69, 134, 36, 9, 2};  // taps 0.274, 0.452, 0.274, from left to right, in place
    claim(std::equal(expected.begin(), expected.end(), &out.at(1, 0)));
    // [/blur]

    // [blur-edges]
    const Image edge{0, 0, 50, 167, 26, 6, 1};  // the rows beyond the edge keep the sharp column
    claim(std::equal(edge.begin(), edge.end(), &out.at(0, 0)));
    claim(std::equal(edge.begin(), edge.end(), &out.at(2, 0)));
    // [/blur-edges]

    // [flat]
    int fallen = 0;
    for (int grey = 0; grey < 256; ++grey) {
        Frame flat(9, 9);
        std::fill(flat.pixels.begin(), flat.pixels.end(), static_cast<unsigned char>(grey));
        Frame blurred(9, 9);
        Sized(9, 9)->GaussianBlur(flat.data(), blurred.data(), 5);
        const int centre = blurred.at(4, 4);
        claim(centre <= grey && centre >= grey - 2);
        fallen += centre < grey ? 1 : 0;
    }
    claim(fallen > 0);  // an even patch may lose a grey level in each of the two passes
    // [/flat]

    // [even-size]
    Sized(7, 3)->GaussianBlur(frame.data(), out.data(), 4);
    claim(out.pixels == frame.pixels);
    // [/even-size]
}

void thresholds() {
    // [last-columns]
    Frame frame(10, 4);
    for (int r = 0; r < 4; ++r) frame.line(r, static_cast<unsigned char>(r == 2 ? 200 : 10));
    Image out(40);
    std::vector<int> labels(40);
    Sized(10, 4)->Otsu3(out.data(), labels.data(), frame.data());
    claim(out[27] == 200 && labels[27] == 1);  // row 2, column 7
    claim(out[28] == 0 && out[29] == 0);       // columns 8 and 9: 10 mod 4
    // [/last-columns]

    // [blob]
    Frame blob(8, 60);
    for (int r = 0; r < 30; ++r) blob.line(r, 200, 0, 3);  // 30 rows from the top ...
    for (int r = 0; r < 29; ++r) blob.line(r, 200, 4, 7);  // ... and 29
    Image selected(480);
    std::vector<int> marks(480);
    Sized(8, 60)->Otsu3(selected.data(), marks.data(), blob.data());
    claim(blob.at(5, 0) == 0 && blob.at(5, 4) == 200);
    // [/blob]

    // [band]
    Frame banded(8, 60);
    for (int r = 0; r < 30; ++r) banded.line(r, 200, 0, 3);  // 120 pixels: the blob's centre is (1, 14)
    banded.line(10, 250, 4, 7).line(50, 100, 4, 7);
    Image chosen(480);
    Sized(8, 60)->Otsu3(chosen.data(), marks.data(), banded.data());
    const auto at = [](std::size_t row, std::size_t column) { return row * 8 + column; };
    claim(chosen[at(50, 4)] == 100);  // rows 0 to 23 have no say here: the threshold is 60, not 125
    claim(chosen[at(10, 4)] == 250);  // but are selected like any other
    claim(chosen[at(50, 7)] == 0);    // the last column is outside the band: 125
    // [/band]

    // [left-alone]
    Image kept{7, 7};
    Image pair{100, 50};
    Sized(2, 1)->Otsu2(60, kept.data(), pair.data());
    claim(kept[0] == 100 && kept[1] == 7);  // what is not selected stays as it was: clear `out` beforehand
    // [/left-alone]
}

void exposures() {
    // [second-wins]
    Image first{200, 255};
    Image second{130, 130};
    Image out(2);
    Sized(2, 1)->MergeImg(first.data(), second.data(), out.data());
    claim(out[0] == 130);  // the second exposure wins, also where it is darker
    claim(out[1] == 255);  // a column with a pixel of 255 keeps the first
    second[0] = 127;
    Sized(2, 1)->MergeImg(first.data(), second.data(), out.data());
    claim(out[0] == 200);  // 127 is never copied
    // [/second-wins]

    // [odd-height]
    Sized three(1, 3);
    Image current{100, 100, 100};
    Image result(3);
    three->CalcImageBuffer(current.data(), result.data(), false);  // forget earlier streams
    three->CalcImageBuffer(current.data(), result.data(), true);   // the first frame is copied
    current = {90, 110, 90};
    result = {1, 1, 1};
    three->CalcImageBuffer(current.data(), result.data(), true);
    claim(result[0] == 80 && result[1] == 100 && result[2] == 1);  // two threads of 3 / 2 = 1 row each
    // [/odd-height]

    // [half-the-columns]
    Frame half(8, 10);
    half.line(4, 255, 0, 3).line(5, 255, 0, 3);  // two bright rows in 4 of 8 columns, target 2
    Sized algo(8, 10);
    double next = 0.0;
    algo->AutoExposure(half.data(), 2.0, 10.0, 0.1, 100.0, 0.5, false, next);  // forget earlier streams
    algo->AutoExposure(half.data(), 2.0, 10.0, 0.1, 100.0, 0.5, true, next);   // the first frame: no proposal
    algo->AutoExposure(half.data(), 2.0, 10.0, 0.1, 100.0, 0.5, true, next);
    claim(next == 10.5);
    half.line(4, 255, 0, 4).line(5, 255, 0, 4);  // 5 of 8
    algo->AutoExposure(half.data(), 2.0, 10.0, 0.1, 100.0, 0.5, true, next);
    claim(next == 10.0);
    // [/half-the-columns]
}

}  // namespace

int main() {
    extraction();
    limits();
    lostTracking();
    fading();
    widths();
    rowZero();
    longRun();
    onlyCandidate();
    thinStripe();
    twoHumps();
    longSingleRun();
    selectMode();
    cap();
    roiPixels();
    calibration();
    lightSurface();
    rigidTransform();
    polynomials();
    outlierFilters();
    medians();
    gaussian();
    thinning();
    blur();
    thresholds();
    exposures();
}
