// One call of every method, as rows of a table: what goes in, the call, and what it promises where memory ends and
// where several threads call. All rows work with the same settings.

#ifndef KORVANE_TESTS_FAULTS_CALLS_H
#define KORVANE_TESTS_FAULTS_CALLS_H

#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "support/Support.h"

namespace faults {

using support::KorvaneLaserAlgo;
using Bits = std::vector<unsigned char>;

enum class Scene {
    kOneStripe,     ///< a clean stripe
    kManyStripes,   ///< several runs per column, long runs with humps, a blob at the top edge
    kBrightStripe,  ///< the clean stripe, wider
};

/// Whatever a method takes or returns, filled with input for all of them. A copy of its own for every call.
struct Arguments {
    explicit Arguments(Scene scene);

    /// Everything, bit for bit.
    Bits bits();
    bool guardsIntact() const;

    support::Image image;
    support::Image second;  // another exposure of the scene
    support::Image out;
    support::GuardedBuffer<int> labels;
    support::GuardedBuffer<bool> mask;
    support::Points2d points;    // empty: what extraction returns
    support::Points2d points2d;  // one per column: what calibration takes
    support::Profile points3d;   // empty: what calibration returns
    support::Profile profile;    // what filters take
    support::Profile thinned;
    std::vector<double> sampleXs;
    std::vector<double> sampleYs;
    std::vector<double> coefficients;
    support::GuardedBuffer<double> plane;
    support::GuardedBuffer<double> rt;
    std::string text;
    double number = -7.0;
    int count = -7;
};

/// Whether a call allocates. A row with kNone says so on purpose: a buffer that its method gains shows there.
enum class Memory {
    kNone,
    kWorkingBuffers,
    kBuffersThenThreads,  ///< once the first of its threads has started, a failure ends the process
};

/// What a call that ends with std::bad_alloc leaves behind.
enum class AfterFailure {
    kAnyOutputs,          ///< outputs may be written in part, the process-wide records are as they were
    kUnchanged,           ///< arguments and process-wide records are as they were
    kAnyOutputsAndRecord  ///< outputs and process-wide record may be written in part
};

/// Who may run the call at the same time.
enum class Sharing {
    kDifferentObjects,  ///< threads with objects of their own
    kSameObject,        ///< threads that share an object too
    kStabilisation,     ///< one thread at a time: the process-wide record of CalcImageBuffer
    kExposure,          ///< one thread at a time: the process-wide record of AutoExposure
};

struct Call {
    std::string name;
    Scene scene;
    Memory memory;
    AfterFailure afterFailure;
    Sharing sharing;
    void (*call)(KorvaneLaserAlgo& algo, Arguments& arguments);
    void (*prepare)(KorvaneLaserAlgo& algo) = [](KorvaneLaserAlgo&) {};  // brings a process-wide record into a state
};

/// Every public method, some with several inputs.
const std::vector<Call>& allCalls();

/// For the name of a parameterised test, and its messages.
std::string nameOf(const testing::TestParamInfo<Call>& info);
void PrintTo(const Call& call, std::ostream* stream);

/// Gives the object the settings of the rows.
void configure(KorvaneLaserAlgo& algo);

/// The results of an undisturbed call, on an object of its own.
Bits undisturbed(const Call& call);

}  // namespace faults

#endif  // KORVANE_TESTS_FAULTS_CALLS_H
