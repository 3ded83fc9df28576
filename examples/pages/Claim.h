/// @file Claim.h
/// @brief How the code in the pages of docs/ says what comes out.

#ifndef KORVANE_EXAMPLES_PAGES_CLAIM_H
#define KORVANE_EXAMPLES_PAGES_CLAIM_H

#include <cstdio>
#include <cstdlib>

/// Ends the program with status 1, quoting the condition, where the page says something that is not so.
#define claim(...) pages::endUnless((__VA_ARGS__), #__VA_ARGS__, __FILE__, __LINE__)

namespace pages {

inline void endUnless(bool holds, const char* condition, const char* file, int line) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::exit(1);
}

}  // namespace pages

#endif  // KORVANE_EXAMPLES_PAGES_CLAIM_H
