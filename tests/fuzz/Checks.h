// One check per room of the library: a byte string becomes settings, frames and profiles, the library and its plain
// twin work on them, and every bit of the results is compared.

#ifndef KORVANE_TESTS_FUZZ_CHECKS_H
#define KORVANE_TESTS_FUZZ_CHECKS_H

#include <cstddef>
#include <string>

namespace fuzz {

/// Each returns an empty text, or the first difference with all that is needed to repeat it, as C++ initialisers.
std::string checkExtraction(const unsigned char* data, std::size_t size);
std::string checkCalibration(const unsigned char* data, std::size_t size);
std::string checkProfile(const unsigned char* data, std::size_t size);
std::string checkImage(const unsigned char* data, std::size_t size);
std::string checkChain(const unsigned char* data, std::size_t size);

using Check = std::string (*)(const unsigned char* data, std::size_t size);

struct Room {
    const char* name;
    Check check;
    int casesInTests;  ///< a bit more than one second in a release build
};

inline constexpr Room kRooms[] = {{"extraction", checkExtraction, 8000},
                                  {"calibration", checkCalibration, 60000},
                                  {"profile", checkProfile, 25000},
                                  {"image", checkImage, 4000},
                                  {"chain", checkChain, 1800}};

}  // namespace fuzz

#endif  // KORVANE_TESTS_FUZZ_CHECKS_H
