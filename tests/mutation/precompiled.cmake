# Included while the copy for the mutants is configured: precompiles what the sources include and no mutant changes, which
# is what a build of one changed file spends nearly all of its time on.
cmake_language(DEFER CALL skeigiot_precompile_headers)

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
  target_precompile_headers(libemotion_tests PRIVATE ${headers} <gmock/gmock.h> <gtest/gtest.h>)
endfunction()
