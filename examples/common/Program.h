/// @file Program.h
/// @brief What every example program does alike: the command line, and one line and status 2 for bad input.

#ifndef KORVANE_EXAMPLES_PROGRAM_H
#define KORVANE_EXAMPLES_PROGRAM_H

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace examples {

/// The version text of the library.
std::string libraryVersion();

/// A check of a number's size that not-a-number does not pass.
CLI::Validator within(double least, double most);

/// The body of `main`: describes the command line, parses it and does the work. What goes wrong ends in one line on the
/// standard error stream.
/// @returns the exit status: 0, or 2 where something went wrong
int runProgram(const char* name, const char* description, int argc, char** argv,
               const std::function<void(CLI::App&)>& describe, const std::function<void()>& work);

}  // namespace examples

#endif  // KORVANE_EXAMPLES_PROGRAM_H
