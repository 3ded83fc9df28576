// A host in small: finds the stripe of a frame that it makes, and looks whether the library works here: its numbers,
// its threads and its exceptions. C++11.

#include "KorvaneLaserAlgo.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using KORVANELASERALGO::KorvaneLaserAlgo;
using KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo;
using KORVANELASERALGO::tagKorvaneLaserPoint2d;

namespace {

const int kWidth = 64;
const int kHeight = 100;
const int kOffsetX = 10;
const int kOffsetY = 200;

#if defined(KORVANELASERALGO_STATIC)
const char* const kFlavour = "static";
#else
const char* const kFlavour = "shared";
#endif

// A stripe of two rows, 225 grey levels in row 40 and 75 in row 41: its centre is (40 * 225 + 41 * 75) / 300 = 40.25.
std::vector<unsigned char> makeFrame() {
    std::vector<unsigned char> frame(kWidth * kHeight, 0);
    for (int column = 0; column < kWidth; ++column) {
        frame[40 * kWidth + column] = 225;
        frame[41 * kWidth + column] = 75;
    }
    return frame;
}

bool findsTheStripe(KorvaneLaserAlgo& algo, std::vector<unsigned char> frame) {
    std::unique_ptr<bool[]> mask(new bool[kWidth]());
    std::vector<tagKorvaneLaserPoint2d> points;
    algo.Cal2DPoint1(mask.get(), frame.data(), points, 0);

    const int column = kWidth / 2;
    if (points.size() != static_cast<std::size_t>(kWidth) || !mask[column]) return false;
    std::printf("column %d: (%g, %g)\n", column, points[column].x, points[column].y);
    return points[column].x == kOffsetX + column && std::fabs(points[column].y - (kOffsetY + 40.25)) < 1e-9;
}

// From the second frame on, two threads subtract what has changed: here nothing.
bool threadsRun(KorvaneLaserAlgo& algo, std::vector<unsigned char> frame) {
    std::vector<unsigned char> out(frame.size());
    algo.CalcImageBuffer(frame.data(), out.data(), true);
    out.assign(out.size(), 0);
    algo.CalcImageBuffer(frame.data(), out.data(), true);
    return out == frame;
}

bool exceptionsArrive(KorvaneLaserAlgo& algo) {
    try {
        algo.polynomialFit({0.0, 1.0}, {0.0, 1.0}, -2);
    } catch (const std::length_error&) {
        return true;
    }
    return false;
}

bool report(const char* what, bool good) {
    std::printf("%s: %s\n", what, good ? "yes" : "NO");
    return good;
}

}  // namespace

int main() {
    KorvaneLaserAlgo algo;
    tagKorvaneLaserAlgoROIInfo roi = {kOffsetX, kOffsetY, kWidth, kHeight};
    algo.SetROIInfo(&roi);
    std::string version;
    algo.GetSdkVersionString(version);
    std::printf("KorvaneLaserAlgoSDK %s, %s, C++ %ld\n", version.c_str(), kFlavour, static_cast<long>(__cplusplus));

    bool good = report("finds the stripe", findsTheStripe(algo, makeFrame()));
    good = report("threads run", threadsRun(algo, makeFrame())) && good;
    good = report("exceptions arrive", exceptionsArrive(algo)) && good;
    return good ? 0 : 1;
}
