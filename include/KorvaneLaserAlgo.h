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
    /// @name Extraction: from a frame to one 2D point per column
    ///
    /// Every method takes the mask and the frame, replaces the contents of `points` by exactly `Width` points (point i
    /// for column i) and sets mask[i] to true for the columns with a stripe; other mask entries stay as they were.
    /// Except for `Cal2DPoint4` the points are in pixels of the full sensor, the ROI's offsets added, and a column
    /// without a stripe reads (`OffsetX`, `OffsetY`). The frame is read only, except by `Cal2DPoint4`.
    /// @{

    /// Follows one stripe: finds it from above at a fixed threshold of 60 grey levels, then looks only near the row of
    /// the column before, and takes the grey-weighted centroid of the bright rows.
    ///
    /// For a clean single stripe. The first and last column are never searched, nor do the first two and the last 21
    /// rows start a stripe (for a `Height` below 41, the last `Height` / 2 rows); a `Width` below 3 or a `Height` below
    /// 5 finds nothing. A stripe that fades by 10 % or more from one column to the next is searched from the top again.
    /// Where the centroid rounds to the first or last row, no later column of the frame yields a point.
    /// @param mask at least `Width` entries; true is written where the stripe was found
    /// @param image `Width` x `Height` bytes, read only
    /// @param points replaced by `Width` points; x is the column, y the centroid row, full-sensor pixels
    /// @param unused never read; present so that the extraction methods look alike
    /// @throws std::bad_alloc where memory ends
    void Cal2DPoint1(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points, const int& unused);

    /// Chooses among several bright runs per column at a fixed threshold of 60 grey levels, with the line selection.
    ///
    /// For frames with reflections or a second line. Every run, or every hump of a long run, is a candidate and must
    /// pass the bounds of the line selection: a whole run with the grey value of the pixel at its centre and its length
    /// in rows, a hump with the grey value of its peak and the distance between its feet. A single candidate is taken;
    /// among several, the nearest to the neighbouring column's point wins where it lies within 5.0 rows, else
    /// `SelectMode` decides: 1 the greatest grey, 2 the last candidate in the chain whose grey value lies below a
    /// limit that starts at `Width` and becomes the width of each candidate taken, 3 the first, 4 the last, any other
    /// value none. Columns are walked to the right, then back to the left.
    /// A centre in row 0.0 of the ROI exactly does not mark its column.
    /// @param mask at least `Width` entries; true is written where a point was chosen
    /// @param image `Width` x `Height` bytes, read only
    /// @param points replaced by `Width` points, full-sensor pixels
    /// @throws std::bad_alloc where memory ends
    void Cal2DPoint1_1(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points);

    /// Follows the stripe through several bright runs per column, at half of each column's brightest grey value (at
    /// least 30), without any setting but the ROI.
    ///
    /// For stripes whose brightness varies along the line. A single run of 20 rows or more is rejected; of several
    /// runs, the candidate within 5.0 rows of the neighbouring columns' line is taken. Columns are walked to the
    /// right, back to the left, and a column with one candidate left is filled at last.
    /// A centre in row 0.0 of the ROI exactly does not mark its column.
    /// @param mask at least `Width` entries; true is written where a point was chosen
    /// @param image `Width` x `Height` bytes, read only
    /// @param points replaced by `Width` points, full-sensor pixels
    /// @throws std::bad_alloc where memory ends
    void Cal2DPoint2(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points);

    /// The most selective method: candidates above 30 grey levels that pass the line selection, kept where they lie on
    /// long straight stripe segments (standard Hough transform), pruned against a line interpolated between
    /// unambiguous columns, then chosen by following the neighbouring columns.
    ///
    /// For shiny parts with many reflections; the slowest of the six, above all on noisy frames. Grey value and width
    /// of a candidate are measured as by `Cal2DPoint1_1`. A column's only candidate is always taken; among several, the
    /// nearest within 5.0 rows of the neighbour, else `SelectMode`: 1 the greatest grey, 2 the smallest width, 3 the
    /// first, 4 the last, any other value the candidate that is brighter and narrower at once. A centre in row 0.0 of
    /// the ROI exactly does not mark its column.
    /// @param mask at least `Width` entries; true is written where a point was chosen
    /// @param image `Width` x `Height` bytes, read only
    /// @param points replaced by `Width` points, full-sensor pixels
    /// @throws std::bad_alloc where memory ends
    void Cal2DPoint2_1(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points);

    /// `Cal2DPoint1` with a threshold per column: the mean of the column's pixels above 60, at least 60, at most the
    /// caller's cap; while following, half of the local peak, so that the centroid takes the stripe's core.
    ///
    /// For a single stripe with a bright surrounding. A cap below 60 lowers the threshold below 60. Rows, columns and
    /// the end of tracking behave as in `Cal2DPoint1`.
    /// @param mask at least `Width` entries; true is written where the stripe was found
    /// @param image `Width` x `Height` bytes, read only
    /// @param points replaced by `Width` points, full-sensor pixels
    /// @param cap largest threshold of a column with bright pixels, in grey levels; 255 or more caps nothing
    /// @throws std::bad_alloc where memory ends
    void Cal2DPoint3(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points, const int& cap);

    /// Cuts the frame at a threshold and takes the grey-weighted mean row of everything that is left in a column.
    ///
    /// For frames in which the stripe is all that is bright. Two things differ from its siblings: **the caller's image
    /// is changed** (pixels below the threshold become 0), and **the points are in ROI pixels**: x is the column in
    /// the ROI, a column without a stripe reads (column, 0). Add the offsets before `undistortPoints2`. The sums are
    /// in single precision, so a row has about seven digits.
    /// @param mask at least `Width` entries; true is written where the mean row is above 0.0
    /// @param image `Width` x `Height` bytes; pixels below the threshold are set to 0
    /// @param points replaced by `Width` points, ROI pixels
    /// @param threshold smallest grey level that is kept
    /// @throws std::bad_alloc where memory ends
    void Cal2DPoint4(bool* mask, unsigned char* image, std::vector<tagKorvaneLaserPoint2d>& points,
                     const int& threshold);

    /// @}
    /// @name Calibration: from 2D points to a profile
    /// @{

    /// Removes the lens distortion from every point, in place: Brown-Conrady model, inverted by exactly five
    /// fixed-point iterations, projected with the same camera matrix again.
    ///
    /// Every point is transformed, those of columns without a stripe too, so size, order and mask stay valid. A zero
    /// fx or fy yields not-a-number.
    /// @param points full-sensor pixels in, full-sensor pixels out
    void undistortPoints2(std::vector<tagKorvaneLaserPoint2d>& points);

    /// Turns 2D points into a profile: intersects each line of sight with the light plane Z = c0 + c1 X + c2 Y and
    /// applies `RT`.
    ///
    /// A column yields a point where its mask entry is true and its x lies above -0.5 and below
    /// `OffsetX` + `Width` - 0.5 (the lower bound ignores the offset; points that undistortion moved past the bounds
    /// are rejected); every other column yields the empty point. Undistort the points first.
    /// @param mask `Width` entries, as an extraction method left them; read only
    /// @param points2d one point per column, full-sensor pixels; a column beyond its end counts as rejected
    /// @param points3d replaced by `Width` points, output frame; its storage is reused
    /// @throws std::bad_alloc where memory ends
    void Cal3DPoint1(bool* mask, const std::vector<tagKorvaneLaserPoint2d>& points2d,
                     std::vector<tagKorvaneLaserPoint3d>& points3d);

    /// As `Cal3DPoint1`, for the second-order light surface Z = c0 + c1 X + c2 Y + c3 X^2 + c4 X Y + c5 Y^2.
    ///
    /// The depth is the first root of the quadratic where it lies in 0 .. 3500 length units, else the second root, and
    /// is rounded to single precision. A line of sight that misses the surface yields not-a-number, and so does a
    /// surface with c3 = c4 = c5 = 0: flat light planes go through `Cal3DPoint1`.
    /// @param mask `Width` entries, as an extraction method left them; read only
    /// @param points2d one point per column, full-sensor pixels; a column beyond its end counts as rejected
    /// @param points3d replaced by `Width` points, output frame; its storage is reused
    /// @throws std::bad_alloc where memory ends
    void Cal3DPoint2(bool* mask, const std::vector<tagKorvaneLaserPoint2d>& points2d,
                     std::vector<tagKorvaneLaserPoint3d>& points3d);

    /// Computes the rigid transform that turns the light plane's normal into the output y axis (Rodrigues' rotation
    /// formula), laid out as the `RT` field of the calibration. Every point of the plane then has the one
    /// y = c0 / c2 - c0 / s, with s = sqrt(c1^2 + c2^2 + 1) and the sign of c2.
    ///
    /// **A plane with |c2| beyond about 1e8, or with a c1 or c2 whose square is infinite, can end the process** with
    /// exit status 0 and a line on the standard error stream, because no axis is left to turn about; check the plane
    /// before the call. c2 = 0 yields an infinite or not-a-number translation.
    /// @param plane three doubles c0, c1, c2 of the plane Z = c0 + c1 X + c2 Y, read only
    /// @param rt twelve doubles, written: the rotation row by row, then the translation (0, c0 / c2, 0)
    /// @throws std::bad_alloc where memory ends
    void CalRT(double* plane, double* rt);

    /// Fits a polynomial by least squares: normal equations, Gaussian elimination with partial pivoting.
    ///
    /// Too few distinct x values yield infinite or not-a-number coefficients.
    /// @param x sample positions
    /// @param y sample values, at least as many as `x`
    /// @param degree degree of the polynomial; -1 yields an empty vector
    /// @returns degree + 1 coefficients by increasing power: c[0] + c[1] x + c[2] x^2 + ...
    /// @throws std::length_error "vector too long" for a degree below -1 or of 2147483647; std::bad_alloc
    std::vector<double> polynomialFit(const std::vector<double>& x, const std::vector<double>& y, const int& degree);

    /// Evaluates a polynomial by a running power.
    /// @param coefficients by increasing power, as `polynomialFit` returns them
    /// @param x where to evaluate
    /// @returns the value; 0.0 for an empty vector
    double evaluatePolynomial(const std::vector<double>& coefficients, const double& x);

    /// @}
    /// @name Profile filters: from a profile to a profile
    ///
    /// A profile has one 3D point per column. Points with x = 0.0 are empty and neither change nor count as
    /// neighbours; neighbours are counted along the remaining points, across gaps. No setting of the object is read;
    /// calls on different profiles may run in parallel. The fixed limits of 5.0 length units are made for calibrations
    /// in millimetres.
    /// @{

    /// Clears isolated points by votes: a point survives when more than `halfWidth` of its neighbours agree with its z
    /// or with its local direction dx/dz (to within 0.3).
    ///
    /// Points with x = 0 or z = 0 take no part. The neighbours are the usable points j - w .. j + w - 1, without
    /// j + w, so the first usable point of a profile is always cleared. Fewer than 2 w + 1 usable points, or a
    /// negative half-width, leave the profile unchanged.
    /// @param profile changed in place: outliers become (0, 0, 0)
    /// @param halfWidth w, in usable points; 5 to 10 is usual
    /// @param threshold largest difference in z of an agreeing neighbour, exclusive, in length units
    /// @throws std::bad_alloc where memory ends; the profile is unchanged then
    void Outlierdetect1(std::vector<tagKorvaneLaserPoint3d>& profile, const int& halfWidth, const float& threshold);

    /// Clears short runs: cuts the profile where x or z jumps by the threshold or more, and clears the first w - 1
    /// points of every run, so a run of fewer than w points goes entirely.
    ///
    /// Empty points (x = 0) neither join nor end a run. At the start of the profile, a first run at position 0
    /// keeps its first point for w = 2, and a first run after empty points loses one point fewer.
    /// @param profile changed in place: cleared points become (0, 0, 0)
    /// @param halfWidth w, the least number of points of a run
    /// @param threshold smallest jump in x or z, in length units, that ends a run
    /// @throws std::bad_alloc where memory ends; the profile is unchanged then
    void Outlierdetect2(std::vector<tagKorvaneLaserPoint3d>& profile, const int& halfWidth, const float& threshold);

    /// Replaces each height by the median of its neighbourhood: r points before to r after, cut short at the ends, not
    /// recursive.
    ///
    /// The heights pass through single precision; of an even number the upper middle value is taken. Fewer than
    /// 2 r + 1 valid points, or a negative r, leave the profile unchanged.
    /// @param points z is changed in place, x and y never
    /// @param halfWindow r, in valid points
    /// @throws std::bad_alloc where memory ends
    void medianfilter1(std::vector<tagKorvaneLaserPoint3d>& points, const int& halfWindow);
    /// The very same as `medianfilter1`, under a second name.
    /// @param points z is changed in place, x and y never
    /// @param halfWindow r, in valid points
    /// @throws std::bad_alloc where memory ends
    void medianfilter2(std::vector<tagKorvaneLaserPoint3d>& points, const int& halfWindow);

    /// Smooths the heights with a normalised Gaussian of 2 r + 1 taps (sigma = taps / 3), leaving out neighbours whose
    /// height differs by 5.0 length units or more, so that steps stay sharp; not recursive.
    ///
    /// Fewer than 2 r + 1 valid points leave the profile unchanged. A height that is not a number stays so.
    /// @param points z is changed in place, x and y never
    /// @param halfWindow r, in valid points
    /// @throws std::bad_alloc for a negative r, or where 2 r + 1 exceeds an int, before anything is changed; and where
    /// memory ends
    void Gaussianfilter(std::vector<tagKorvaneLaserPoint3d>& points, const int& halfWindow);

    /// Thins a profile to about one point per `step` along x: the mean of the points of each bucket of that width.
    ///
    /// Within a bucket, a height that differs by more than 5.0 length units from the bucket's first starts the bucket
    /// anew, and that point counts twice. Bucket numbers truncate toward zero, so the bucket around x = 0 is twice as
    /// wide. Ten valid points or fewer, or a step not above their mean spacing, are passed through as they are; else
    /// `out` is padded with empty points to the size of `in`. x must grow along the profile: points before the first
    /// one's bucket or beyond the last one's are dropped.
    /// @param in the profile, read only; not the same vector as `out`
    /// @param step bucket width, in length units
    /// @param out replaced
    /// @param count receives the number of meaningful points at the front of `out`
    /// @throws std::length_error "vector too long" where the profile runs toward smaller x by more than a bucket;
    /// std::bad_alloc; `out` and `count` are as they were then
    void Downsample(const std::vector<tagKorvaneLaserPoint3d>& in, const float& step,
                    std::vector<tagKorvaneLaserPoint3d>& out, int& count);

    /// @}
    /// @name Image operations and exposure
    /// @{

    /// Blurs a frame with a separable Gaussian of sigma 1 pixel, with replicated borders.
    ///
    /// Results are truncated, never rounded. The horizontal pass works in place, so its left-hand taps read values that
    /// are filtered already. An even size, or one below 1, leaves `dst` as the copy of `src`.
    /// @param src `Width` x `Height` bytes, read only; must not overlap `dst`
    /// @param dst `Width` x `Height` bytes, written
    /// @param ksize number of taps of the kernel, odd
    /// @throws std::bad_alloc where memory ends
    void GaussianBlur(unsigned char* src, unsigned char* dst, const int& ksize);

    /// Copies the pixels above a threshold; other pixels of `out` stay as they were.
    /// @param threshold a pixel is copied when it is greater
    /// @param out `Width` x `Height` bytes; clear it beforehand for a clean result
    /// @param src `Width` x `Height` bytes, read only
    void Otsu2(const int& threshold, unsigned char* out, unsigned char* src);

    /// Removes a saturated blob that hangs from the top edge, then copies the pixels above half of each column's own
    /// grey range (at least 60), on four threads that are joined before the call returns.
    ///
    /// A column's top run of 30 or more rows above 180 belongs to the blob and is **set to 0 in `src`**. A blob of more
    /// than 100 pixels also masks a band of columns around its centre, which then does not count for the columns' grey
    /// range. The last `Width` mod 4 columns are never thresholded.
    /// @param out `Width` x `Height` bytes; selected pixels are written, others stay as they were
    /// @param labels `Width` x `Height` ints; 1 is written at selected pixels, others stay as they were
    /// @param src `Width` x `Height` bytes; the blob's pixels become 0
    /// @throws std::bad_alloc where memory ends, before anything is changed; std::system_error, or std::bad_alloc,
    /// where the first thread cannot start (`src` has lost its blob then); where a later one cannot start, the process
    /// ends
    void Otsu3(unsigned char* out, int* labels, unsigned char* src);

    /// Merges two exposures of one scene: the first as it is, and in every column of it without a pixel of 255, the
    /// pixels of the second that are 128 or more.
    /// @param first `Width` x `Height` bytes, read only
    /// @param second `Width` x `Height` bytes, read only
    /// @param out `Width` x `Height` bytes, written; must not overlap the inputs
    /// @throws std::bad_alloc where memory ends, before anything is written
    void MergeImg(unsigned char* first, unsigned char* second, unsigned char* out);

    /// Weakens what changes from frame to frame: each pixel is its current value less the absolute change since the
    /// previous frame, at least 0. Runs on two threads that are joined before the call returns.
    ///
    /// The previous frame is **process-wide**, shared by all objects: serialise the calls and feed one camera stream.
    /// The first enabled call, and the first after the pixel count changed or after a call with `enable` false, copies
    /// the frame. With an odd `Height`, the last row of `out` is not written otherwise.
    /// @param current `Width` x `Height` bytes, read only
    /// @param out `Width` x `Height` bytes, written
    /// @param enable false forgets the previous frame and leaves `out` alone
    /// @throws std::bad_alloc where memory ends; std::system_error where a thread cannot start
    void CalcImageBuffer(unsigned char* current, unsigned char* out, const bool& enable);

    /// Proposes the next exposure so that the stripe keeps a target width of bright pixels (206 or more), the mean over
    /// the columns in which it shows.
    ///
    /// Where the exposure changed by 0.01 or more since the previous frame, a straight line of width against exposure
    /// through both frames is solved for the target; else the exposure is stepped. The width counts as right within
    /// 0.2 pixels when more than half of the columns show the stripe. Far from the target a saturated stripe changes
    /// its width little, and the line may ask for the other end of the range: keep the range narrow. The previous frame
    /// and exposure are **process-wide**, shared by all objects: serialise the calls and feed one camera stream.
    /// @param image `Width` x `Height` bytes, read only
    /// @param target wanted bright width, in pixels
    /// @param exposure the exposure with which `image` was taken, in the caller's unit
    /// @param minExposure smallest proposal
    /// @param maxExposure largest proposal
    /// @param step fixed adjustment, in the caller's unit
    /// @param enable false forgets the previous frame, not the previous exposure
    /// @param newExposure receives the proposal, only where the result is true; may be the `exposure` variable
    /// @returns true where there is a proposal; false for a first frame, and where no line can be fitted
    /// @throws std::bad_alloc where memory ends; the previous frame and exposure are as they were then
    bool AutoExposure(unsigned char* image, const double& target, const double& exposure, const double& minExposure,
                      const double& maxExposure, const double& step, const bool& enable, double& newExposure);

    /// @}

private:
    AlgoContext* context_;  ///< the object's settings, owned
};

}  // namespace KORVANELASERALGO

#endif  // KORVANELASERALGO_H
