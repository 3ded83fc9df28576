// The object: its settings, its lifecycle, the interface that hosts compile against.

#include "KorvaneLaserAlgo.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "algo/AlgoContext.h"
#include "support/Support.h"

namespace {

using KORVANELASERALGO::AlgoContext;
using KORVANELASERALGO::tagKorvaneLaserPoint2d;
using KORVANELASERALGO::tagKorvaneLaserPoint3d;
using support::Image;
using support::KorvaneLaserAlgo;
using support::Mask;
using support::Point2d;
using support::Point3d;
using support::Points2d;
using support::Profile;
using support::setLineSelect;
using support::setRoi;
using support::tagKorvaneLaserAlgoCalibrationInfo;
using support::tagKorvaneLaserAlgoLineSelectInfo;
using support::tagKorvaneLaserAlgoROIInfo;

// ---- The interface: no overload, no default argument, every member non-const

// Taking the address fails to compile where a second overload exists.
#define HAS_SIGNATURE(name, ...) static_assert(std::is_same_v<decltype(&KorvaneLaserAlgo::name), __VA_ARGS__>)

using Algo = KorvaneLaserAlgo;
using Points = std::vector<tagKorvaneLaserPoint2d>;
using Points3d = std::vector<tagKorvaneLaserPoint3d>;
using Numbers = std::vector<double>;

TEST(KorvaneLaserAlgo, MembersHaveTheSignaturesThatHostsCompileAgainst) {
    HAS_SIGNATURE(SetROIInfo, void(Algo::*)(tagKorvaneLaserAlgoROIInfo*));
    HAS_SIGNATURE(SetCalibrationInfo, void(Algo::*)(tagKorvaneLaserAlgoCalibrationInfo*));
    HAS_SIGNATURE(SetLineSelectInfo, void(Algo::*)(tagKorvaneLaserAlgoLineSelectInfo*));
    HAS_SIGNATURE(GetROIInfoOffsetX, int(Algo::*)());
    HAS_SIGNATURE(GetROIInfoOffsetY, int(Algo::*)());
    HAS_SIGNATURE(GetROIInfoWidth, int(Algo::*)());
    HAS_SIGNATURE(GetROIInfoHeight, int(Algo::*)());
    HAS_SIGNATURE(GetSdkVersionString, void(Algo::*)(std::string&));

    HAS_SIGNATURE(Cal2DPoint1, void(Algo::*)(bool*, unsigned char*, Points&, const int&));
    HAS_SIGNATURE(Cal2DPoint1_1, void(Algo::*)(bool*, unsigned char*, Points&));
    HAS_SIGNATURE(Cal2DPoint2, void(Algo::*)(bool*, unsigned char*, Points&));
    HAS_SIGNATURE(Cal2DPoint2_1, void(Algo::*)(bool*, unsigned char*, Points&));
    HAS_SIGNATURE(Cal2DPoint3, void(Algo::*)(bool*, unsigned char*, Points&, const int&));
    HAS_SIGNATURE(Cal2DPoint4, void(Algo::*)(bool*, unsigned char*, Points&, const int&));

    HAS_SIGNATURE(undistortPoints2, void(Algo::*)(Points&));
    HAS_SIGNATURE(Cal3DPoint1, void(Algo::*)(bool*, const Points&, Points3d&));
    HAS_SIGNATURE(Cal3DPoint2, void(Algo::*)(bool*, const Points&, Points3d&));
    HAS_SIGNATURE(CalRT, void(Algo::*)(double*, double*));
    HAS_SIGNATURE(polynomialFit, Numbers(Algo::*)(const Numbers&, const Numbers&, const int&));
    HAS_SIGNATURE(evaluatePolynomial, double(Algo::*)(const Numbers&, const double&));

    HAS_SIGNATURE(Outlierdetect1, void(Algo::*)(Points3d&, const int&, const float&));
    HAS_SIGNATURE(Outlierdetect2, void(Algo::*)(Points3d&, const int&, const float&));
    HAS_SIGNATURE(medianfilter1, void(Algo::*)(Points3d&, const int&));
    HAS_SIGNATURE(medianfilter2, void(Algo::*)(Points3d&, const int&));
    HAS_SIGNATURE(Gaussianfilter, void(Algo::*)(Points3d&, const int&));
    HAS_SIGNATURE(Downsample, void(Algo::*)(const Points3d&, const float&, Points3d&, int&));

    HAS_SIGNATURE(GaussianBlur, void(Algo::*)(unsigned char*, unsigned char*, const int&));
    HAS_SIGNATURE(Otsu2, void(Algo::*)(const int&, unsigned char*, unsigned char*));
    HAS_SIGNATURE(Otsu3, void(Algo::*)(unsigned char*, int*, unsigned char*));
    HAS_SIGNATURE(MergeImg, void(Algo::*)(unsigned char*, unsigned char*, unsigned char*));
    HAS_SIGNATURE(CalcImageBuffer, void(Algo::*)(unsigned char*, unsigned char*, const bool&));
    HAS_SIGNATURE(AutoExposure, bool(Algo::*)(unsigned char*, const double&, const double&, const double&,
                                              const double&, const double&, const bool&, double&));
    SUCCEED();
}

TEST(KorvaneLaserAlgo, ObjectIsOnePointerAndCannotBeCopiedOrMoved) {
    static_assert(sizeof(KorvaneLaserAlgo) == sizeof(void*));
    static_assert(!std::is_polymorphic_v<KorvaneLaserAlgo>);
    static_assert(!std::is_copy_constructible_v<KorvaneLaserAlgo>);
    static_assert(!std::is_copy_assignable_v<KorvaneLaserAlgo>);
    static_assert(!std::is_move_constructible_v<KorvaneLaserAlgo>);
    static_assert(!std::is_move_assignable_v<KorvaneLaserAlgo>);
    SUCCEED();
}

TEST(KorvaneLaserAlgo, RecordsHaveTheirFieldsInOrderWithoutPadding) {
    static_assert(sizeof(tagKorvaneLaserPoint2d) == 16 && sizeof(tagKorvaneLaserPoint3d) == 24);
    static_assert(sizeof(tagKorvaneLaserAlgoROIInfo) == 16);
    static_assert(sizeof(tagKorvaneLaserAlgoCalibrationInfo) == 256);
    static_assert(sizeof(tagKorvaneLaserAlgoLineSelectInfo) == 20);

    static_assert(offsetof(tagKorvaneLaserPoint2d, x) == 0 && offsetof(tagKorvaneLaserPoint2d, y) == 8);
    static_assert(offsetof(tagKorvaneLaserPoint3d, x) == 0 && offsetof(tagKorvaneLaserPoint3d, y) == 8);
    static_assert(offsetof(tagKorvaneLaserPoint3d, z) == 16);

    static_assert(offsetof(tagKorvaneLaserAlgoROIInfo, OffsetX) == 0);
    static_assert(offsetof(tagKorvaneLaserAlgoROIInfo, OffsetY) == 4);
    static_assert(offsetof(tagKorvaneLaserAlgoROIInfo, Width) == 8);
    static_assert(offsetof(tagKorvaneLaserAlgoROIInfo, Height) == 12);

    static_assert(offsetof(tagKorvaneLaserAlgoCalibrationInfo, CameraMatrix) == 0);
    static_assert(offsetof(tagKorvaneLaserAlgoCalibrationInfo, DistCoeffs) == 9 * 8);
    static_assert(offsetof(tagKorvaneLaserAlgoCalibrationInfo, LaserPlane) == 14 * 8);
    static_assert(offsetof(tagKorvaneLaserAlgoCalibrationInfo, RT) == 20 * 8);

    static_assert(offsetof(tagKorvaneLaserAlgoLineSelectInfo, GrayMin) == 0);
    static_assert(offsetof(tagKorvaneLaserAlgoLineSelectInfo, GrayMax) == 4);
    static_assert(offsetof(tagKorvaneLaserAlgoLineSelectInfo, WidthMin) == 8);
    static_assert(offsetof(tagKorvaneLaserAlgoLineSelectInfo, WidthMax) == 12);
    static_assert(offsetof(tagKorvaneLaserAlgoLineSelectInfo, SelectMode) == 16);

    static_assert(offsetof(AlgoContext, roi) == 0);
    static_assert(offsetof(AlgoContext, calibration) == 16);
    static_assert(offsetof(AlgoContext, lineSelect) == 16 + 256);
    static_assert(sizeof(AlgoContext) <= 16 + 256 + 20 + 4, "three records and nothing else");
    SUCCEED();
}

// ---- Settings

TEST(KorvaneLaserAlgo, NewObjectReportsZeroFromAllFourRoiGetters) {
    KorvaneLaserAlgo algo;
    EXPECT_EQ(algo.GetROIInfoOffsetX(), 0);
    EXPECT_EQ(algo.GetROIInfoOffsetY(), 0);
    EXPECT_EQ(algo.GetROIInfoWidth(), 0);
    EXPECT_EQ(algo.GetROIInfoHeight(), 0);
}

TEST(KorvaneLaserAlgo, RoiGettersReturnWhatWasSetNegativeValuesIncluded) {
    KorvaneLaserAlgo algo;
    const tagKorvaneLaserAlgoROIInfo settings[] = {
        {12, 34, 640, 480}, {-1, -2, -3, -4}, {0, 0, 0, 0}, {INT_MIN, INT_MAX, INT_MIN, INT_MAX}, {5, 6, 7, 8}};
    for (tagKorvaneLaserAlgoROIInfo roi : settings) {
        const tagKorvaneLaserAlgoROIInfo expected = roi;
        algo.SetROIInfo(&roi);
        EXPECT_EQ(algo.GetROIInfoOffsetX(), expected.OffsetX);
        EXPECT_EQ(algo.GetROIInfoOffsetY(), expected.OffsetY);
        EXPECT_EQ(algo.GetROIInfoWidth(), expected.Width);
        EXPECT_EQ(algo.GetROIInfoHeight(), expected.Height);
    }
}

TEST(KorvaneLaserAlgo, SetRoiKeepsNoPointerToTheRecord) {
    KorvaneLaserAlgo algo;
    tagKorvaneLaserAlgoROIInfo roi{12, 34, 640, 480};
    algo.SetROIInfo(&roi);
    roi = {1, 2, 3, 4};
    EXPECT_EQ(algo.GetROIInfoOffsetX(), 12);
    EXPECT_EQ(algo.GetROIInfoOffsetY(), 34);
    EXPECT_EQ(algo.GetROIInfoWidth(), 640);
    EXPECT_EQ(algo.GetROIInfoHeight(), 480);
}

TEST(KorvaneLaserAlgo, ObjectsDoNotShareTheirSettings) {
    KorvaneLaserAlgo first;
    KorvaneLaserAlgo second;
    setRoi(first, 640, 480, 12, 34);
    EXPECT_EQ(second.GetROIInfoWidth(), 0);
    setRoi(second, 320, 240);
    EXPECT_EQ(first.GetROIInfoWidth(), 640);
    EXPECT_EQ(first.GetROIInfoOffsetY(), 34);
}

/// A calibration with distortion, light plane and transform, all of which change a point.
tagKorvaneLaserAlgoCalibrationInfo someCalibration() {
    return {{1000.0, 0.0, 300.0, 0.0, 1100.0, 200.0, 0.0, 0.0, 1.0},
            {0.1, -0.05, 0.001, 0.002, 0.01},
            {500.0, 0.1, -0.2, 1e-5, 2e-5, 3e-5},
            {0.0, -1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 10.0, 20.0, 30.0}};
}

struct Measured {
    Points2d undistorted;
    Profile onPlane;
    Profile onSurface;
};

Measured measure(KorvaneLaserAlgo& algo) {
    Mask mask(2);
    mask[0] = mask[1] = true;
    const Points2d points{{1.0, 400.0}, {0.25, 100.0}};
    Measured measured;
    measured.undistorted = points;
    algo.undistortPoints2(measured.undistorted);
    algo.Cal3DPoint1(mask.data(), points, measured.onPlane);
    algo.Cal3DPoint2(mask.data(), points, measured.onSurface);
    return measured;
}

void expectSame(const Measured& a, const Measured& b) {
    EXPECT_TRUE(support::sameBits(a.undistorted, b.undistorted));
    EXPECT_TRUE(support::sameBits(a.onPlane, b.onPlane));
    EXPECT_TRUE(support::sameBits(a.onSurface, b.onSurface));
}

TEST(KorvaneLaserAlgo, SetCalibrationKeepsNoPointerToTheRecord) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 1000);
    tagKorvaneLaserAlgoCalibrationInfo calibration = someCalibration();
    algo.SetCalibrationInfo(&calibration);
    const Measured before = measure(algo);
    ASSERT_TRUE(std::isfinite(before.undistorted[0].x) && std::isfinite(before.onPlane[0].z) &&
                std::isfinite(before.onSurface[0].z));
    calibration = {};
    expectSame(measure(algo), before);
}

