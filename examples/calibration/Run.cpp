#include "calibration/Run.h"

#include <string>
#include <system_error>

#include "calibration/CalibrationRecord.h"
#include "common/Failure.h"
#if KORVANE_HOST_PICTURES
#include "calibration/ResidualPicture.h"
#include "common/Png.h"
#endif
#include "scenes/SimulatedSensor.h"

namespace calibration {
namespace {

using examples::Failure;
namespace fs = std::filesystem;

/// Everything has been computed by now. Each file is complete or not there; the settings, which count, come last.
void writeResults(const Options& options, const scenes::Sensor& sensor, const Result& result) {
    if (options.output.empty()) throw Failure("the output folder has no name");
    std::error_code refused;
    const bool isNew = fs::create_directories(options.output, refused);
    if (refused) throw Failure(options.output.string() + ": cannot be made an output folder: " + refused.message());
    try {
#if KORVANE_HOST_PICTURES
        examples::writePng(options.output / "residuals.png", drawResiduals(result));
#endif
        writeSettingsFile(options.output / "calibration.json", sensor.roi, result.record, result.surface.form,
                          options.plan.method);
    } catch (const Failure&) {
        if (isNew) fs::remove_all(options.output, refused);
        throw;
    }
}

}  // namespace

Result runCalibration(const Options& options) {
    const scenes::Sensor sensor = options.curvedSheet ? scenes::curvedSheetSensor() : scenes::standardSensor();
    Result result{};

    // Views of the plate, points of the light sheet, the surface through them.
    const std::vector<TargetView> views = takeViews(sensor, options.plan);
    result.surface = fitLightSurface(sheetPoints(views, sensor.calibration), options.form());

    // The record that the library measures with, and the true one, whose transform comes from CalRT as well.
    result.record = makeRecord(sensor.calibration, result.surface);
    result.truth = sensor.calibration;
    fillTransform(result.truth);

    // How good it is.
    const std::string conversion = conversionFor(options.form());
    const std::string trueConversion =
        conversionFor(options.curvedSheet ? SurfaceForm::secondOrder : SurfaceForm::plane);
    result.field = assessField(sensor, result.record, conversion, views);
    result.gaugeBlock = measureGaugeBlock(sensor, result.record, conversion, options.plan.method, options.plan.seed);
    result.gaugeBlockWithTruth =
        measureGaugeBlock(sensor, result.truth, trueConversion, options.plan.method, options.plan.seed);

    writeResults(options, sensor, result);
    return result;
}

}  // namespace calibration
