/// @file KorvaneLaserAlgo.h
/// @brief The algorithm library of a laser-line (laser triangulation) profile sensor: its only public header.
///
/// A host hands 8-bit frames of the laser stripe to one `KorvaneLaserAlgo` object per sensor stream and chains,
/// frame by frame:
///
///     frame -> Cal2DPoint*  -> undistortPoints2 -> Cal3DPoint* -> Outlierdetect*, medianfilter1, Gaussianfilter,
///              one 2D point     lens distortion    one 3D point   Downsample: a clean profile
///              per column       removed            per column
///
/// Conventions, stated once and valid for every method:
///
/// - **Image**: `Width` x `Height` bytes of the stored ROI (region of interest), 8-bit grey, row-major, stride
///   `Width`, no gap between rows; pixel (r, c) is byte r * `Width` + c. The caller owns every buffer.
/// - **Mask**: a caller-owned array of at least `Width` `bool`, one per ROI column. The extraction methods only ever
///   write `true` into it, for columns in which they found the stripe, so the caller clears it before each frame. It
///   is a plain array because `std::vector<bool>` packs bits and has no `bool*`.
/// - **2D point**: x is the column, y the row, in pixels; pixel centres lie on whole numbers.
/// - **3D point**: in the length unit and the output frame of the calibration. (0, 0, 0) is the *empty point*: a
///   column without a measurement. Profiles keep one point per column; only `Downsample` shortens.
/// - **Sizes**: a `Width` or `Height` below 1 counts as 0: vectors come back empty, buffers are left alone.
/// - **Arguments are not checked.** Null pointers, buffers that are too small and inconsistent settings are the
///   caller's fault. Bad numbers propagate as infinities or not-a-number values.
/// - **Exceptions** come from the standard library only: `std::bad_alloc` where memory ends, `std::length_error`
///   where a length is impossible, `std::system_error` where a thread cannot be started.
/// - **Threads**: the library takes no locks. Serialise the calls on one object; different objects may be used from
///   different threads at once, except for `CalcImageBuffer` and `AutoExposure`, which keep process-wide state.
/// - **Exactness**: the same input gives the same bits on every compiler, processor and system; only what passes
///   through `exp`, `pow`, `sin`, `cos`, `acos`, `sinf` and `cosf` has the last bits of the C library.
///
/// The header stands alone and is valid from C++11 on.

#ifndef KORVANELASERALGO_H
#define KORVANELASERALGO_H

#include <string>
#include <vector>

#if defined(KORVANELASERALGO_STATIC)
#define KORVANELASERALGO_API
#elif defined(_WIN32)
#if defined(KORVANELASERALGO_BUILD)
#define KORVANELASERALGO_API __declspec(dllexport)
#else
#define KORVANELASERALGO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define KORVANELASERALGO_API __attribute__((visibility("default")))
#else
#define KORVANELASERALGO_API
#endif

