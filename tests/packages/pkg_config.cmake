# Compiles the consumer as C++11 with what pkg-config says, and runs it.
#   cmake -D COMPILER=... -D PKG_CONFIG=... -D SOURCE=FILE -D PROGRAM=FILE -D PREFIX=... -D LIBRARIES=lib [-D STATIC=ON]
#     [-D EMULATOR=...] -P pkg_config.cmake

set(ENV{PKG_CONFIG_LIBDIR} ${PREFIX}/${LIBRARIES}/pkgconfig)
if(STATIC)
  set(static --static)
  set(link -static)
endif()
execute_process(COMMAND ${PKG_CONFIG} ${static} --cflags --libs "KorvaneLaserAlgoSDK >= 0.0.1"
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY COMMAND_ECHO STDOUT)
message(STATUS "${flags}")
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${COMPILER} -std=c++11 -Wall -Wextra -Werror ${SOURCE} ${link} ${flags} -o ${PROGRAM}
  COMMAND_ERROR_IS_FATAL ANY COMMAND_ECHO STDOUT)

# The static one must run without the library.
if(NOT STATIC)
  set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBRARIES})
  set(ENV{WINEPATH} ${PREFIX}/bin)
endif()
execute_process(COMMAND ${EMULATOR} ${PROGRAM} COMMAND_ERROR_IS_FATAL ANY)