TEST(KorvaneLaserAlgo, EveryCalibrationValueThatIsReadIsCopied) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 1000);
    const tagKorvaneLaserAlgoCalibrationInfo original = someCalibration();

    // Values are addressed through their arrays: each is made a little greater, alone.
    const auto changesTheResult = [&](auto array, std::size_t index) {
        tagKorvaneLaserAlgoCalibrationInfo calibration = original;
        algo.SetCalibrationInfo(&calibration);
        const Measured before = measure(algo);
        (calibration.*array)[index] += 0.5e-5;
        algo.SetCalibrationInfo(&calibration);
        const Measured after = measure(algo);
        return !(support::sameBits(before.undistorted, after.undistorted) &&
                 support::sameBits(before.onPlane, after.onPlane) &&
                 support::sameBits(before.onSurface, after.onSurface));
    };
    for (std::size_t i : {0U, 2U, 4U, 5U})
        EXPECT_TRUE(changesTheResult(&tagKorvaneLaserAlgoCalibrationInfo::CameraMatrix, i)) << "camera matrix " << i;
    for (std::size_t i : {1U, 3U, 6U, 7U, 8U})
        EXPECT_FALSE(changesTheResult(&tagKorvaneLaserAlgoCalibrationInfo::CameraMatrix, i)) << "camera matrix " << i;
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_TRUE(changesTheResult(&tagKorvaneLaserAlgoCalibrationInfo::DistCoeffs, i)) << "distortion " << i;
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_TRUE(changesTheResult(&tagKorvaneLaserAlgoCalibrationInfo::LaserPlane, i)) << "light surface " << i;
    for (std::size_t i = 0; i < 12; ++i)
        EXPECT_TRUE(changesTheResult(&tagKorvaneLaserAlgoCalibrationInfo::RT, i)) << "transform " << i;
}

