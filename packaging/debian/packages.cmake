# The Debian packages. They are for /usr: configure with -DCMAKE_INSTALL_PREFIX=/usr, then run cpack.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  return()
endif()

set(runtime_package libqtr-orvex${PROJECT_VERSION_MAJOR})
set(dev_package libqtr-orvex-dev)
set(tools_package orvex-tools)
set(python_package python3-orvex)
set(debian_version ${PROJECT_VERSION}-1)
set(ORVEX_MAINTAINER "The libqtr_orvex developers <qtr-orvex@example.org>"
    CACHE STRING "The maintainer whom the Debian packages name")
set(CPACK_PACKAGE_CONTACT ${ORVEX_MAINTAINER})
set(control ${CMAKE_CURRENT_BINARY_DIR}/debian)
set(documents ${CMAKE_INSTALL_DATADIR}/doc)

# What Debian wants beside the files. Whoever installs from the sources gets none of it.
foreach(component IN ITEMS runtime dev tools python)
  install(FILES debian/copyright DESTINATION ${documents}/${${component}_package}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${documents}/${${component}_package}
          COMPONENT ${component} EXCLUDE_FROM_ALL RENAME changelog)
  install(FILES ${control}/changelog.Debian DESTINATION ${documents}/${${component}_package}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/examples/first_light.c
              ${PROJECT_SOURCE_DIR}/examples/light_tour.c
        DESTINATION ${documents}/${dev_package}/examples COMPONENT dev EXCLUDE_FROM_ALL)

# The day of this version is that of its entry in CHANGELOG.md.
string(REPLACE "." "\\." version_pattern ${PROJECT_VERSION})
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md entry REGEX "^## \\[${version_pattern}\\] - ")
if(NOT entry MATCHES "[0-9]+-[0-9]+-[0-9]+$")
  message(FATAL_ERROR "CHANGELOG.md has no entry \"## [${PROJECT_VERSION}] - DATE\"")
endif()
execute_process(
  COMMAND date --utc --rfc-email --date=${CMAKE_MATCH_0}
  OUTPUT_VARIABLE release_day
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(debian/changelog.in ${control}/changelog.Debian @ONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qtr-orvex)
set(CPACK_PACKAGE_VENDOR "The libqtr_orvex developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # Each package has its own.
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_COMPONENTS_ALL runtime dev tools python)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
                                                GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

set(about
    "Orvex light sources are lamps with a shutter and multi-LED sources with up
to 16 channels, for microscopes and test benches, on USB serial ports.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS udev)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_SOURCE_DIR}/debian/runtime/postinst
    ${CMAKE_CURRENT_SOURCE_DIR}/debian/runtime/postrm
    ${CMAKE_CURRENT_SOURCE_DIR}/debian/runtime/triggers ${control}/symbols)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "control of Orvex light sources (library)
${about}
The library finds them, opens them, sends commands, and reads and writes
their whole state.

This package holds the shared library and the udev rules, which let the user
at the machine and the group dialout use the ports.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME ${dev_package})
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${runtime_package} (= ${debian_version})")
set(CPACK_COMPONENT_DEV_DESCRIPTION "control of Orvex light sources (development files)
${about}
The library finds them, opens them, sends commands, and reads and writes
their whole state.

This package holds what programs are compiled with: the headers for C and C++,
files for pkg-config and CMake, a manual page, and examples.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${tools_package})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${runtime_package} (= ${debian_version})")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "control of Orvex light sources (programs)
${about}

orvexctl finds, describes and controls them, from scripts or interactively,
and tells why one is not found or does not answer. orvex-sim runs any program
beside simulated light sources, so that it can be tried and tested without a
device.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME ${python_package})
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3:any (>= 3.9), ${runtime_package} (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_SOURCE_DIR}/debian/python/postinst
    ${CMAKE_CURRENT_SOURCE_DIR}/debian/python/prerm)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "control of Orvex light sources (Python 3)
${about}

This package lets Python programs find, open and control them.")

configure_file(debian/stage.cmake.in ${control}/stage.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${control}/stage.cmake)
include(CPack)
