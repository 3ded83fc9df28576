# Builds for Linux on ARM64, and runs what it has built under an emulator: Debian's packages g++-aarch64-linux-gnu and
# qemu-user.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The shared C library is in the compiler's package. Under the emulator, programs are many times slower and cannot start
# others like themselves.
find_program(KORVANE_QEMU NAMES qemu-aarch64 qemu-aarch64-static DOC "Runs the tests of a build for ARM64")
if(KORVANE_QEMU)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${KORVANE_QEMU} -L /usr/aarch64-linux-gnu)
  set(KORVANE_EMULATED_PROCESSOR ON)
endif()
