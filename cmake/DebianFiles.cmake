# cpack runs this between the installation and the packages: it adds what only a Debian package has, the changelog and the
# reasons for what lintian would object to, and compresses the manual.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)

  if(CPACK_KORVANE_DEBIAN_CHANGELOG)
    configure_file(${CPACK_KORVANE_DEBIAN_CHANGELOG} ${share}/doc/${package}/changelog.Debian COPYONLY)
  endif()
  file(MAKE_DIRECTORY ${share}/lintian/overrides)
  foreach(overrides ${CPACK_KORVANE_DEBIAN_OVERRIDES}.all ${CPACK_KORVANE_DEBIAN_OVERRIDES}.${component})
    if(EXISTS ${overrides})
      file(READ ${overrides} text)
      file(APPEND ${share}/lintian/overrides/${package} "${text}")
    endif()
  endforeach()

  file(GLOB_RECURSE compressed ${share}/man/* ${share}/doc/*/changelog*)
  foreach(file ${compressed})
    execute_process(COMMAND gzip --best --no-name ${file} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  # Folders that this script made.
  execute_process(COMMAND chmod -R u=rwX,go=rX ${share} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
