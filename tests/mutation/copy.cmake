# Included while a copy of the project is configured for mutants: makes the parts that change with each quick to build.
cmake_language(DEFER CALL skeigiot_build_mutants_quickly)

function(skeigiot_build_mutants_quickly)
  skeigiot_precompile_public_headers()
  skeigiot_keep_tests_from_private_headers()
endfunction()

# Precompiles the public headers of libemotion as well, since its sources would spend nearly all of their time on them.
function(skeigiot_precompile_public_headers)
  file(GLOB public_headers ${PROJECT_SOURCE_DIR}/libemotion/include/skeigiot/*.hpp
       ${PROJECT_SOURCE_DIR}/libemotion/include/skeigiot/classification/*.hpp)
  target_precompile_headers(skeigiot-objects PRIVATE ${public_headers} <ko/log.hpp> <ko/proxy.hpp> <ko/record.hpp>
                            <boost/assign/list_of.hpp> <boost/math/special_functions/erf.hpp> <algorithm> <charconv> <iomanip>
                            <iostream> <locale> <sstream>)
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
