// The code of docs/frames.md: one pixel on its way through all coordinate frames.

#include <cmath>

#include "KorvaneLaserAlgo.h"
#include "pages/Claim.h"
#include "pages/Inputs.h"

using namespace KORVANELASERALGO;
using namespace pages;

int main() {
    // [way]
    // A camera of 1000 pixels of focal length with its axis at (500, 400), and a light plane at 45 degrees to it.
    tagKorvaneLaserAlgoCalibrationInfo calibration{};
    calibration.CameraMatrix[0] = 1000.0;  // fx
    calibration.CameraMatrix[2] = 500.0;   // cx
    calibration.CameraMatrix[4] = 1000.0;  // fy
    calibration.CameraMatrix[5] = 400.0;   // cy
    calibration.LaserPlane[0] = 300.0;     // Z = 300 mm + Y
    calibration.LaserPlane[2] = 1.0;
    KorvaneLaserAlgo algo;
    algo.CalRT(calibration.LaserPlane, calibration.RT);
    algo.SetCalibrationInfo(&calibration);

    // The ROI begins at column 580, row 150 of the sensor. A stripe in row 50 of its column 20 ...
    tagKorvaneLaserAlgoROIInfo roi{.OffsetX = 580, .OffsetY = 150, .Width = 64, .Height = 100};
    algo.SetROIInfo(&roi);
    Frame frame(64, 100);
    frame.line(50, 200);
    auto mask = clearMask(64);
    Points2d points;
    algo.Cal2DPoint1(mask.get(), frame.data(), points, 0);
    claim(points[20].x == 600.0 && points[20].y == 200.0);  // ... lies at (600, 200) of the sensor.

    algo.undistortPoints2(points);  // no distortion here: the same pixels
    claim(isNear(points[20].x, 600.0, 1e-9) && isNear(points[20].y, 200.0, 1e-9));

    // Normalised: x' = (600 - 500) / 1000 = 0.1, y' = (200 - 400) / 1000 = -0.2.
    // The light plane is met at Z = 300 / (1 - y') = 250: camera point (X, Y, Z) = (25, -50, 250) mm.
    // RT turns the plane's normal (0, 1, -1) / sqrt(2) to y, about x, and adds c0 / c2 = 300 to y:
    Profile profile;
    algo.Cal3DPoint1(mask.get(), points, profile);
    claim(isNear(profile[20].x, 25.0, 1e-9));                                      // along the profile
    claim(isNear(profile[20].y, (-50.0 - 250.0) / std::sqrt(2.0) + 300.0, 1e-9));  // 87.868, the same in every column
    claim(isNear(profile[20].z, (-50.0 + 250.0) / std::sqrt(2.0), 1e-9));          // 141.421, away from the sensor
    // [/way]
}
