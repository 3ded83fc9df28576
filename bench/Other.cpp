#include "bench/Other.h"

#include <algorithm>
#include <vector>

#if KORVANE_BENCH_OPENCV
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace bench::other {

#if KORVANE_BENCH_OPENCV

namespace {

cv::Mat imageOf(unsigned char* pixels, Size size) {
    return cv::Mat(size.height, size.width, CV_8UC1, pixels);
}

/// Matrices that are kept from call to call, as a practitioner would keep them.
struct ColumnMeans {
    cv::Mat cut;
    cv::Mat grey;
    cv::Mat weighted;
    cv::Mat rowNumbers;  // of every pixel
    cv::Mat sums;
    cv::Mat moments;
    cv::Mat means;
    cv::Mat points;  // an image of the columns' points
    std::vector<cv::Vec2f> lines;
};

void findColumnMeans(ColumnMeans& m, const cv::Mat& frame, int threshold) {
    cv::threshold(frame, m.cut, threshold, 0, cv::THRESH_TOZERO);
    m.cut.convertTo(m.grey, CV_32F);
    cv::reduce(m.grey, m.sums, 0, cv::REDUCE_SUM);
    cv::multiply(m.grey, m.rowNumbers, m.weighted);
    cv::reduce(m.weighted, m.moments, 0, cv::REDUCE_SUM);
    cv::divide(m.moments, m.sums, m.means);
}

void findLines(ColumnMeans& m) {
    constexpr int kLeastVotes = 100;
    m.points = cv::Scalar(0);
    for (int column = 0; column < m.means.cols; ++column) {
        if (m.sums.at<float>(0, column) > 0.0F)
            m.points.at<unsigned char>(cvRound(m.means.at<float>(0, column)), column) = 255;
    }
    cv::HoughLines(m.points, m.lines, 1.0, CV_PI / 180.0, kLeastVotes);
}

}  // namespace

void useOneThread() {
    cv::setNumThreads(1);
}

void setExtraction(Item& item, bool lines, const FrameOf& frame, Size size, int threshold) {
    const auto means = std::make_shared<ColumnMeans>();
    means->rowNumbers.create(size.height, size.width, CV_32F);
    for (int row = 0; row < size.height; ++row) means->rowNumbers.row(row) = cv::Scalar(row);
    means->points.create(size.height, size.width, CV_8UC1);
    item.otherName = lines ? "OpenCV threshold, reduce, HoughLines" : "OpenCV threshold, reduce";
    item.other = [=](int copy) {
        findColumnMeans(*means, imageOf(frame(copy), size), threshold);
        if (lines) findLines(*means);
    };
}

void setBlur(Item& item, const FrameOf& frame, unsigned char* out, Size size, int taps) {
    item.otherName = "OpenCV GaussianBlur";
    item.other = [=](int copy) {
        cv::Mat blurred = imageOf(out, size);
        cv::GaussianBlur(imageOf(frame(copy), size), blurred, cv::Size(taps, taps), 1.0, 1.0, cv::BORDER_REPLICATE);
    };
}

void setThreshold(Item& item, const FrameOf& frame, unsigned char* out, Size size, int threshold) {
    item.otherName = "OpenCV threshold";
    item.other = [=](int copy) {
        cv::Mat cut = imageOf(out, size);
        cv::threshold(imageOf(frame(copy), size), cut, threshold, 0, cv::THRESH_TOZERO);
    };
}

void setUndistort(Item& item, const std::shared_ptr<const Measured>& measured,
                  const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration) {
    struct Lens {
        cv::Mat camera;
        cv::Mat distortion;
        cv::Mat undistorted;
    };
    const auto lens = std::make_shared<Lens>();
    lens->camera = cv::Mat(3, 3, CV_64F, const_cast<double*>(calibration.CameraMatrix)).clone();
    lens->distortion = cv::Mat(1, 5, CV_64F, const_cast<double*>(calibration.DistCoeffs)).clone();
    item.otherName = "OpenCV undistortPoints";
    item.other = [=](int copy) {
        const Points2d& points = measured->points[static_cast<std::size_t>(copy)];
        const cv::Mat distorted(static_cast<int>(points.size()), 1, CV_64FC2,
                                const_cast<KORVANELASERALGO::tagKorvaneLaserPoint2d*>(points.data()));
        cv::undistortPoints(distorted, lens->undistorted, lens->camera, lens->distortion, cv::noArray(), lens->camera);
    };
}

#else

void useOneThread() {}
void setExtraction(Item&, bool, const FrameOf&, Size, int) {}
void setBlur(Item&, const FrameOf&, unsigned char*, Size, int) {}
void setThreshold(Item&, const FrameOf&, unsigned char*, Size, int) {}
void setUndistort(Item&, const std::shared_ptr<const Measured>&,
                  const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo&) {}

#endif

void slidingMedian(const Profile& profile, int halfWindow, Profile& out) {
    std::vector<std::size_t> valid;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (profile[i].x != 0.0) valid.push_back(i);
    }
    const auto reach = static_cast<std::size_t>(halfWindow);
    std::vector<double> window;
    out = profile;
    for (std::size_t i = 0; i < valid.size(); ++i) {
        window.clear();
        for (std::size_t k = i - std::min(i, reach); k <= std::min(i + reach, valid.size() - 1); ++k)
            window.push_back(profile[valid[k]].z);
        const auto middle = window.begin() + static_cast<std::ptrdiff_t>(window.size() / 2);
        std::nth_element(window.begin(), middle, window.end());
        out[valid[i]].z = *middle;
    }
}

}  // namespace bench::other
