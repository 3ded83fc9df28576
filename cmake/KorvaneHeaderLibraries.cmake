# korvane_find_header_library: a library that consists of headers only, as find_package finds it. A cross-compiler takes
# those of the build machine, one by one: whatever else lies beside them there is not for its target.

# korvane_find_header_library(PACKAGE TARGET FOLDER HEADER), with FOLDER below a folder of headers and HEADER in it
macro(korvane_find_header_library package target folder header)
  if(NOT CMAKE_CROSSCOMPILING)
    find_package(${package} CONFIG REQUIRED)
  elseif(NOT TARGET ${target})
    find_path(KORVANE_${package}_HEADERS ${folder}/${header} PATHS /usr/include /usr/include/eigen3
      NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/headers/${package})
    file(CREATE_LINK ${KORVANE_${package}_HEADERS}/${folder} ${PROJECT_BINARY_DIR}/headers/${package}/${folder} SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} INTERFACE ${PROJECT_BINARY_DIR}/headers/${package})
  endif()
endmacro()
