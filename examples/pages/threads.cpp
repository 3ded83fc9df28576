// The code of docs/threads.md: what belongs to an object, and what to the process.

#include <cstddef>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "pages/Claim.h"
#include "pages/Inputs.h"

using namespace KORVANELASERALGO;
using namespace pages;

namespace {

void previousFrame() {
    // [previous-frame]
    Sized left(1, 2);
    Sized right(1, 2);
    Image bright{200, 200};
    Image dark{120, 120};
    Image out(2);
    left->CalcImageBuffer(bright.data(), out.data(), false);  // forgets the process's previous frame
    left->CalcImageBuffer(bright.data(), out.data(), true);   // the first one is copied
    right->CalcImageBuffer(dark.data(), out.data(), true);    // another object, but not its first frame:
    claim(out[0] == 40);                                      // 120 - |120 - 200|
    // [/previous-frame]
}

void previousExposure() {
    // [previous-exposure]
    Sized algo(4, 8);
    Frame frame(4, 8);
    frame.line(3, 255).line(4, 255).line(5, 255);  // bright width 3, target 5
    double next = 0.0;
    const auto propose = [&](double exposure, bool enable) {
        return algo->AutoExposure(frame.data(), 5.0, exposure, 0.1, 100.0, 0.5, enable, next);
    };
    claim(!propose(10.0, false));                // forgets the previous frame
    claim(!propose(10.0, true));                 // first frame: no proposal
    claim(propose(10.0, true) && next == 10.5);  // the same exposure: one step up
    claim(!propose(20.0, true));                 // another exposure, the same width: no line, no proposal
    // [/previous-exposure]
}

}  // namespace

int main() {
    previousFrame();
    previousExposure();
}
