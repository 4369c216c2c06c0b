# Makes the object library `name`, in which every header below `include_dir` is the whole of one unit: a header that relies on
# other includes fails to compile, and so does one that includes a header listed in foreign.hpp. Linking the object library
# detects definitions that are not inline. It is built without sanitizers and counters.
function(skeigiot_compile_headers_alone name library include_dir)
  if(SKEIGIOT_SANITIZE OR SKEIGIOT_COVERAGE)
    add_library(${name} INTERFACE)
    return()
  endif()
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${include_dir} ${include_dir}/*.hpp)
  set(units "")
  foreach(header IN LISTS headers)
    set(unit ${CMAKE_CURRENT_BINARY_DIR}/${name}/${header}.cpp)
    file(CONFIGURE OUTPUT ${unit} CONTENT
         "#include <${header}>\n#include <${header}>  // may be included twice\n#include \"support/foreign.hpp\"\n")
    list(APPEND units ${unit})
  endforeach()
  add_library(${name} OBJECT ${units})
  skeigiot_configure_target(${name})
  target_compile_options(${name} PRIVATE ${SKEIGIOT_TEST_OPTIONS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests $<TARGET_PROPERTY:${library},INTERFACE_INCLUDE_DIRECTORIES>)
endfunction()
