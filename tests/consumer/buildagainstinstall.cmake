# Installs the build folder BUILD below WORK, moves the install elsewhere, and builds programs against it, by CMake and by
# pkg-config, with the shared libraries and with the static ones. All must run; the static ones once the shared libraries
# are gone.
#
# usage: cmake -D BUILD=... -D WORK=... -D EXAMPLE=... -D CXX=... -D CXX_FLAGS=... -P buildagainstinstall.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_output expected program)
  run(${program} ${ARGN})
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()

# The options that pkg-config gives for the library, as a list.
function(ask_pkg_config variable)
  run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkg_config_folder} pkg-config ${ARGN} skeigiot)
  separate_arguments(options UNIX_COMMAND "${output}")
  set(${variable} ${options} PARENT_SCOPE)
endfunction()

set(sources ${CMAKE_CURRENT_LIST_DIR})
set(estimate "^valence 0\\.6[0-9]*, attention 0\\.6[0-9]*, LookingAtRobot\n$")
set(record "^::KV::Person\n$")
separate_arguments(flags UNIX_COMMAND "${CXX_FLAGS}")

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/install)
file(GLOB_RECURSE pkg_config_file ${WORK}/install/skeigiot.pc)
cmake_path(GET pkg_config_file PARENT_PATH pkg_config_folder)
cmake_path(GET pkg_config_folder PARENT_PATH library_folder)

run(${CMAKE_COMMAND} -G Ninja -S ${sources} -B ${WORK}/build -D EXAMPLE=${EXAMPLE} -D CMAKE_CXX_COMPILER=${CXX}
    -D CMAKE_PREFIX_PATH=${WORK}/install "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/build)

ask_pkg_config(shared --cflags --libs)
ask_pkg_config(static --cflags --libs --static)
set(static -Wl,-Bstatic ${static} -Wl,-Bdynamic)
run(${CXX} -std=c++17 ${flags} ${EXAMPLE} ${shared} -o ${WORK}/shared)
run(${CXX} -std=c++17 ${flags} ${EXAMPLE} ${static} -o ${WORK}/static)
run(${CXX} -std=c++17 ${flags} ${sources}/byname.cpp ${static} -o ${WORK}/static-byname)

expect_output("${estimate}" ${WORK}/build/shared)
expect_output("${estimate}" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${library_folder} ${WORK}/shared)

file(GLOB shared_libraries ${library_folder}/*.so*)
file(REMOVE ${shared_libraries})
expect_output("${estimate}" ${WORK}/build/static)
expect_output("${record}" ${WORK}/build/static-byname)
expect_output("${estimate}" ${WORK}/static)
expect_output("${record}" ${WORK}/static-byname)
