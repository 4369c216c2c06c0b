# Finds libnettle, which brings no file for CMake: the target nettle::nettle.

find_path(nettle_INCLUDE_DIR nettle/sha2.h DOC "Headers of libnettle")
find_library(nettle_LIBRARY nettle DOC "libnettle")
mark_as_advanced(nettle_INCLUDE_DIR nettle_LIBRARY)

if(nettle_INCLUDE_DIR)
  file(STRINGS ${nettle_INCLUDE_DIR}/nettle/version.h parts REGEX "^#define NETTLE_VERSION_(MAJOR|MINOR) +[0-9]+")
  list(TRANSFORM parts REPLACE "^#define NETTLE_VERSION_[A-Z]+ +([0-9]+).*" "\\1")
  list(JOIN parts . nettle_VERSION)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(nettle REQUIRED_VARS nettle_LIBRARY nettle_INCLUDE_DIR VERSION_VAR nettle_VERSION)

if(nettle_FOUND AND NOT TARGET nettle::nettle)
  add_library(nettle::nettle UNKNOWN IMPORTED GLOBAL)
  set_target_properties(nettle::nettle PROPERTIES IMPORTED_LOCATION ${nettle_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${nettle_INCLUDE_DIR})
endif()