/// Everything that the library offers.
namespace KORVANELASERALGO {

/// One image point.
struct tagKorvaneLaserPoint2d {
    double x;  ///< column, in pixels (sub-pixel)
    double y;  ///< row, in pixels (sub-pixel)
};

/// One profile point, in the length unit of the calibration; (0, 0, 0) is the empty point.
struct tagKorvaneLaserPoint3d {
    double x;  ///< first coordinate: along the profile
    double y;  ///< second coordinate: across the light plane, constant where `RT` comes from `CalRT`
    double z;  ///< third coordinate: the measured height or distance
};

/// The region of interest (ROI) of the camera image that the methods receive, in pixels of the full sensor.
struct tagKorvaneLaserAlgoROIInfo {
    int OffsetX;  ///< column of the region's left edge in the full sensor image
    int OffsetY;  ///< row of the region's top edge in the full sensor image
    int Width;    ///< columns of every image handed to the methods, and its row stride in bytes
    int Height;   ///< rows of every image handed to the methods
};

/// The calibration of camera, lens and light surface. Camera frame: X along image columns, Y along image rows, Z along
/// the optical axis, in the calibration's length unit; x' = X / Z and y' = Y / Z are the normalised coordinates.
struct tagKorvaneLaserAlgoCalibrationInfo {
    /// 3x3 camera matrix, row by row: fx, skew, cx, 0, fy, cy, 0, 0, 1, in pixels. Only fx [0], cx [2], fy [4] and
    /// cy [5] are read.
    double CameraMatrix[9];
    /// Brown-Conrady lens distortion k1, k2, p1, p2, k3: radial factor 1 + k1 r^2 + k2 r^4 + k3 r^6 and tangential
    /// terms with p1, p2.
    double DistCoeffs[5];
    /// The light surface in the camera frame, c0 .. c5: `Cal3DPoint1` takes the plane Z = c0 + c1 X + c2 Y,
    /// `Cal3DPoint2` the second-order surface Z = c0 + c1 X + c2 Y + c3 X^2 + c4 X Y + c5 Y^2.
    double LaserPlane[6];
    /// Rigid transform from the camera frame to the output frame: a 3x3 rotation row by row, then the translation;
    /// output point = rotation * camera point + translation.
    double RT[12];
};

/// How the line-selecting methods (`Cal2DPoint1_1`, `Cal2DPoint2_1`) choose among several bright runs of a column. A
/// candidate is kept when `GrayMin` <= grey <= `GrayMax` and `WidthMin` <= width <= `WidthMax`; the bounds are not
/// checked against each other.
struct tagKorvaneLaserAlgoLineSelectInfo {
    int GrayMin;   ///< smallest accepted grey value, inclusive
    int GrayMax;   ///< largest accepted grey value, inclusive
    int WidthMin;  ///< smallest accepted width in pixels, inclusive
    /// Largest accepted width in pixels, inclusive; in `Cal2DPoint1_1` also the run length from which a single bright
    /// run is split into its humps.
    int WidthMax;
    /// The choice where several candidates remain and none is near the neighbouring columns' line: 1 the brightest,
    /// 2 a grey-against-width rule, 3 the first (topmost), 4 the last. For other values see the method.
    int SelectMode;
};

static_assert(sizeof(tagKorvaneLaserPoint2d) == 16, "two doubles, no padding");
static_assert(sizeof(tagKorvaneLaserPoint3d) == 24, "three doubles, no padding");
static_assert(sizeof(tagKorvaneLaserAlgoROIInfo) == 16, "four 32-bit integers, no padding");
static_assert(sizeof(tagKorvaneLaserAlgoCalibrationInfo) == 256, "32 doubles, no padding");
static_assert(sizeof(tagKorvaneLaserAlgoLineSelectInfo) == 20, "five 32-bit integers, no padding");

struct AlgoContext;

/// One sensor stream: keeps the settings and offers every algorithm as a method. Not copyable.
///
/// The object holds the three settings records and nothing else; no image, result or derived value survives a call
/// (the two process-wide records of `CalcImageBuffer` and `AutoExposure` apart). Settings may be replaced between any
/// two calls; the next call sees the new values.
class KORVANELASERALGO_API KorvaneLaserAlgo {
public:
    /// @name Lifecycle and settings
    /// @{

    /// Creates an object whose settings are all zero: a ROI of 0 x 0 at (0, 0), calibration and line selection 0.
    /// @throws std::bad_alloc where memory ends; no object exists then
    KorvaneLaserAlgo();
    /// Frees the object's settings.
    ~KorvaneLaserAlgo();

    KorvaneLaserAlgo(const KorvaneLaserAlgo&) = delete;             ///< Not copyable.
    KorvaneLaserAlgo& operator=(const KorvaneLaserAlgo&) = delete;  ///< Not copyable.

    /// Copies the region of interest into the object; every image method needs it. Nothing is checked: negative sizes
    /// are stored as they are.
    /// @param info the caller's record; no pointer to it is kept
    void SetROIInfo(tagKorvaneLaserAlgoROIInfo* info);
    /// Copies the calibration into the object; `undistortPoints2` and `Cal3DPoint*` need it. Nothing is checked.
    /// @param info the caller's record; no pointer to it is kept
    void SetCalibrationInfo(tagKorvaneLaserAlgoCalibrationInfo* info);
    /// Copies the line selection into the object; `Cal2DPoint1_1` and `Cal2DPoint2_1` need it. Nothing is checked.
    /// @param info the caller's record; no pointer to it is kept
    void SetLineSelectInfo(tagKorvaneLaserAlgoLineSelectInfo* info);

    /// @returns the stored `OffsetX`, in pixels of the full sensor
    int GetROIInfoOffsetX();
    /// @returns the stored `OffsetY`, in pixels of the full sensor
    int GetROIInfoOffsetY();
    /// @returns the stored `Width`, in pixels
    int GetROIInfoWidth();
    /// @returns the stored `Height`, in pixels
    int GetROIInfoHeight();

    /// Replaces the contents of a string by the version text, "V0.00.01".
    /// @param version any contents; replaced
    void GetSdkVersionString(std::string& version);

    /// @}

private:
    AlgoContext* context_;  ///< the object's settings, owned
};

}  // namespace KORVANELASERALGO

#endif  // KORVANELASERALGO_H
