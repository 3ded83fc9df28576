# korvane_options: what every target of the project is compiled with.

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

add_library(korvane_options INTERFACE)
target_compile_features(korvane_options INTERFACE cxx_std_20)

if(WIN32)
  target_compile_definitions(korvane_options INTERFACE NOMINMAX)  # its headers have macros named min and max otherwise
endif()
if(MSVC)
  target_compile_options(korvane_options INTERFACE /W4 /permissive- /utf-8 /fp:precise)
  target_compile_definitions(korvane_options INTERFACE _CRT_SECURE_NO_WARNINGS)  # of functions of the standard library
  if(KORVANE_WARNINGS_AS_ERRORS)
    target_compile_options(korvane_options INTERFACE /WX)
  endif()
else()
  # The same bits on every processor: a fused multiply-add rounds once where the rule rounds twice.
  target_compile_options(korvane_options INTERFACE -ffp-contract=off)
  # GCC 12 fuses even so where vectorised products meet + and - in turn. Where the flags ask for a processor that can,
  # GCC is not told.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    include(CheckCXXSourceCompiles)
    check_cxx_source_compiles("
      #if !defined(__FMA__) && !defined(__FMA4__) && !defined(__AVX512F__)
      #error no fused multiply-add
      #endif
      int main() {}" KORVANE_PROCESSOR_FUSES)
    if(KORVANE_PROCESSOR_FUSES)
      target_compile_options(korvane_options INTERFACE -mno-fma -mno-fma4 -mno-avx512f)
    endif()
  endif()
  # GCC takes the stack of Windows, aligned to 16 bytes, for one that is aligned to values of 32 and 64 bytes. (Debian's
  # own does not any more.) Moves that do not ask for alignment cost no more.
  if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(korvane_options INTERFACE -Wa,-muse-unaligned-vector-move)
  endif()
  target_compile_options(korvane_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wdouble-promotion)
  if(KORVANE_WARNINGS_AS_ERRORS)
    target_compile_options(korvane_options INTERFACE -Werror)
  endif()
endif()
