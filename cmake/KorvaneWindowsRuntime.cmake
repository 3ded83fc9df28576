# Windows looks for dynamic libraries in the folder of the program, so all programs and libraries of a build go to one
# folder, and the compiler's runtime libraries stand there too. Host and library must share them: an exception that
# crosses the boundary between two copies of the runtime is never over for the host (docs/windows.md). Where another
# project has chosen a folder for programs, it stays.
#
# Sets KORVANE_RUNTIME_LIBRARIES, the files that belong beside the library wherever it goes.

set(runtimeFolder ${PROJECT_BINARY_DIR}/bin)
if(NOT DEFINED CMAKE_RUNTIME_OUTPUT_DIRECTORY)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${runtimeFolder})
endif()
set(KORVANE_RUNTIME_LIBRARIES "")

if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  get_filename_component(compilerFolder ${CMAKE_CXX_COMPILER} DIRECTORY)
  foreach(name libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT IS_ABSOLUTE "${file}")
      set(file ${compilerFolder}/${name})
    endif()
    # Without what only a debugger reads: 2 MB instead of 24 for the greatest of them.
    set(besideTheLibrary ${runtimeFolder}/${name})
    file(MAKE_DIRECTORY ${runtimeFolder})
    execute_process(COMMAND ${CMAKE_STRIP} -o ${besideTheLibrary} ${file} COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND KORVANE_RUNTIME_LIBRARIES ${besideTheLibrary})
  endforeach()
endif()