TEST(KorvaneLaserAlgo, NewObjectHasAnAllZeroCalibration) {
    KorvaneLaserAlgo fresh;
    setRoi(fresh, 2, 1000);
    KorvaneLaserAlgo zeroed;
    setRoi(zeroed, 2, 1000);
    tagKorvaneLaserAlgoCalibrationInfo zeros = {};
    zeroed.SetCalibrationInfo(&zeros);
    const Measured measured = measure(fresh);
    expectSame(measured, measure(zeroed));
    EXPECT_TRUE(std::isnan(measured.undistorted[0].x)) << "a focal length of 0 yields not-a-number";
}

/// Which columns a line-selecting method finds, in an image with one stripe of grey 100 and width 2.
std::vector<int> selectedColumns(KorvaneLaserAlgo& algo) {
    setRoi(algo, 5, 50);
    Image image(5, 50);
    image.drawLine(20, {100, 100});
    Mask mask(5);
    Points2d points;
    algo.Cal2DPoint1_1(mask.data(), image.data(), points);
    return mask.marked();
}

TEST(KorvaneLaserAlgo, NewObjectHasAnAllZeroLineSelectionThatRejectsEveryStripe) {
    KorvaneLaserAlgo algo;
    EXPECT_EQ(selectedColumns(algo), std::vector<int>{});
    setLineSelect(algo, 0, 255, 0, 50, 1);
    EXPECT_FALSE(selectedColumns(algo).empty());
}

