# The C++ headers as they are installed, below qtr_orvex/ in their own folders. In the sources they
# include each other from the root of the project; installed they do so relative to themselves, so
# that an application's own log/log.h is never taken for the library's.
set(cxx_headers
    api/device_registry.h
    api/driver_exception.h
    device/light_device.h
    device/models.h
    discovery/device_list.h
    discovery/port_discovery.h
    log/export.h
    log/hexstring.h
    log/log.h
    log/logger.h
    serial/serial_link.h)

set(installed_headers ${CMAKE_CURRENT_BINARY_DIR}/include)
file(REMOVE_RECURSE ${installed_headers})
foreach(header IN LISTS cxx_headers)
  file(READ ${PROJECT_SOURCE_DIR}/${header} text)
  string(REPLACE "#include \"include/qtr_orvex.h\"" "#include \"../../qtr_orvex.h\"" text "${text}")
  string(REGEX REPLACE "#include \"([a-z]+/)" "#include \"../\\1" text "${text}")
  file(WRITE ${installed_headers}/qtr_orvex/${header} "${text}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
endforeach()
