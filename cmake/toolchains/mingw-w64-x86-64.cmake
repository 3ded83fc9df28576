# Builds for 64-bit Windows with MinGW-w64, and runs what it has built under Wine: Debian's packages
# g++-mingw-w64-x86-64-posix and wine64. The compiler is the one with POSIX threads, because it has std::thread.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Wine with settings of its own in the build folder, no messages and no window.
find_program(KORVANE_WINE NAMES wine64 wine PATHS /usr/lib/wine DOC "Runs the tests of a build for Windows")
if(KORVANE_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR
    env WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml= WINEPREFIX=${CMAKE_BINARY_DIR}/wine ${KORVANE_WINE})
endif()