TEST(KorvaneLaserAlgo, SetLineSelectKeepsNoPointerToTheRecord) {
    KorvaneLaserAlgo algo;
    tagKorvaneLaserAlgoLineSelectInfo info{0, 255, 0, 50, 1};
    algo.SetLineSelectInfo(&info);
    const std::vector<int> before = selectedColumns(algo);
    ASSERT_FALSE(before.empty());
    info = {};
    EXPECT_EQ(selectedColumns(algo), before);
}

TEST(KorvaneLaserAlgo, LineSelectionWithCrossedGreyBoundsRejectsEveryStripe) {
    KorvaneLaserAlgo algo;
    setLineSelect(algo, 100, 100, 0, 50, 1);
    ASSERT_FALSE(selectedColumns(algo).empty());
    setLineSelect(algo, 200, 50, 0, 50, 1);
    EXPECT_EQ(selectedColumns(algo), std::vector<int>{});
}

TEST(KorvaneLaserAlgo, NextCallSeesReplacedSettings) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 1000);
    tagKorvaneLaserAlgoCalibrationInfo calibration = someCalibration();
    algo.SetCalibrationInfo(&calibration);
    const Measured before = measure(algo);

    tagKorvaneLaserAlgoCalibrationInfo moved = calibration;
    moved.RT[11] += 1000.0;
    algo.SetCalibrationInfo(&moved);
    EXPECT_GT(measure(algo).onPlane[0].z, before.onPlane[0].z + 999.0);

    algo.SetCalibrationInfo(&calibration);
    expectSame(measure(algo), before);
}

