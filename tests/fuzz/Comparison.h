// Compares results bit for bit, and words what is needed to repeat a difference.

#ifndef KORVANE_TESTS_FUZZ_COMPARISON_H
#define KORVANE_TESTS_FUZZ_COMPARISON_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "KorvaneLaserAlgo.h"
#include "fuzz/FuzzInput.h"

namespace fuzz {

using Point2d = KORVANELASERALGO::tagKorvaneLaserPoint2d;
using Point3d = KORVANELASERALGO::tagKorvaneLaserPoint3d;
using Points2d = std::vector<Point2d>;
using Profile = std::vector<Point3d>;
using Numbers = std::vector<double>;

/// C++ initialisers.
std::string show(int value);
std::string show(unsigned char value);
std::string show(double value);
std::string show(const std::string& value);
std::string show(const Point2d& point);
std::string show(const Point3d& point);
std::string show(const KORVANELASERALGO::tagKorvaneLaserAlgoROIInfo& roi);
std::string show(const KORVANELASERALGO::tagKorvaneLaserAlgoCalibrationInfo& calibration);
std::string show(const KORVANELASERALGO::tagKorvaneLaserAlgoLineSelectInfo& lineSelect);

template <class T>
std::string show(const std::vector<T>& values) {
    constexpr std::size_t kPerLine = 16;
    std::string text = "{";
    for (std::size_t i = 0; i < values.size(); ++i)
        text += (i == 0 ? "" : i % kPerLine == 0 ? ",\n    " : ", ") + show(values[i]);
    return text + "}";
}

/// The same bits; any not-a-number equals any other, +0.0 and -0.0 differ.
bool same(double a, double b);
bool same(const Point2d& a, const Point2d& b);
bool same(const Point3d& a, const Point3d& b);
template <class T>
bool same(const T& a, const T& b) {
    return a == b;
}

/// The comparison of one case. While it lives, the process must not end: should a method end it, with status 0 even,
/// the case is printed and the process aborts.
class Comparison {
public:
    /// @param check name of the check function, which repeats the case from its bytes
    Comparison(const char* check, const unsigned char* data, std::size_t size);
    ~Comparison();

    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    /// Keeps a value for the report; a later one of the same name replaces it.
    template <class T>
    void remember(const char* declaration, const T& value) {
        if (!differs()) rememberText(declaration, [value] { return show(value); });
    }

    /// Notes the first difference of the case.
    template <class T>
    void equal(const char* what, const T& twin, const T& library) {
        if (!differs() && !same(twin, library))
            difference_ = std::string(what) + ": the twin has " + show(twin) + ", the library " + show(library);
    }
    template <class T>
    void equal(const char* what, const std::vector<T>& twin, const std::vector<T>& library) {
        if (twin.size() != library.size())
            return equal((what + std::string(" size")).c_str(), std::to_string(twin.size()),
                         std::to_string(library.size()));
        for (std::size_t i = 0; i < twin.size() && !differs(); ++i) {
            if (!same(twin[i], library[i]))
                equal((std::string(what) + '[' + std::to_string(i) + ']').c_str(), twin[i], library[i]);
        }
    }
    void holds(const char* what, bool condition) { equal(what, 1, condition ? 1 : 0); }

    bool differs() const { return !difference_.empty(); }

    /// Empty, or the difference and the case.
    std::string report() const;

private:
    struct Memory {
        std::string declaration;
        std::function<std::string()> value;  // worded only where it is printed
    };

    void rememberText(const char* declaration, std::function<std::string()> value);
    std::string describeCase() const;
    static void failUnlessFinished();

    const char* check_;
    Bytes input_;
    std::vector<Memory> memories_;
    std::string difference_;
};

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_COMPARISON_H
