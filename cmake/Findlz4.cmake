# Finds liblz4, which has no file for CMake: the target lz4::lz4.

find_path(lz4_INCLUDE_DIR lz4frame.h DOC "Headers of liblz4")
find_library(lz4_LIBRARY lz4 DOC "liblz4")
mark_as_advanced(lz4_INCLUDE_DIR lz4_LIBRARY)

if(lz4_INCLUDE_DIR)
  file(STRINGS ${lz4_INCLUDE_DIR}/lz4.h parts REGEX "^#define LZ4_VERSION_(MAJOR|MINOR|RELEASE) +[0-9]+")
  list(TRANSFORM parts REPLACE "^#define LZ4_VERSION_[A-Z]+ +([0-9]+).*" "\\1")
  list(JOIN parts . lz4_VERSION)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(lz4 REQUIRED_VARS lz4_LIBRARY lz4_INCLUDE_DIR VERSION_VAR lz4_VERSION)

if(lz4_FOUND AND NOT TARGET lz4::lz4)
  add_library(lz4::lz4 UNKNOWN IMPORTED GLOBAL)
  set_target_properties(lz4::lz4 PROPERTIES IMPORTED_LOCATION ${lz4_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${lz4_INCLUDE_DIR})
endif()
