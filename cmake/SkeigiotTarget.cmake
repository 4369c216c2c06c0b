# The settings of every target of the project, and how its libraries are made.

set(skeigiot_exports ${CMAKE_CURRENT_LIST_DIR}/exports.map)
if(SKEIGIOT_HARDENED)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
endif()

# Language, warnings, floating-point rules and, on request, sanitizers and coverage.
#
# The estimate is fixed to the last bit, so the compiler must not contract a product and a sum into one operation.
function(skeigiot_configure_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden
                                             VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                           -Wdouble-promotion -Wnon-virtual-dtor -Wold-style-cast)
  if(SKEIGIOT_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(SKEIGIOT_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${SKEIGIOT_SANITIZE} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${SKEIGIOT_SANITIZE})
    if(SKEIGIOT_SANITIZE MATCHES "integer")  # ccache knows the option by this older name only; clones share a relative path
      file(RELATIVE_PATH exceptions ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR}/tests/integer-exceptions.txt)
      target_compile_options(${target} PRIVATE -fsanitize-blacklist=${exceptions})
    endif()
  endif()
  if(SKEIGIOT_COVERAGE)
    # Only functions of the libraries, the bridge and the Python module are counted, in any program that has them.
    set(counted lib\(ko|emotion|recordings|session\)/\(include|src\) bridges/ros2/\(include|src\) python/src)
    list(JOIN counted "|" counted)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -fprofile-filter-files=/\(${counted}\)/)
    target_link_options(${target} PRIVATE --coverage)
  endif()
  if(SKEIGIOT_HARDENED)
    skeigiot_harden_target(${target})
  endif()
endfunction()

# Settings that make a mistake harder to exploit: programs at random addresses, tables of the loader read-only, guarded stacks,
# and checked calls of the C library (which need an optimising compiler).
function(skeigiot_harden_target target)
  set(optimised $<NOT:$<CONFIG:Debug>>)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE -fstack-protector-strong -U_FORTIFY_SOURCE
                                           $<${optimised}:-D_FORTIFY_SOURCE=2>)
  target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now)
endfunction()

# Makes the shared library `name` (alias `alias`) and the static library `name`-static (alias `alias`-static), through
# which tests can use private code. Both are made of the same objects, `name`-objects, so that each source is compiled
# once.
#
#   SOURCES        the sources
#   LINKS          libraries of ours that its headers need
# PRIVATE_LINKS  libraries that only the sources need
# PRECOMPILED    more headers of other libraries that many sources include, see SkeigiotPrecompiled.cmake
#   VERSION        of the interface, its first number is the SOVERSION; the project's version by default
#   COMPONENT      of an install, and so the package, that has the shared library; "runtime" by default
#   STATIC_INSTALLED  the static library is installed as well
function(skeigiot_add_library name alias)
  cmake_parse_arguments(PARSE_ARGV 2 arg "STATIC_INSTALLED" "VERSION;COMPONENT" "SOURCES;LINKS;PRIVATE_LINKS;PRECOMPILED")
  if(NOT DEFINED arg_VERSION)
    set(arg_VERSION ${PROJECT_VERSION})
  endif()
  if(NOT DEFINED arg_COMPONENT)
    set(arg_COMPONENT runtime)
  endif()
  string(REGEX MATCH "^[0-9]+" soversion ${arg_VERSION})
  string(REGEX REPLACE ".*::" "" export_name ${alias})
  set(include_folders $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
                      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  list(TRANSFORM arg_LINKS APPEND -static OUTPUT_VARIABLE static_links)

  add_library(${name}-objects OBJECT ${arg_SOURCES})
  skeigiot_configure_target(${name}-objects)
  skeigiot_precompile_headers(${name}-objects ${arg_PRECOMPILED})
  set_target_properties(${name}-objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_include_directories(
    ${name}-objects
    PUBLIC ${include_folders}
    PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
  target_link_libraries(
    ${name}-objects
    PUBLIC ${arg_LINKS} Boost::headers Threads::Threads
    PRIVATE ${arg_PRIVATE_LINKS})
  if(SKEIGIOT_PROFILE STREQUAL "record")
    target_compile_options(${name}-objects PRIVATE -fprofile-generate -fprofile-update=atomic)
  elseif(SKEIGIOT_PROFILE STREQUAL "use")
    target_compile_options(${name}-objects PRIVATE -fprofile-use -fprofile-correction -Wno-missing-profile)
  endif()

  add_library(${name} SHARED $<TARGET_OBJECTS:${name}-objects>)
  add_library(${alias} ALIAS ${name})
  set_target_properties(${name} PROPERTIES VERSION ${arg_VERSION} SOVERSION ${soversion}
                                           EXPORT_NAME ${export_name} LINK_DEPENDS ${skeigiot_exports})
  skeigiot_configure_target(${name})
  target_include_directories(${name} PUBLIC ${include_folders})
  target_link_libraries(
    ${name}
    PUBLIC ${arg_LINKS} Boost::headers Threads::Threads
    PRIVATE ${arg_PRIVATE_LINKS})
  # Never unloaded: the registered types, and values of them elsewhere, point into the library.
  target_link_options(${name} PRIVATE LINKER:--version-script=${skeigiot_exports} LINKER:-z,nodelete)
  if(SKEIGIOT_PROFILE STREQUAL "record")
    target_link_options(${name} PRIVATE -fprofile-generate)
  endif()

  add_library(${name}-static STATIC $<TARGET_OBJECTS:${name}-objects>)
  add_library(${alias}-static ALIAS ${name}-static)
  set_target_properties(${name}-static PROPERTIES OUTPUT_NAME ${name} EXPORT_NAME ${export_name}-static)
  skeigiot_configure_target(${name}-static)
  target_include_directories(${name}-static PUBLIC ${include_folders} $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/src>)
  target_link_libraries(
    ${name}-static
    PUBLIC ${static_links} Boost::headers Threads::Threads
    PRIVATE ${arg_PRIVATE_LINKS})

  set(installed ${name})
  if(arg_STATIC_INSTALLED)
    list(APPEND installed ${name}-static)
  endif()
  install(
    TARGETS ${installed}
    EXPORT skeigiotTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${arg_COMPONENT}
            NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.hpp")
endfunction()
