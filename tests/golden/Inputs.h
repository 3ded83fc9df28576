// What every method is given: frames of the simulated sensor, and points and profiles made from their truth. All of it
// comes from + - * / and square roots, so it is the same bits everywhere, and no method's result is another's input.

#ifndef KORVANE_TESTS_GOLDEN_INPUTS_H
#define KORVANE_TESTS_GOLDEN_INPUTS_H

#include <memory>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "scenes/SimulatedSensor.h"

namespace golden {

using Bytes = std::vector<unsigned char>;
using Numbers = std::vector<double>;
using Points2d = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint2d>;
using Profile = std::vector<KORVANELASERALGO::tagKorvaneLaserPoint3d>;

/// One view of a scene.
struct View {
    scenes::Sensor sensor;
    Bytes pixels;
    Bytes longer;                  ///< the same at a longer exposure
    Bytes blob;                    ///< with a saturated blob that hangs from the top edge
    std::unique_ptr<bool[]> mask;  ///< the columns that show the stripe
    Points2d points;               ///< the stripe's centres with noise, full-sensor pixels; the offsets elsewhere
    Profile profile;               ///< the surface with noise, outliers and gaps, mm
};

/// Frames of one moving part under changing light, of one size.
struct Sequence {
    scenes::Sensor sensor;
    struct Frame {
        Bytes pixels;
        double exposure;
    };
    std::vector<Frame> frames;
};

struct Inputs {
    std::vector<View> views;
    std::vector<Sequence> sequences;
    std::vector<Numbers> planes;  ///< c0, c1, c2 of Z = c0 + c1 X + c2 Y; CalRT ends the process for none of them
};

Inputs makeInputs();

}  // namespace golden

#endif  // KORVANE_TESTS_GOLDEN_INPUTS_H
