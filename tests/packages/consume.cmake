# Configures, builds and runs the consumer in an empty folder.
#   cmake -D SOURCE=... -D FOLDER=... -D GENERATOR=... -D CACHE=FILE -D CONFIG=... -P consume.cmake -- [-D ...]
# CACHE sets the compiler and the like; what follows -- goes to the consumer's configuration.

cmake_minimum_required(VERSION 3.25)

set(arguments "")
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE 1 ${last})
  if(separated)
    list(APPEND arguments ${CMAKE_ARGV${i}})
  elseif(CMAKE_ARGV${i} STREQUAL "--")
    set(separated ON)
  endif()
endforeach()

file(REMOVE_RECURSE ${FOLDER})
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER} -G ${GENERATOR} -C ${CACHE} ${arguments}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${FOLDER} --config ${CONFIG} --parallel 2 COMMAND_ERROR_IS_FATAL ANY)
unset(ENV{WINEPATH})
execute_process(COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${FOLDER} -C ${CONFIG} --verbose --no-tests=error
  COMMAND_ERROR_IS_FATAL ANY)
