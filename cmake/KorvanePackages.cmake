# What cpack makes of the installed files: Debian packages, one for each component, and archives with all of them.
# scripts/make-packages calls it with the right settings.

set(KORVANE_PACKAGE_MAINTAINER "KorvaneLaserAlgoSDK maintainers <maintainers@korvane.example>" CACHE STRING
  "Who is named in packages: Name <address>")

set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VENDOR Korvane)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(KORVANE_BUILD_EXAMPLES)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# ---- Debian ----

# The summary goes before.
set(about "From 8-bit frames of a laser stripe to 3D profiles: stripe extraction, lens
undistortion, conversion by a calibrated light surface, profile filters.")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE korvanelaseralgosdk)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${KORVANE_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")  # a host's package does with every later library of the same name
set(debianVersion ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(runtimePackage libkorvanelaseralgosdk${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtimePackage})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${about}

This package has the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkorvanelaseralgosdk-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtimePackage} (= ${debianVersion})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${about}

This package has the header, the static library, and the files for CMake and
pkg-config.")

# PLplot loads the driver that draws pictures while it runs.
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME korvanelaseralgosdk-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtimePackage} (= ${debianVersion})")
if(KORVANE_HOST_PICTURES)
  string(APPEND CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS ", plplot-driver-cairo")
endif()
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${about}

This package has korvane-host, which measures recorded or simulated frames,
and korvane-calibrate, which calibrates the light surface of a simulated
sensor.")

set(KORVANE_DEBIAN_CHANGELOG "" CACHE FILEPATH "Changelog in Debian's form, for the packages")
set(CPACK_KORVANE_DEBIAN_CHANGELOG ${KORVANE_DEBIAN_CHANGELOG})
set(CPACK_KORVANE_DEBIAN_OVERRIDES ${CMAKE_CURRENT_LIST_DIR}/debian/lintian-overrides)  # .all, .runtime
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianFiles.cmake)

include(CPack)