TEST(KorvaneLaserAlgo, SettersTouchOnlyTheirOwnRecord) {
    KorvaneLaserAlgo algo;
    setRoi(algo, 2, 1000, 3, 4);
    tagKorvaneLaserAlgoCalibrationInfo calibration = someCalibration();
    algo.SetCalibrationInfo(&calibration);
    const Measured before = measure(algo);
    setLineSelect(algo, 1, 2, 3, 4, 5);
    expectSame(measure(algo), before);
    EXPECT_EQ(algo.GetROIInfoOffsetX(), 3);
    EXPECT_EQ(algo.GetROIInfoOffsetY(), 4);
    EXPECT_EQ(algo.GetROIInfoWidth(), 2);
    EXPECT_EQ(algo.GetROIInfoHeight(), 1000);
}

// ---- Version

TEST(KorvaneLaserAlgo, VersionTextReplacesALongText) {
    KorvaneLaserAlgo algo;
    std::string version(1000, 'x');
    algo.GetSdkVersionString(version);
    EXPECT_EQ(version, "V0.00.01");
    EXPECT_EQ(version.size(), 8U);
}

TEST(KorvaneLaserAlgo, VersionTextFillsAnEmptyString) {
    KorvaneLaserAlgo algo;
    std::string version;
    algo.GetSdkVersionString(version);
    EXPECT_EQ(version, "V0.00.01");
}

// ---- What the methods have in common

using ExtractionCall = void (*)(KorvaneLaserAlgo&, bool*, unsigned char*, Points2d&);

const ExtractionCall kExtractionCalls[] = {
    [](KorvaneLaserAlgo& algo, bool* mask, unsigned char* image, Points2d& points) {
        algo.Cal2DPoint1(mask, image, points, 0);
    },
    [](KorvaneLaserAlgo& algo, bool* mask, unsigned char* image, Points2d& points) {
        algo.Cal2DPoint1_1(mask, image, points);
    },
    [](KorvaneLaserAlgo& algo, bool* mask, unsigned char* image, Points2d& points) {
        algo.Cal2DPoint2(mask, image, points);
    },
    [](KorvaneLaserAlgo& algo, bool* mask, unsigned char* image, Points2d& points) {
        algo.Cal2DPoint2_1(mask, image, points);
    },
    [](KorvaneLaserAlgo& algo, bool* mask, unsigned char* image, Points2d& points) {
        algo.Cal2DPoint3(mask, image, points, 255);
    },
    [](KorvaneLaserAlgo& algo, bool* mask, unsigned char* image, Points2d& points) {
        algo.Cal2DPoint4(mask, image, points, 60);
    },
};

