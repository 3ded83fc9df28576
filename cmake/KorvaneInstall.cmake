# What `cmake --install` puts into a prefix, which may be moved afterwards: no file of it names the prefix or this
# machine. Three components: runtime (what a host needs to run), development, tools.

include(CMakePackageConfigHelpers)

set(configFolder ${CMAKE_INSTALL_LIBDIR}/cmake/KorvaneLaserAlgoSDK)

# ---- the libraries and the header ----

set(libraries KorvaneLaserAlgoSDK)
if(KORVANE_SHARED)
  list(APPEND libraries korvane_static)
endif()
install(TARGETS ${libraries} EXPORT KorvaneLaserAlgoSDKTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(FILES ${KORVANE_RUNTIME_LIBRARIES}  # of the compiler, on Windows
  DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(FILES ${PROJECT_SOURCE_DIR}/include/KorvaneLaserAlgo.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# ---- for find_package ----

install(EXPORT KorvaneLaserAlgoSDKTargets NAMESPACE KorvaneLaserAlgoSDK::
  DESTINATION ${configFolder} COMPONENT development)
set(runtimeNames "")
foreach(file ${KORVANE_RUNTIME_LIBRARIES})
  get_filename_component(name ${file} NAME)
  string(APPEND runtimeNames " ${name}")
endforeach()
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/KorvaneLaserAlgoSDKConfig.cmake.in ${PROJECT_BINARY_DIR}/KorvaneLaserAlgoSDKConfig.cmake
  INSTALL_DESTINATION ${configFolder} PATH_VARS CMAKE_INSTALL_BINDIR NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/KorvaneLaserAlgoSDKConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES
    ${PROJECT_BINARY_DIR}/KorvaneLaserAlgoSDKConfig.cmake
    ${PROJECT_BINARY_DIR}/KorvaneLaserAlgoSDKConfigVersion.cmake
  DESTINATION ${configFolder} COMPONENT development)

# ---- for pkg-config ----

set(packageFolder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH packageToPrefix /prefix/${packageFolder} /prefix)
string(REGEX REPLACE "/$" "" packageToPrefix ${packageToPrefix})
if(KORVANE_SHARED)
  set(packageFlags "Cflags.private: -DKORVANELASERALGO_STATIC\nLibs.private: -pthread")
else()
  set(packageDefinition " -DKORVANELASERALGO_STATIC")
  set(packageThreads " -pthread")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/KorvaneLaserAlgoSDK.pc.in KorvaneLaserAlgoSDK.pc.in @ONLY)
set(packageFile ${PROJECT_BINARY_DIR}/$<CONFIG>/KorvaneLaserAlgoSDK.pc)
file(GENERATE OUTPUT ${packageFile} INPUT ${PROJECT_BINARY_DIR}/KorvaneLaserAlgoSDK.pc.in)
install(FILES ${packageFile} DESTINATION ${packageFolder} COMPONENT development)

# ---- the tools ----

if(KORVANE_BUILD_EXAMPLES)
  install(TARGETS korvane-host korvane-calibrate
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/korvane-host.1 ${PROJECT_SOURCE_DIR}/docs/man/korvane-calibrate.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  # They find the library of their own prefix, wherever that is.
  if(UNIX AND NOT APPLE)
    file(RELATIVE_PATH programsToLibraries /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(korvane-host korvane-calibrate PROPERTIES INSTALL_RPATH $ORIGIN/${programsToLibraries})
  endif()
endif()
