# Included while a copy of the project is configured for mutants: makes the parts that change with each quick to build.
cmake_language(DEFER CALL skeigiot_build_mutants_quickly)

function(skeigiot_build_mutants_quickly)
  skeigiot_precompile_headers()
  skeigiot_keep_tests_from_private_headers()
endfunction()

# Precompiles the headers that no mutant changes, since sources would spend nearly all of their time on them.
function(skeigiot_precompile_headers)
  file(GLOB public_headers ${PROJECT_SOURCE_DIR}/libemotion/include/skeigiot/*.hpp
       ${PROJECT_SOURCE_DIR}/libemotion/include/skeigiot/classification/*.hpp)
  set(headers
      ${public_headers}
      <boost/assign/list_of.hpp>
      <boost/math/special_functions/erf.hpp>
      <boost/smart_ptr/make_shared.hpp>
      <boost/thread/lock_guard.hpp>
      <boost/thread/lock_types.hpp>
      <boost/thread/synchronized_value.hpp>
      <ko/log.hpp>
      <algorithm>
      <charconv>
      <iomanip>
      <iostream>
      <locale>
      <sstream>)
  target_precompile_headers(skeigiot-objects PRIVATE ${headers} <ko/proxy.hpp> <ko/record.hpp>)
  foreach(program IN ITEMS libemotion_tests fault_tests)
    target_precompile_headers(${program} PRIVATE ${headers} <gmock/gmock.h> <gtest/gtest.h>)
  endforeach()
endfunction()

# Lets the tests see copies of the private headers, so that they need not be compiled when one is changed. The whole library is
# linked before the tests, so that the inline functions that run are the library's.
function(skeigiot_keep_tests_from_private_headers)
  get_target_property(include_folders skeigiot-static INTERFACE_INCLUDE_DIRECTORIES)
  list(TRANSFORM include_folders REPLACE "/libemotion/src$" "/privateheaders")
  set_target_properties(skeigiot-static PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${include_folders}")
  foreach(program IN ITEMS libemotion_tests model_tests)
    target_link_options(${program} BEFORE PRIVATE LINKER:--whole-archive $<TARGET_FILE:skeigiot-static>
                                                  LINKER:--no-whole-archive)
  endforeach()
endfunction()
