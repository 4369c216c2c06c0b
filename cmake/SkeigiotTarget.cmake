# What every target of the project is built with, and how its two libraries are made.

# Language, warnings, floating-point rules and, where asked for, sanitizers and coverage.
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
  endif()
  if(SKEIGIOT_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()

# Makes the shared library `name` (alias `alias`) and, where tests are built, the static library `name`-static, through
# which tests reach the private records. Both are made of the same objects, `name`-objects, so that each source is
# compiled once; what only the sources need is linked to those.
function(skeigiot_add_library name alias)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "SOURCES;LINKS")
  set(include_folders $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
                      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

  add_library(${name}-objects OBJECT ${arg_SOURCES})
  skeigiot_configure_target(${name}-objects)
  set_target_properties(${name}-objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_include_directories(${name}-objects PUBLIC ${include_folders})
  target_link_libraries(${name}-objects PUBLIC ${arg_LINKS} Boost::headers Threads::Threads)
  if(SKEIGIOT_PROFILE STREQUAL "record")
    target_compile_options(${name}-objects PRIVATE -fprofile-generate -fprofile-update=atomic)
  elseif(SKEIGIOT_PROFILE STREQUAL "use")
    target_compile_options(${name}-objects PRIVATE -fprofile-use -fprofile-correction -Wno-missing-profile)
  endif()

  add_library(${name} SHARED $<TARGET_OBJECTS:${name}-objects>)
  add_library(${alias} ALIAS ${name})
  string(REGEX REPLACE ".*::" "" export_name ${alias})
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                           EXPORT_NAME ${export_name})
  skeigiot_configure_target(${name})
  target_include_directories(${name} PUBLIC ${include_folders})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} Boost::headers Threads::Threads)
  if(SKEIGIOT_PROFILE STREQUAL "record")
    target_link_options(${name} PRIVATE -fprofile-generate)
  endif()

  if(SKEIGIOT_BUILD_TESTS)
    list(TRANSFORM arg_LINKS APPEND -static)
    add_library(${name}-static STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}-objects>)
    skeigiot_configure_target(${name}-static)
    target_include_directories(${name}-static PUBLIC ${include_folders} ${CMAKE_CURRENT_SOURCE_DIR}/src)
    target_link_libraries(${name}-static PUBLIC ${arg_LINKS} Boost::headers Threads::Threads)
  endif()

  install(TARGETS ${name} EXPORT skeigiotTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.hpp")
endfunction()
