/// @file Floors.h
/// @brief What the machine takes at the least: reading, copying, starting threads.

#ifndef KORVANE_BENCH_FLOORS_H
#define KORVANE_BENCH_FLOORS_H

#include <cstddef>

namespace bench {

/// Reads bytes once, in order, in lanes of 64 bytes and with the widest registers that the processor has.
void readOnce(const void* bytes, std::size_t count);
void copyOnce(void* to, const void* from, std::size_t count);
/// Starts threads that do nothing, and joins them.
void startAndJoin(int threads);

}  // namespace bench

#endif  // KORVANE_BENCH_FLOORS_H
