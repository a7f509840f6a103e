# find_package(qtr_orvex) defines the target qtr_orvex::qtr_orvex.
include("${CMAKE_CURRENT_LIST_DIR}/qtr_orvexTargets.cmake")

# The C++ headers need C++17; a project in plain C knows no such thing.
get_property(qtr_orvex_languages GLOBAL PROPERTY ENABLED_LANGUAGES)
if("CXX" IN_LIST qtr_orvex_languages)
  set_property(
    TARGET qtr_orvex::qtr_orvex
    APPEND
    PROPERTY INTERFACE_COMPILE_FEATURES cxx_std_17)
endif()
unset(qtr_orvex_languages)