TEST(KorvaneLaserAlgo, MaskEntriesThatWereTrueStayTrueWhereNoStripeIsFound) {
    for (std::size_t method = 0; method < std::size(kExtractionCalls); ++method) {
        KorvaneLaserAlgo algo;
        setRoi(algo, 6, 50);
        setLineSelect(algo, 0, 255, 0, 50, 1);
        Image image(6, 50);
        Mask mask(6);
        mask[0] = mask[3] = mask[5] = true;
        Points2d points;
        kExtractionCalls[method](algo, mask.data(), image.data(), points);
        EXPECT_EQ(mask.marked(), (std::vector<int>{0, 3, 5})) << "method " << method;
        EXPECT_EQ(points.size(), 6U) << "method " << method;
    }
}

TEST(KorvaneLaserAlgo, ObjectWithoutSettingsYieldsEmptyVectorsAndMarksNothing) {
    for (std::size_t method = 0; method < std::size(kExtractionCalls); ++method) {
        KorvaneLaserAlgo algo;
        Image image(6, 50, 255);
        Mask mask(6);
        Points2d points(4, Point2d{1.0, 2.0});
        kExtractionCalls[method](algo, mask.data(), image.data(), points);
        EXPECT_TRUE(points.empty()) << "method " << method;
        EXPECT_EQ(mask.marked(), std::vector<int>{}) << "method " << method;
    }
}

TEST(KorvaneLaserAlgo, MedianFiltersGiveIdenticalResultsUnderBothNames) {
    Profile profile;
    for (int i = 0; i < 200; ++i) {
        const double height = 10.0 + (i * 37 % 23) * 0.3 + i * 0.1;
        profile.push_back(i % 11 == 4 ? Point3d{0.0, 0.0, 0.0} : Point3d{i * 0.1 + 0.05, i * 0.2, height});
    }
    const auto filtered = [&profile](auto filter, int halfWindow) {
        KorvaneLaserAlgo algo;
        Profile result = profile;
        (algo.*filter)(result, halfWindow);
        return result;
    };
    for (int halfWindow : {-1, 0, 1, 2, 7, 1000}) {
        EXPECT_TRUE(support::sameBits(filtered(&KorvaneLaserAlgo::medianfilter1, halfWindow),
                                      filtered(&KorvaneLaserAlgo::medianfilter2, halfWindow)))
            << "half window " << halfWindow;
    }
    EXPECT_FALSE(support::sameBits(filtered(&KorvaneLaserAlgo::medianfilter2, 2), profile)) << "nothing was filtered";
}

TEST(KorvaneLaserAlgo, DifferentObjectsWorkInDifferentThreadsAtOnce) {
    const auto follow = [](int offset, int* mismatches) {
        Image image(20, 60);
        image.drawLine(30, {100, 200, 100});
        KorvaneLaserAlgo algo;
        for (int repeat = 0; repeat < 50; ++repeat) {
            setRoi(algo, 20, 60, offset, -offset);
            Mask mask(20);
            Points2d points;
            algo.Cal2DPoint1(mask.data(), image.data(), points, 0);
            const Point2d expected{10.0 + offset, 31.0 - offset};
            if (points.size() != 20 || !support::sameBits(points[10], expected)) ++*mismatches;
        }
    };
    int mismatches[2] = {};
    std::thread other(follow, 1000, &mismatches[1]);
    follow(5, &mismatches[0]);
    other.join();
    EXPECT_EQ(mismatches[0], 0);
    EXPECT_EQ(mismatches[1], 0);
}

}  // namespace
