/// @file Failure.h
/// @brief The one way in which an example gives up.

#ifndef KORVANE_EXAMPLES_FAILURE_H
#define KORVANE_EXAMPLES_FAILURE_H

#include <stdexcept>

namespace examples {

/// Something outside the program is not as it should be. The text is one line that names the file or the argument and
/// the reason; `main` prints it and exits with status 2.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace examples

#endif  // KORVANE_EXAMPLES_FAILURE_H
